// SPDX-License-Identifier: MIT
#include "tests/clients/bare_client.h"

namespace zr::test
{

std::wstring wide(const std::string& text)
{
    std::wstring result(text.size(), L'\0');
    const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
                                           static_cast<int>(result.size()));
    result.resize(static_cast<std::size_t>(length));
    return result;
}

std::string narrow(const std::wstring& text)
{
    std::string result(text.size() * 3, '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), result.data(),
                                           static_cast<int>(result.size()), nullptr, nullptr);
    result.resize(static_cast<std::size_t>(length));
    return result;
}

BitmapPixels takePixels(HBITMAP bitmap)
{
    BITMAP description = {};
    GetObjectW(bitmap, sizeof description, &description);
    BitmapPixels pixels = {description.bmWidth, description.bmHeight, {}};
    pixels.bytes.resize(static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height) * 4);
    BITMAPINFO wanted = {};
    wanted.bmiHeader.biSize = sizeof wanted.bmiHeader;
    wanted.bmiHeader.biWidth = pixels.width;
    wanted.bmiHeader.biHeight = -pixels.height; // the top row first
    wanted.bmiHeader.biPlanes = 1;
    wanted.bmiHeader.biBitCount = 32;
    auto* const screen = GetDC(nullptr);
    GetDIBits(screen, bitmap, 0, static_cast<UINT>(pixels.height), pixels.bytes.data(), &wanted, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    DeleteObject(bitmap);
    return pixels;
}

} // namespace zr::test
