// SPDX-License-Identifier: MIT
#include "tools/samples/preview_bytes.h"

#include "tools/samples/put_bytes.h"

namespace zr::samples
{
namespace
{

constexpr quint16 kRunFlag = 0x0020;
constexpr int kLongestRun = 4096;

// Five bits per channel: green's sixth is the run flag.
quint16 runWord(QRgb colour)
{
    return static_cast<quint16>((qRed(colour) >> 3) << 11 | (qGreen(colour) >> 3) << 6 | kRunFlag | qBlue(colour) >> 3);
}

void appendWord(QByteArray& bytes, int word)
{
    bytes.append(static_cast<char>(word & 0xFF));
    bytes.append(static_cast<char>(word >> 8 & 0xFF));
}

} // namespace

QByteArray runLengthWords(const QImage& picture)
{
    QByteArray bytes;
    quint16 word = 0;
    int length = 0;
    const auto endRun = [&] {
        if (length == 0)
            return;
        appendWord(bytes, word);
        appendWord(bytes, length - 1);
    };
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const quint16 next = runWord(picture.pixel(x, y));
            if (next != word || length == kLongestRun) {
                endRun();
                word = next;
                length = 0;
            }
            ++length;
        }
    }
    endRun();
    return bytes;
}

QByteArray wordBytes(std::initializer_list<quint16> words)
{
    QByteArray bytes;
    for (const quint16 word : words)
        appendWord(bytes, word);
    return bytes;
}

PreviewParts runLengthPreview(const QImage& picture)
{
    PreviewParts preview;
    preview.width = picture.width();
    preview.height = picture.height();
    preview.data = runLengthWords(picture);
    return preview;
}

void putPreview(QByteArray& bytes, int headOffset, const PreviewParts& preview)
{
    const int afterHead = headOffset + kPreviewHeadBytes;
    putLittleEndian<qint32>(bytes, headOffset, preview.width);
    putLittleEndian<qint32>(bytes, headOffset + 4, preview.height);
    putLittleEndian<qint32>(bytes, headOffset + 8, preview.dataOffset.value_or(afterHead));
    putLittleEndian<qint32>(bytes, headOffset + 12, preview.dataSize.value_or(preview.data.size()));
    putBytes(bytes, headOffset + 16, QByteArray(kPreviewHeadBytes - 16, '\0'));
    putBytes(bytes, afterHead, preview.data);
}

} // namespace zr::samples
