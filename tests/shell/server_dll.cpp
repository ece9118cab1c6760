// SPDX-License-Identifier: MIT
#include "tests/shell/server_dll.h"

#include <gtest/gtest.h>

#include <objbase.h>

namespace zr::test
{
namespace
{

template <typename Function>
Function function(HMODULE module, const char* name)
{
    const auto address = GetProcAddress(module, name);
    EXPECT_TRUE(address) << name;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

using PlainFunction = HRESULT(STDAPICALLTYPE*)();
using ClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

} // namespace

// As COM loads it: its own folder is searched first for DLLs.
ServerDll::ServerDll() : m_module(LoadLibraryExW(path().c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
{
    EXPECT_TRUE(m_module) << "error " << GetLastError();
}

ServerDll::~ServerDll()
{
    FreeLibrary(m_module);
}

std::wstring ServerDll::path()
{
    wchar_t text[MAX_PATH] = {};
    const DWORD length = GetEnvironmentVariableW(L"ZRTHUMB_SERVER", text, MAX_PATH);
    EXPECT_TRUE(length > 0 && length < MAX_PATH) << "ZRTHUMB_SERVER names the DLL to test";
    std::wstring path = text;
    for (wchar_t& character : path) {
        if (character == L'/')
            character = L'\\';
    }
    return path;
}

bool ServerDll::isLoaded()
{
    return GetModuleHandleW(L"ZRThumbnail.dll");
}

HRESULT ServerDll::canUnloadNow() const
{
    return function<PlainFunction>(m_module, "DllCanUnloadNow")();
}

HRESULT ServerDll::getClassObject(REFCLSID classId, REFIID iid, void** object) const
{
    return function<ClassObjectFunction>(m_module, "DllGetClassObject")(classId, iid, object);
}

HRESULT ServerDll::registerServer() const
{
    return function<PlainFunction>(m_module, "DllRegisterServer")();
}

HRESULT ServerDll::unregisterServer() const
{
    return function<PlainFunction>(m_module, "DllUnregisterServer")();
}

ComPtr<IClassFactory> ServerDll::factory() const
{
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(getClassObject(kClassId, IID_PPV_ARGS(factory.GetAddressOf())), S_OK);
    return factory;
}

void ServerDll::create(IUnknown* outer, REFIID iid, void** object) const
{
    EXPECT_EQ(factory()->CreateInstance(outer, iid, object), S_OK);
}

Apartment::Apartment()
{
    EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
}

Apartment::~Apartment()
{
    CoUninitialize();
}

} // namespace zr::test
