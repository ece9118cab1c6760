// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/sample_files.h"

#include <QByteArray>
#include <QImage>

#include <optional>

namespace zr::samples
{

/// The parts of an svgx file. Unset ones get the values of a valid file.
struct SvgxParts {
    QByteArray bmp; ///< filled up with zeroes to the length that every preview has
    std::optional<qint32> previewOffset;
};

QByteArray svgxBytes(const SvgxParts& parts);

/// Bytes of every preview, and of the header before it.
constexpr int kSvgxBmpBytes = 5862;
constexpr int kSvgxHeadBytes = 28;

/// The picture as a 24-bit BMP file.
QByteArray bmpBytes(const QImage& picture);

std::vector<SampleFile> svgxSamples();

} // namespace zr::samples
