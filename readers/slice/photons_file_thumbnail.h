#pragma once

#include "core/file_reader_base.h"

namespace zr
{

/// Reads the preview of resin slice files with the suffix "photons", a big-endian format. The picture is 400 x 400,
/// QImage::Format_RGB888, in the preview's own colours.
class PhotonsFileThumbnail : public FileReaderBase
{
public:
    using FileReaderBase::FileReaderBase;

    /// The failures that it logs.
    static FailureLines failures();

    void readFile() override;
    QImage previewImage() override;
};

} // namespace zr
