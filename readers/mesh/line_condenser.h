#pragma once

#include "readers/mesh/number_text.h"

#include <QByteArray>

#include <utility>

namespace zr
{

/// Shortens one line that comes in pieces to the tokens that splitLine() would find in it, so that a file without line
/// ends needs no memory of its own size.
class LineCondenser
{
public:
    /// Takes the next bytes of the line.
    void add(const char* begin, const char* end);

    /// The condensed line. Its terminator is left out when nothing depends on it.
    QByteArray takeLine() { return std::move(m_line); }

private:
    void addByte(char c);
    void startToken();

    QByteArray m_line;
    int m_tokens = 0; ///< tokens begun
    int m_tokenLength = 0;
    bool m_inToken = false;
    bool m_afterBlank = false;
    bool m_complete = false; ///< nothing that follows matters
};

} // namespace zr
