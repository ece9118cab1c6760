#pragma once

#include "core/file_reader_base.h"

namespace zr
{

/// Reads the preview of resin slice files with the suffixes "vrx" and "vrxdlp". The two header layouts of the format
/// are told apart by the file's first word, not by the suffix. The picture is 400 x 400, QImage::Format_RGB888.
class VrxFileThumbnail : public FileReaderBase
{
public:
    using FileReaderBase::FileReaderBase;

    /// The failures that it logs.
    static FailureLines failures();

    void readFile() override;
    QImage previewImage() override;
};

} // namespace zr
