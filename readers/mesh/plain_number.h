#pragma once

#include "readers/mesh/short_number.h"

// Numbers as nearly every model file writes them, read straight from the text without a string. What these functions
// do not accept is left to number_text.h; what they accept, they read to the same bits. kTextPadding readable bytes
// must stand before and behind the text.

namespace zr
{

namespace plain
{

// For numbers of any length, blanks of any kind, and indices with slashes.
const char* readLongPoint(const char* text, Vec4& point);
const char* readLongIndices(const char* text, Indices& indices);

} // namespace plain

/// Reads three numbers in decimal notation with blanks before and between them; the end of the last one, or null when
/// there is something else.
inline const char* readPlainPoint(const char* text, Vec4& point)
{
    text = plain::skipBlanks(text);
    const char* const end = plain::readShortPoint(text, point);
    return end ? end : plain::readLongPoint(text, point);
}

/// Reads three indices, decimal numbers cut to signed 32-bit ones, with blanks before and between them; the end of the
/// last one, or null when there is something else. A number with slashes is none for QString::toULongLong() and reads
/// as 0.
inline const char* readPlainIndices(const char* text, Indices& indices)
{
    text = plain::skipBlanks(text);
    const char* const end = plain::readShortIndices(text, indices);
    return end ? end : plain::readLongIndices(text, indices);
}

} // namespace zr
