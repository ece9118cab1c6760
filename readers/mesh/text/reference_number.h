// SPDX-License-Identifier: MIT
#pragma once

#include "core/vec4.h"
#include "readers/mesh/text/text_bytes.h"

#include <QByteArrayList>

// Numbers as Qt reads them, from the tokens of LineTokenizer: what the faster ways of reading them must agree with to
// the bit, and what reads all that they do not accept.

namespace zr::reference
{

/// QString::toFloat() of the token.
float toFloat(const QByteArray& token);

/// QString::toULongLong() of the token in base 10, cut to a signed 32-bit number.
qint32 toIndex(const QByteArray& token);

/// Those of the three tokens after the first.
Vec4 toPoint(const QByteArrayList& tokens);
Indices toIndices(const QByteArrayList& tokens);

} // namespace zr::reference
