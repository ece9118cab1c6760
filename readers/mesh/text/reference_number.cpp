// SPDX-License-Identifier: MIT
#include "readers/mesh/text/reference_number.h"

#include "readers/mesh/text/line_tokenizer.h"

#include <QString>

namespace zr::reference
{
namespace
{

// The blank in front is not part of a number, but it keeps a byte order mark in the middle of a line from being taken
// for one at its beginning.
QString textOf(const QByteArray& token)
{
    return token.size() > kMaxNumberBytes ? QString() : QString::fromUtf8(' ' + token);
}

} // namespace

float toFloat(const QByteArray& token)
{
    return textOf(token).toFloat();
}

qint32 toIndex(const QByteArray& token)
{
    return static_cast<qint32>(static_cast<quint32>(textOf(token).toULongLong()));
}

Vec4 toPoint(const QByteArrayList& tokens)
{
    return Vec4{toFloat(tokens[1]), toFloat(tokens[2]), toFloat(tokens[3]), 0.0F};
}

Indices toIndices(const QByteArrayList& tokens)
{
    return {toIndex(tokens[1]), toIndex(tokens[2]), toIndex(tokens[3]), 0};
}

} // namespace zr::reference
