// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/text/fast_number.h"

// Numbers as most model files write them, read straight from the text without a string: three at once where they are
// short, else one by one. What is not accepted here is left to reference_number.h; what is accepted is read to the same
// bits.

namespace zr
{

namespace scalar
{

// One by one: numbers of any length, blanks of any kind, and indices with slashes.
const char* readPoint(const char* text, Vec4& point);
const char* readIndices(const char* text, Indices& indices);

} // namespace scalar

/// Reads three numbers in decimal notation with blanks before and between them; the end of the last one, or null when
/// there is something else.
inline const char* readPoint(const char* text, Vec4& point)
{
    text = skipBlanks(text);
    const char* const read = fast::readPoint(text, point);
    return read ? read : scalar::readPoint(text, point);
}

/// Reads three indices, decimal numbers cut to signed 32-bit ones, in the same way. A number with slashes is not one
/// to QString::toULongLong() and reads as 0.
inline const char* readIndices(const char* text, Indices& indices)
{
    text = skipBlanks(text);
    const char* const read = fast::readIndices(text, indices);
    return read ? read : scalar::readIndices(text, indices);
}

} // namespace zr
