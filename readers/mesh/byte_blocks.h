// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>

#include <cstring>
#include <memory>

namespace zr
{

/// Reads the rest of a binary file through one buffer that is used again.
class ByteBlocks
{
public:
    /// Reads `file`, which must be open, from its position on.
    explicit ByteBlocks(QFile& file);

    /// The next `bytes` bytes, at most kMaxBytes, in one piece; null when the file has fewer, which then are passed
    /// over. They stay valid until the next call.
    const char* take(qint64 bytes)
    {
        if (m_end - m_begin < bytes && !fill(bytes))
            return nullptr;
        const char* const taken = m_begin;
        m_begin += bytes;
        return taken;
    }

    /// Bytes from here to the end of the file.
    qint64 remaining() const { return (m_end - m_begin) + m_unread; }

    /// Goes to the end of the file.
    void skipAll();

    static constexpr qint64 kMaxBytes = 16;

private:
    bool fill(qint64 bytes);

    QFile& m_file;
    qint64 m_unread; ///< bytes of the file that were not read yet
    std::unique_ptr<char[]> m_buffer;
    const char* m_begin;
    const char* m_end;
};

} // namespace zr
