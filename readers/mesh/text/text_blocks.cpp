// SPDX-License-Identifier: MIT
#include "readers/mesh/text/text_blocks.h"

#include "readers/mesh/text/line_tokenizer.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace zr
{
namespace
{

// A zero byte and a line feed may be put after the last line.
constexpr qint64 kTerminatorBytes = 2;

constexpr qint64 kBufferBytes = kTextPadding + TextBlocks::kBlockBytes + kTerminatorBytes + kTextPadding;

} // namespace

TextBlocks::TextBlocks(QFile& file, LongLines longLines)
    : m_file(file), m_longLines(longLines), m_memory(std::make_unique<char[]>(kBufferBytes)),
      m_buffer(m_memory.get() + kTextPadding), m_rest(m_buffer), m_filled(m_rest), m_begin(m_rest), m_end(m_rest),
      m_position(file.pos()), m_restPosition(m_position)
{
}

bool TextBlocks::next()
{
    while (true) {
        if (takeLines())
            return true;
        if (m_rest == m_buffer && m_filled == m_rest + kBlockBytes)
            return m_longLines == LongLines::Condensed ? takeLongLine() : takePiece();
        if (!fill())
            return takeLastLine();
    }
}

// Reads on after what is left; false at the end of the file.
bool TextBlocks::fill()
{
    const auto kept = m_filled - m_rest;
    std::memmove(m_buffer, m_rest, static_cast<std::size_t>(kept));
    m_rest = m_buffer;
    m_filled = m_rest + kept;
    const qint64 bytes = m_file.read(m_filled, kBlockBytes - kept);
    if (bytes <= 0)
        return false;
    m_filled += bytes;
    return true;
}

// Hands out all buffered lines that are whole.
bool TextBlocks::takeLines()
{
    const std::string_view rest(m_rest, static_cast<std::size_t>(m_filled - m_rest));
    const auto lineEnd = rest.rfind('\n');
    if (lineEnd == std::string_view::npos)
        return false;
    m_begin = m_rest;
    m_end = m_rest + lineEnd + 1;
    m_position = m_restPosition;
    m_rest += lineEnd + 1;
    m_restPosition += static_cast<qint64>(lineEnd) + 1;
    return true;
}

bool TextBlocks::takeLastLine()
{
    if (m_isAtEnd || (m_rest == m_filled && m_longLines == LongLines::Condensed))
        return false;
    m_isAtEnd = true;
    m_filled[0] = '\0';
    m_filled[1] = '\n';
    m_begin = m_rest;
    m_end = m_filled + kTerminatorBytes;
    m_position = m_restPosition;
    m_rest = m_filled;
    return true;
}

// The buffer is full and holds no line end.
bool TextBlocks::takeLongLine()
{
    LineTokenizer tokenizer;
    m_position = m_restPosition;
    const char* lineEnd = nullptr;
    do {
        lineEnd = static_cast<const char*>(std::memchr(m_rest, '\n', static_cast<std::size_t>(m_filled - m_rest)));
        char* const taken = lineEnd ? m_rest + (lineEnd - m_rest) + 1 : m_filled;
        tokenizer.add(m_rest, taken);
        m_restPosition += taken - m_rest;
        m_rest = taken;
    } while (!lineEnd && fill());
    // The blank keeps a byte order mark in the first token from being taken for one at the line's beginning.
    m_longLine = ' ' + tokenizer.tokens().join(' ');
    if (!m_longLine.endsWith('\n'))
        m_longLine.append("\0\n", kTerminatorBytes);
    m_longLine.insert(0, kTextPadding, '\0').append(kTextPadding, '\0');
    m_begin = m_longLine.constData() + kTextPadding;
    m_end = m_longLine.constData() + m_longLine.size() - kTextPadding;
    return true;
}

// The same, as it is.
bool TextBlocks::takePiece()
{
    m_begin = m_rest;
    m_end = m_filled;
    m_position = m_restPosition;
    m_restPosition += m_filled - m_rest;
    m_rest = m_filled;
    return true;
}

} // namespace zr
