// SPDX-License-Identifier: MIT
// shell-client FOLDER: plays the file browser. For each path on stdin, one per line in UTF-8, it asks the path's folder
// for the thumbnail, writes it to FOLDER\NAME.bgra (width and height as 32-bit numbers, then the pixels) and prints
// "NAME WIDTHxHEIGHT SERVER", or "NAME none SERVER", SERVER being the path of the server's DLL in this process. It ends
// with its input; until then it holds the server, as a file browser does. It has neither Qt nor the compiler's runtime
// as DLLs, so everything that the server needs comes from the server's own folder.

#include "tests/clients/bare_client.h"

#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <windows.h>

#include <shlobj.h>
#include <wrl/client.h>

namespace
{

using Microsoft::WRL::ComPtr;
using namespace zr::test;

HBITMAP thumbnailOf(const std::wstring& path)
{
    PIDLIST_ABSOLUTE item = nullptr;
    if (FAILED(SHParseDisplayName(path.c_str(), nullptr, &item, 0, nullptr)))
        return nullptr;
    ComPtr<IShellFolder> folder;
    PCUITEMID_CHILD child = nullptr;
    ComPtr<IExtractImage> extractor;
    if (SUCCEEDED(SHBindToParent(item, IID_PPV_ARGS(folder.GetAddressOf()), &child)))
        folder->GetUIObjectOf(nullptr, 1, &child, __uuidof(IExtractImage), nullptr,
                              reinterpret_cast<void**>(extractor.GetAddressOf()));
    CoTaskMemFree(item);
    wchar_t location[MAX_PATH] = {};
    DWORD priority = 0;
    const SIZE size = {256, 256};
    DWORD flags = IEIFLAG_SCREEN;
    HBITMAP bitmap = nullptr;
    if (extractor && SUCCEEDED(extractor->GetLocation(location, MAX_PATH, &priority, &size, 32, &flags)))
        extractor->Extract(&bitmap);
    return bitmap;
}

void write(const BitmapPixels& picture, const std::string& path)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&picture.width), sizeof picture.width);
    file.write(reinterpret_cast<const char*>(&picture.height), sizeof picture.height);
    file.write(reinterpret_cast<const char*>(picture.bytes.data()), static_cast<std::streamsize>(picture.bytes.size()));
}

std::string serverPath()
{
    std::vector<wchar_t> path(32768);
    auto* const server = GetModuleHandleW(L"ZRThumbnail.dll");
    if (server)
        GetModuleFileNameW(server, path.data(), static_cast<DWORD>(path.size()));
    return narrow(path.data());
}

void serve(const std::string& folder, const std::string& path)
{
    const std::string name = path.substr(path.find_last_of("\\/") + 1);
    auto* bitmap = thumbnailOf(wide(path));
    // A new user's first request only makes the data folder; file browsers ask again.
    if (!bitmap)
        bitmap = thumbnailOf(wide(path));
    std::cout << name << ' ';
    if (bitmap) {
        const BitmapPixels picture = takePixels(bitmap);
        write(picture, folder + '\\' + name + ".bgra");
        std::cout << picture.width << 'x' << picture.height;
    } else {
        std::cout << "none";
    }
    std::cout << ' ' << serverPath() << std::endl;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2 || FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
        return 2;
    for (std::string path; std::getline(std::cin, path);) {
        if (!path.empty() && path.back() == '\r')
            path.pop_back();
        serve(argv[1], path);
    }
    return 0;
}
