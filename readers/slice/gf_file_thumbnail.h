#pragma once

#include "core/file_reader_base.h"

namespace zr
{

/// Reads the preview of resin slice files with the suffix "gf", whose pixels are stored one by one with three channels
/// of 16 bits. The picture is 400 x 400, QImage::Format_RGB888.
class GfFileThumbnail : public FileReaderBase
{
public:
    using FileReaderBase::FileReaderBase;

    /// The failures that it logs.
    static FailureLines failures();

    void readFile() override;
    QImage previewImage() override;
};

} // namespace zr
