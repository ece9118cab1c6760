// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QtEndian>

#include <array>

namespace zr
{

/// The bytes of one fixed-size header block with little-endian fields at fixed offsets. Headers derive from it.
/// A field that would reach past the block does not compile.
template <int Bytes>
class LittleEndianBlock
{
public:
    /// Fills the block with one read from the file's current position; false when the read comes up short.
    bool readFrom(QFile& file) { return file.read(m_bytes.data(), Bytes) == Bytes; }

    template <typename Integer, int Offset>
    Integer field() const
    {
        static_assert(Offset >= 0 && Offset + static_cast<int>(sizeof(Integer)) <= Bytes);
        return qFromLittleEndian<Integer>(m_bytes.data() + Offset);
    }

private:
    std::array<char, Bytes> m_bytes{};
};

} // namespace zr
