// SPDX-License-Identifier: MIT
#pragma once

#include <KIO/ThumbnailCreator>

namespace zr
{

/// Makes thumbnails for KDE's file managers by running zrthumbnailer. What a damaged file may do to that program stays
/// in its process.
class ThumbnailCreator : public KIO::ThumbnailCreator
{
    Q_OBJECT

public:
    using KIO::ThumbnailCreator::ThumbnailCreator;

    KIO::ThumbnailResult create(const KIO::ThumbnailRequest& request) override;
};

} // namespace zr
