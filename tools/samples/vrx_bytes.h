// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/preview_bytes.h"
#include "tools/samples/sample_files.h"

namespace zr::samples
{

/// The parts of a vrx file. Unset ones get the values of a valid file.
struct VrxParts {
    /// Dlp has offsets in its header; the others have the preview at a fixed place.
    enum class Layout { Dlp, PreviewAt328, PreviewAt336 };

    Layout layout = Layout::Dlp;
    PreviewParts preview;
    quint32 dlpMagic = 0;                    ///< first word in the Dlp layout
    std::optional<qint32> previewHeadOffset; ///< Dlp layout only
    std::optional<qint32> secondHeadOffset;  ///< Dlp layout only
    int headBytes = 112;                     ///< place of the preview header in the Dlp layout
};

QByteArray vrxBytes(const VrxParts& parts);

/// A preview of 2 x 2 pixels of one colour, an RGB565 word, so that files can be told apart by their pictures.
QByteArray oneColourVrxBytes(quint16 colour);

std::vector<SampleFile> vrxSamples();

} // namespace zr::samples
