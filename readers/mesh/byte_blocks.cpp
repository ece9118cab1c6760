// SPDX-License-Identifier: MIT
#include "readers/mesh/byte_blocks.h"

#include <algorithm>

namespace zr
{
namespace
{

// Small enough to stay in the processor's cache between the read and its use.
constexpr qint64 kBlockBytes = 64 << 10;

} // namespace

ByteBlocks::ByteBlocks(QFile& file)
    : m_file(file), m_unread(std::max<qint64>(file.size() - file.pos(), 0)),
      m_buffer(std::make_unique<char[]>(kBlockBytes)), m_begin(m_buffer.get()), m_end(m_begin)
{
}

// Reads on after what is left until there are `bytes` bytes.
bool ByteBlocks::fill(qint64 bytes)
{
    char* const front = m_buffer.get();
    const qint64 kept = m_end - m_begin;
    std::memmove(front, m_begin, static_cast<std::size_t>(kept));
    m_begin = front;
    m_end = front + kept;
    while (m_end - m_begin < bytes) {
        const qint64 read = m_file.read(front + (m_end - m_begin), kBlockBytes - (m_end - m_begin));
        if (read <= 0) {
            skipAll();
            return false;
        }
        m_end += read;
        m_unread = std::max<qint64>(m_unread - read, 0);
    }
    return true;
}

void ByteBlocks::skipAll()
{
    m_file.seek(std::max(m_file.size(), m_file.pos()));
    m_begin = m_end;
    m_unread = 0;
}

} // namespace zr
