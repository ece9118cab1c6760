// SPDX-License-Identifier: MIT
#include "host/thumbnail_client.h"

#include "request/thumbnail_extractor.h"

namespace zr
{
namespace
{

class NativeClient final : public ThumbnailClient
{
public:
    bool load(const QString& path) override { return m_extractor.load(path); }
    QImage extract() override { return m_extractor.extract(); }

private:
    ThumbnailExtractor m_extractor;
};

} // namespace

bool talksToServer()
{
    return false;
}

std::unique_ptr<ThumbnailClient> makeThumbnailClient(const QString&)
{
    return std::make_unique<NativeClient>();
}

} // namespace zr
