#pragma once

#include "core/file_reader_base.h"

namespace zr
{

/// Reads the preview of project files with the suffix "kestravo". The picture is a square of at least 400 x 400,
/// QImage::Format_RGB888, in the light scheme; larger previews are not scaled down.
class KestravoFileThumbnail : public FileReaderBase
{
public:
    using FileReaderBase::FileReaderBase;

    /// The failures that it logs.
    static FailureLines failures();

    void readFile() override;
    QImage previewImage() override;
};

} // namespace zr
