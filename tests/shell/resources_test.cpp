// SPDX-License-Identifier: MIT
// The DLL's resources.

#include "tests/shell/server_dll.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

#include <oleauto.h>

namespace zr::test
{
namespace
{

constexpr GUID kLibraryId = {0xF473925C, 0xFDEE, 0x42AD, {0x9F, 0xC2, 0xC8, 0x43, 0xDB, 0x7B, 0xA2, 0xB2}};
constexpr GUID kInterfaceId = {0x9EFBFC7F, 0x30FC, 0x40F7, {0xA7, 0x3A, 0xEC, 0x50, 0x36, 0xF3, 0x39, 0xB9}};

std::wstring take(BSTR text)
{
    std::wstring copy = text ? text : L"";
    SysFreeString(text);
    return copy;
}

struct Documentation {
    std::wstring name;
    std::wstring help;

    bool operator==(const Documentation& other) const { return name == other.name && help == other.help; }
};

Documentation documentation(const ComPtr<ITypeLib>& library)
{
    BSTR name = nullptr;
    BSTR help = nullptr;
    EXPECT_EQ(library->GetDocumentation(MEMBERID_NIL, &name, &help, nullptr, nullptr), S_OK);
    return {take(name), take(help)};
}

Documentation documentation(const ComPtr<ITypeInfo>& type)
{
    BSTR name = nullptr;
    BSTR help = nullptr;
    EXPECT_EQ(type->GetDocumentation(MEMBERID_NIL, &name, &help, nullptr, nullptr), S_OK);
    return {take(name), take(help)};
}

TYPEATTR attributes(const ComPtr<ITypeInfo>& type)
{
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(type->GetTypeAttr(&attributes), S_OK);
    const TYPEATTR copy = *attributes;
    type->ReleaseTypeAttr(attributes);
    return copy;
}

ComPtr<ITypeInfo> implementedType(const ComPtr<ITypeInfo>& type)
{
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> implemented;
    EXPECT_EQ(type->GetRefTypeOfImplType(0, &reference), S_OK);
    EXPECT_EQ(type->GetRefTypeInfo(reference, &implemented), S_OK);
    return implemented;
}

class TypeLibraryTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(LoadTypeLib(ServerDll::path().c_str(), &m_library), S_OK); }

    ComPtr<ITypeInfo> typeOf(REFGUID id) const
    {
        ComPtr<ITypeInfo> type;
        EXPECT_EQ(m_library->GetTypeInfoOfGuid(id, &type), S_OK);
        return type;
    }

    Apartment m_apartment;
    ComPtr<ITypeLib> m_library;
};

TEST_F(TypeLibraryTest, HasItsIdentifier)
{
    TLIBATTR* attributes = nullptr;
    ASSERT_EQ(m_library->GetLibAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->guid, kLibraryId);
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    EXPECT_EQ(attributes->lcid, 0U);
    EXPECT_EQ(attributes->syskind, SYS_WIN64);
    m_library->ReleaseTLibAttr(attributes);
    EXPECT_EQ(documentation(m_library), (Documentation{L"ZRTHUMBNAILLib", L"ZRThumbnail 1.0 Type Library"}));
    EXPECT_EQ(m_library->GetTypeInfoCount(), 2U);
}

TEST_F(TypeLibraryTest, ClassIsCreatableByItsDefaultInterface)
{
    const auto type = typeOf(kClassId);
    const TYPEATTR found = attributes(type);
    EXPECT_EQ(documentation(type), (Documentation{L"ZReExtract", L"ZReExtract Class"}));
    EXPECT_EQ(found.typekind, TKIND_COCLASS);
    EXPECT_TRUE(found.wTypeFlags & TYPEFLAG_FCANCREATE);
    ASSERT_EQ(found.cImplTypes, 1);
    INT flags = 0;
    EXPECT_EQ(type->GetImplTypeFlags(0, &flags), S_OK);
    EXPECT_EQ(flags, IMPLTYPEFLAG_FDEFAULT);
    EXPECT_EQ(attributes(implementedType(type)).guid, kInterfaceId);
}

TEST_F(TypeLibraryTest, InterfaceIsDualAndHasNoMethodsOfItsOwn)
{
    const auto type = typeOf(kInterfaceId);
    EXPECT_EQ(documentation(type), (Documentation{L"IZReExtract", L"IZReExtract Interface"}));
    const TYPEATTR dispatch = attributes(type);
    EXPECT_EQ(dispatch.typekind, TKIND_DISPATCH);
    EXPECT_TRUE(dispatch.wTypeFlags & TYPEFLAG_FDUAL);
    EXPECT_EQ(documentation(implementedType(type)).name, L"IDispatch");

    // The vtable side of a dual interface.
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> face;
    ASSERT_EQ(type->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    ASSERT_EQ(type->GetRefTypeInfo(reference, &face), S_OK);
    const TYPEATTR interfaceFace = attributes(face);
    EXPECT_EQ(interfaceFace.typekind, TKIND_INTERFACE);
    EXPECT_EQ(interfaceFace.cFuncs, 0);
    EXPECT_EQ(interfaceFace.cVars, 0);
    EXPECT_EQ(attributes(implementedType(face)).guid, __uuidof(IDispatch));
}

TEST(ResourcesTest, StringTableNamesTheProject)
{
    auto* const module = LoadLibraryExW(ServerDll::path().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(module);
    wchar_t text[64] = {};
    EXPECT_EQ(LoadStringW(module, 100, text, 64), 11);
    EXPECT_STREQ(text, L"ZRThumbnail");
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(101), L"REGISTRY"));
    EXPECT_TRUE(FindResourceW(module, MAKEINTRESOURCEW(1), L"TYPELIB"));
    FreeLibrary(module);
}

class VersionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const std::wstring path = ServerDll::path();
        m_block.resize(GetFileVersionInfoSizeW(path.c_str(), nullptr));
        ASSERT_FALSE(m_block.empty());
        ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(m_block.size()), m_block.data()));
    }

    std::wstring text(const std::wstring& name) const
    {
        wchar_t* value = nullptr;
        UINT length = 0;
        const std::wstring path = L"\\StringFileInfo\\040904B0\\" + name;
        EXPECT_TRUE(VerQueryValueW(m_block.data(), path.c_str(), reinterpret_cast<void**>(&value), &length));
        return value ? value : L"";
    }

    std::vector<BYTE> m_block;
};

TEST_F(VersionTest, NumbersAreThoseOfTheProject)
{
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(m_block.data(), L"\\", reinterpret_cast<void**>(&info), &length));
    EXPECT_EQ(info->dwFileVersionMS, 0x00010000U);
    EXPECT_EQ(info->dwFileVersionLS, 0x00000001U);
    EXPECT_EQ(info->dwProductVersionMS, 0x00010000U);
    EXPECT_EQ(info->dwProductVersionLS, 0x00000001U);
    EXPECT_EQ(info->dwFileType, DWORD{VFT_DLL});
}

TEST_F(VersionTest, TextsNameTheModule)
{
    EXPECT_EQ(text(L"FileDescription"), L"ZRThumbnail Module");
    EXPECT_EQ(text(L"ProductName"), L"ZRThumbnail Module");
    EXPECT_EQ(text(L"InternalName"), L"ZRThumbnail");
    EXPECT_EQ(text(L"OriginalFilename"), L"ZRThumbnail.DLL");
    EXPECT_EQ(text(L"FileVersion"), L"1.0.0.1");
    EXPECT_EQ(text(L"ProductVersion"), L"1.0.0.1");
}

} // namespace
} // namespace zr::test
