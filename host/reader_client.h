// SPDX-License-Identifier: MIT
#pragma once

#include "host/thumbnail_client.h"

namespace zr
{

/// The request's reader alone, in this process. It touches no data folder: what it logs stays in memory. Linux only.
class ReaderClient final : public ThumbnailClient
{
public:
    ReaderClient();
    ~ReaderClient() override;

    bool load(const QString& path) override;
    QImage extract() override { return m_picture; }
    QStringList messages(const QString& path) const override;

private:
    QImage m_picture;
};

} // namespace zr
