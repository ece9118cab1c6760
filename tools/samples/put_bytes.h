// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QtEndian>

#include <algorithm>

namespace zr::samples
{

/// Writes `data` at `offset`; the bytes grow with zeroes as far as needed.
inline void putBytes(QByteArray& bytes, int offset, const QByteArray& data)
{
    if (bytes.size() < offset + data.size())
        bytes.append(QByteArray(offset + data.size() - bytes.size(), '\0'));
    std::copy(data.begin(), data.end(), bytes.begin() + offset);
}

template <typename Integer>
void putLittleEndian(QByteArray& bytes, int offset, Integer value)
{
    QByteArray data(sizeof(Integer), '\0');
    qToLittleEndian(value, data.data());
    putBytes(bytes, offset, data);
}

template <typename Number>
void putBigEndian(QByteArray& bytes, int offset, Number value)
{
    QByteArray data(sizeof(Number), '\0');
    qToBigEndian(value, data.data());
    putBytes(bytes, offset, data);
}

} // namespace zr::samples
