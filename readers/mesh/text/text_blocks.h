// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/text/text_bytes.h"

#include <QByteArray>
#include <QFile>

#include <memory>

namespace zr
{

/// Reads a text file in runs of whole lines, through one buffer that is used again for each run.
///
/// Each line ends in "\n"; a last line without a terminator gets a zero byte before it, which ends the line's text.
/// A line that is longer than the buffer comes alone and condensed: single blanks before the tokens that LineTokenizer
/// finds in it, and in the condensed line again.
class TextBlocks
{
public:
    /// Small enough to stay in the processor's cache between the read and the parse.
    static constexpr qint64 kBlockBytes = 64 << 10;

    /// Reads `file`, which must be open, from its position on.
    explicit TextBlocks(QFile& file);

    /// Moves on to the next run of lines; false at the end of the file.
    bool next();

    /// The current run. There are kTextPadding readable bytes before and after it.
    const char* begin() const { return m_begin; }
    const char* end() const { return m_end; }

    /// Bytes of the file before the current run.
    qint64 position() const { return m_position; }

private:
    bool fill();
    bool takeLines();
    bool takeLastLine();
    bool takeLongLine();

    QFile& m_file;
    std::unique_ptr<char[]> m_memory;
    char* const m_buffer;
    char* m_rest;   ///< buffered bytes that were not handed out yet ...
    char* m_filled; ///< ... and their end
    const char* m_begin;
    const char* m_end;
    qint64 m_position;     ///< of m_begin
    qint64 m_restPosition; ///< of m_rest
    QByteArray m_longLine;
};

} // namespace zr
