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
/// A line that is longer than the buffer comes alone: condensed, with single blanks before the tokens that
/// LineTokenizer finds in it, and in the condensed line again, or in pieces as it is.
class TextBlocks
{
public:
    /// Small enough to stay in the processor's cache between the read and the parse.
    static constexpr qint64 kBlockBytes = 64 << 10;

    enum class LongLines {
        Condensed,
        InPieces, ///< and an empty line after the last one, which ends what waits for more
    };

    /// Reads `file`, which must be open, from its position on.
    explicit TextBlocks(QFile& file, LongLines longLines = LongLines::Condensed);

    /// Moves on to the next run of lines; false at the end of the file.
    bool next();

    /// The current run. There are kTextPadding readable bytes before and after it.
    const char* begin() const { return m_begin; }
    const char* end() const { return m_end; }

    /// Whether the run is a piece of a line that goes on in the next run.
    bool isPiece() const { return m_end[-1] != '\n'; }

    /// Bytes of the file before the current run.
    qint64 position() const { return m_position; }

private:
    bool fill();
    bool takeLines();
    bool takeLastLine();
    bool takeLongLine();
    bool takePiece();

    QFile& m_file;
    const LongLines m_longLines;
    std::unique_ptr<char[]> m_memory;
    char* const m_buffer;
    char* m_rest;   ///< buffered bytes that were not handed out yet ...
    char* m_filled; ///< ... and their end
    const char* m_begin;
    const char* m_end;
    qint64 m_position;     ///< of m_begin
    qint64 m_restPosition; ///< of m_rest
    QByteArray m_longLine;
    bool m_isAtEnd = false; ///< the last line was handed out
};

} // namespace zr
