// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

#include <optional>

namespace zr::samples
{

/// Colour words of a picture in run-length coding, row by row. Every pixel is in a run, even a single one: the run flag
/// is part of the colour, and the background has to be one colour throughout.
QByteArray runLengthWords(const QImage& picture);

/// The words as little-endian bytes.
QByteArray wordBytes(std::initializer_list<quint16> words);

/// A preview header, followed by the pixel data. Unset parts get the values of a valid file.
struct PreviewParts {
    qint32 width = 0;
    qint32 height = 0;
    QByteArray data;
    std::optional<qint32> dataOffset;
    std::optional<qint32> dataSize;
};

/// The run-length coded preview of a picture.
PreviewParts runLengthPreview(const QImage& picture);

/// Bytes of a preview header.
constexpr int kPreviewHeadBytes = 32;

/// Puts the header at `headOffset` and the data right after it.
void putPreview(QByteArray& bytes, int headOffset, const PreviewParts& preview);

} // namespace zr::samples
