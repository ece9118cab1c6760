// SPDX-License-Identifier: MIT
#include "readers/slice/run_length_preview.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <new>

namespace zr
{
namespace
{

constexpr quint16 kRunFlag = 0x0020;
constexpr quint16 kRunCountMask = 0x0FFF;
constexpr std::ptrdiff_t kBytesPerPixel = 3;

// A pixel as the canvas stores it. The padding lets one store of four bytes write a pixel that another one follows.
struct Rgb888 {
    explicit Rgb888(QRgb colour = 0)
        : bytes{static_cast<uchar>(qRed(colour)), static_cast<uchar>(qGreen(colour)), static_cast<uchar>(qBlue(colour))}
    {
    }

    void writeTo(uchar* pixel) const { std::memcpy(pixel, bytes.data(), kBytesPerPixel); }
    void writeWithOverlap(uchar* pixel) const { std::memcpy(pixel, bytes.data(), bytes.size()); }

    std::array<uchar, 4> bytes;
};

// The colour words of the pixel data.
class ColourWords
{
public:
    explicit ColourWords(const std::vector<uchar>& bytes) : m_bytes(bytes.data()), m_count(bytes.size() / 2) {}

    std::size_t count() const { return m_count; }

    quint16 operator[](std::size_t i) const { return qFromLittleEndian<quint16>(m_bytes + 2 * i); }

    // 0 past the end, so that a run without its count paints one pixel.
    quint16 orZero(std::size_t i) const { return i < m_count ? (*this)[i] : quint16{0}; }

private:
    const uchar* m_bytes;
    std::size_t m_count;
};

// The colour that each word is shown in. The first word is the preview's background.
class WordColours
{
public:
    WordColours(quint16 keyWord, PreviewShading shading) : m_keyWord(keyWord), m_background(previewBackground(shading))
    {
        for (quint32 luminance = 0; luminance < m_shades.size(); ++luminance)
            m_shades[luminance] = Rgb888(previewShade(shading, luminance));
        for (quint32 byte = 0; byte < 256; ++byte) {
            m_highByteShare[byte] = static_cast<quint16>(weightedSum(byte << 8) - weightedSum(0));
            m_lowByteShare[byte] = static_cast<quint16>(weightedSum(byte));
        }
    }

    // Different words expand to different colours, so the key colour is recognised by its word. The weighted sum is
    // put together from the shares of the word's two bytes: looking these up takes less time than the expansion.
    const Rgb888& of(quint16 word) const
    {
        if (word == m_keyWord)
            return m_background;
        return m_shades[static_cast<std::size_t>(m_highByteShare[word >> 8] + m_lowByteShare[word & 0xFF]) >> 5];
    }

private:
    // 32 times the luminance of the word's channels, expanded to 8 bits.
    static quint32 weightedSum(quint32 word)
    {
        const quint32 red = ((word >> 8) & 0xF8) | 0x05;
        const quint32 green = (((word >> 5) & 0x3F) << 2) | 0x01;
        const quint32 blue = ((word & 0x1F) << 3) | 0x05;
        return 11 * red + 16 * green + 5 * blue;
    }

    quint16 m_keyWord;
    Rgb888 m_background;
    std::array<quint16, 256> m_highByteShare{};
    std::array<quint16, 256> m_lowByteShare{};
    std::array<Rgb888, 256> m_shades;
};

// Neighbouring pixels of one canvas row, or pixels outside the canvas.
struct Span {
    uchar* first; // null outside the canvas
    quint32 pixels;
};

// Walks over the pixels of the picture in the order of the data. The position wraps around after 2^32 pixels.
class Pen
{
public:
    Pen(QImage& canvas, int width, int height) : m_stride(canvas.bytesPerLine()), m_width(static_cast<quint32>(width))
    {
        const int x = (canvas.width() - width) / 2;
        const int y = (canvas.height() - height) / 2;
        m_origin = canvas.bits() + y * m_stride + x * kBytesPerPixel;
        m_pixelsOnCanvas = static_cast<quint32>(width * (canvas.height() - y));
    }

    // The maximal span that starts at the current position; never empty.
    Span span() const
    {
        if (m_position >= m_pixelsOnCanvas)
            return {nullptr, std::numeric_limits<quint32>::max() - m_position + 1};
        const quint32 row = m_position / m_width;
        const quint32 column = m_position % m_width;
        return {m_origin + row * m_stride + column * kBytesPerPixel, m_width - column};
    }

    void advance(quint32 pixels) { m_position += pixels; }

private:
    uchar* m_origin;
    std::ptrdiff_t m_stride;
    quint32 m_width;
    quint32 m_pixelsOnCanvas;
    quint32 m_position = 0;
};

void paintRun(Pen& pen, const Rgb888& colour, quint32 pixels)
{
    while (pixels > 0) {
        const Span span = pen.span();
        const quint32 count = std::min(pixels, span.pixels);
        if (span.first) {
            uchar* const last = span.first + (count - 1) * kBytesPerPixel;
            for (uchar* pixel = span.first; pixel != last; pixel += kBytesPerPixel)
                colour.writeWithOverlap(pixel);
            colour.writeTo(last);
        }
        pen.advance(count);
        pixels -= count;
    }
}

// Paints the single-pixel words from word `i` on, up to the end of the row, and returns the next word's index.
std::size_t paintSinglePixels(Pen& pen, const WordColours& colours, const ColourWords& words, std::size_t i)
{
    const Span span = pen.span();
    const std::size_t begin = i;
    const std::size_t end = begin + std::min<std::size_t>(words.count() - begin, span.pixels);
    uchar* pixel = span.first;
    for (; i < end && !(words[i] & kRunFlag); ++i) {
        if (!pixel)
            continue;
        colours.of(words[i]).writeTo(pixel);
        pixel += kBytesPerPixel;
    }
    pen.advance(static_cast<quint32>(i - begin));
    return i;
}

} // namespace

QImage decodeRunLengthPreview(const PreviewBlock& block, PreviewShading shading, int minimumSide)
{
    const DlpPreviewHead_t& head = block.head;
    const int side = std::max({head.width, head.height, minimumSide});
    QImage canvas(side, side, QImage::Format_RGB888);
    if (canvas.isNull())
        throw std::bad_alloc();
    canvas.fill(previewBackground(shading));

    const ColourWords words(block.src_RGB_Buffer);
    const WordColours colours(words.orZero(0), shading);
    Pen pen(canvas, head.width, head.height);
    std::size_t i = 0;
    while (i < words.count()) {
        const quint16 word = words[i];
        if (word & kRunFlag) {
            paintRun(pen, colours.of(word), (words.orZero(i + 1) & kRunCountMask) + 1U);
            i += 2;
        } else {
            i = paintSinglePixels(pen, colours, words, i);
        }
    }
    return canvas;
}

} // namespace zr
