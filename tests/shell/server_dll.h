// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

namespace zr::test
{

using Microsoft::WRL::ComPtr;

/// The class's identifier as clients know it.
constexpr GUID kClassId = {0xE45A903D, 0x53AE, 0x4A14, {0x90, 0x6E, 0x02, 0x60, 0xD1, 0x3F, 0xF7, 0x7F}};

/// The built ZRThumbnail.dll, loaded while the object lives unless the server keeps itself loaded.
class ServerDll
{
public:
    ServerDll();
    ~ServerDll();
    ServerDll(const ServerDll&) = delete;
    ServerDll& operator=(const ServerDll&) = delete;

    /// Full path of the DLL, in the system's notation.
    static std::wstring path();
    static bool isLoaded();

    HRESULT canUnloadNow() const;
    HRESULT getClassObject(REFCLSID classId, REFIID iid, void** object) const;
    HRESULT registerServer() const;
    HRESULT unregisterServer() const;

    /// The class factory; the test fails when there is none.
    ComPtr<IClassFactory> factory() const;

    /// A new object's interface; the test fails if the object cannot be made.
    template <typename Interface>
    ComPtr<Interface> make() const
    {
        ComPtr<Interface> object;
        create(nullptr, __uuidof(Interface), reinterpret_cast<void**>(object.GetAddressOf()));
        return object;
    }

private:
    void create(IUnknown* outer, REFIID iid, void** object) const;

    HMODULE m_module;
};

/// A single-threaded apartment for the calling thread while the object lives.
class Apartment
{
public:
    Apartment();
    ~Apartment();
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

} // namespace zr::test
