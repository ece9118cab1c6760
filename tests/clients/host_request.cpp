// SPDX-License-Identifier: MIT
#include "tests/clients/host_request.h"

#include "tests/clients/bare_client.h"

#include <cstdio>
#include <vector>

#include <shobjidl.h>
#include <wrl/client.h>

namespace zr::test
{
namespace
{

using Microsoft::WRL::ComPtr;

constexpr GUID kClassId = {0xE45A903D, 0x53AE, 0x4A14, {0x90, 0x6E, 0x02, 0x60, 0xD1, 0x3F, 0xF7, 0x7F}};

// Null, too, if there is no module.
template <typename Function>
Function* exported(HMODULE module, const char* name)
{
    auto* const function = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    if (!function)
        std::printf("failed: loading the server, error %lu\n", GetLastError());
    return function;
}

// FNV-1a.
unsigned long hashOf(const std::vector<unsigned char>& bytes)
{
    unsigned long hash = 2166136261UL;
    for (const unsigned char byte : bytes)
        hash = (hash ^ byte) * 16777619UL;
    return hash;
}

} // namespace

HostServer::HostServer(const std::string& path)
    : m_module(LoadLibraryExW(wide(path).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
{
}

HostServer::~HostServer()
{
    FreeLibrary(m_module);
}

bool HostServer::isLoaded()
{
    return GetModuleHandleW(L"ZRThumbnail.dll");
}

void HostServer::makeObject() const
{
    using GetClassObject = HRESULT WINAPI(REFCLSID, REFIID, void**);
    ComPtr<IClassFactory> factory;
    ComPtr<IPersistFile> object;
    if (auto* const get = exported<GetClassObject>(m_module, "DllGetClassObject"))
        get(kClassId, IID_PPV_ARGS(factory.GetAddressOf()));
    if (!factory || FAILED(factory->CreateInstance(nullptr, IID_PPV_ARGS(object.GetAddressOf()))))
        std::printf("failed: making an object\n");
}

HostPicture HostServer::request(const std::string& path) const
{
    using GetClassObject = HRESULT WINAPI(REFCLSID, REFIID, void**);
    ComPtr<IClassFactory> factory;
    ComPtr<IPersistFile> object;
    ComPtr<IExtractImage> extractor;
    auto* const get = exported<GetClassObject>(m_module, "DllGetClassObject");
    if (!get || FAILED(get(kClassId, IID_PPV_ARGS(factory.GetAddressOf()))) ||
        FAILED(factory->CreateInstance(nullptr, IID_PPV_ARGS(object.GetAddressOf()))))
        return {};
    HBITMAP bitmap = nullptr;
    wchar_t location[MAX_PATH] = {};
    DWORD priority = 0;
    const SIZE size = {256, 256};
    DWORD flags = IEIFLAG_SCREEN;
    if (object->Load(wide(path).c_str(), STGM_READ) != S_OK && object->Load(wide(path).c_str(), STGM_READ) != S_OK)
        std::printf("failed: loading %s\n", path.c_str());
    if (SUCCEEDED(object.As(&extractor)) &&
        SUCCEEDED(extractor->GetLocation(location, MAX_PATH, &priority, &size, 32, &flags)))
        extractor->Extract(&bitmap);
    if (!bitmap)
        return {};
    const BitmapPixels pixels = takePixels(bitmap);
    return {pixels.width, pixels.height, hashOf(pixels.bytes)};
}

} // namespace zr::test
