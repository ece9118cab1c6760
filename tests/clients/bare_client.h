// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <windows.h>

namespace zr::test
{

// For clients of the server that do not use Qt.

/// Between UTF-8 and the system's encoding.
std::wstring wide(const std::string& text);
std::string narrow(const std::wstring& text);

/// The pixels of a bitmap: rows from the top, four bytes each in the order blue, green, red, alpha.
struct BitmapPixels {
    LONG width = 0;
    LONG height = 0;
    std::vector<unsigned char> bytes;
};

/// Frees the bitmap.
BitmapPixels takePixels(HBITMAP bitmap);

} // namespace zr::test
