// SPDX-License-Identifier: MIT
// The object's interfaces; its requests are in extractor_requests_test.

#include "tests/shell/server_dll.h"

#include <gtest/gtest.h>

#include <propsys.h>
#include <shobjidl.h>
#include <thumbcache.h>

namespace zr::test
{
namespace
{

constexpr GUID kTypeLibraryInterface = {0x9EFBFC7F, 0x30FC, 0x40F7, {0xA7, 0x3A, 0xEC, 0x50, 0x36, 0xF3, 0x39, 0xB9}};

class ExtractorInterfacesTest : public ::testing::Test
{
protected:
    void TearDown() override { EXPECT_EQ(m_server.canUnloadNow(), S_OK); }

    ServerDll m_server;
};

const GUID kInterfaces[] = {__uuidof(IUnknown), __uuidof(IPersistFile), __uuidof(IExtractImage),
                            __uuidof(IExtractImage2)};

TEST_F(ExtractorInterfacesTest, EachInterfaceLeadsToEachOther)
{
    for (const GUID& from : kInterfaces) {
        ComPtr<IUnknown> start;
        ASSERT_EQ(m_server.factory()->CreateInstance(nullptr, from, &start), S_OK);
        for (const GUID& to : kInterfaces) {
            ComPtr<IUnknown> found;
            EXPECT_EQ(start->QueryInterface(to, &found), S_OK);
            ComPtr<IUnknown> back;
            ASSERT_EQ(found->QueryInterface(from, &back), S_OK);
            EXPECT_EQ(back.Get(), start.Get());
        }
    }
}

TEST_F(ExtractorInterfacesTest, IdentityIsTheSameEverywhere)
{
    const auto object = m_server.make<IPersistFile>();
    ComPtr<IUnknown> identity;
    ASSERT_EQ(object.As(&identity), S_OK);
    for (const GUID& iid : kInterfaces) {
        ComPtr<IUnknown> found;
        ASSERT_EQ(object->QueryInterface(iid, &found), S_OK);
        ComPtr<IUnknown> unknown;
        ASSERT_EQ(found->QueryInterface(__uuidof(IUnknown), &unknown), S_OK);
        EXPECT_EQ(unknown.Get(), identity.Get());
    }
    const auto other = m_server.make<IUnknown>();
    EXPECT_NE(other.Get(), identity.Get());
}

TEST_F(ExtractorInterfacesTest, OtherInterfacesAreRefused)
{
    const GUID refused[] = {__uuidof(IPersist),
                            __uuidof(IDispatch),
                            kTypeLibraryInterface,
                            __uuidof(IPersistStream),
                            __uuidof(IPersistStorage),
                            __uuidof(IInitializeWithFile),
                            __uuidof(IInitializeWithStream),
                            __uuidof(IThumbnailProvider),
                            __uuidof(IMarshal),
                            __uuidof(IClassFactory),
                            kClassId};
    const auto object = m_server.make<IExtractImage>();
    for (const GUID& iid : refused) {
        void* answer = object.Get();
        EXPECT_EQ(object->QueryInterface(iid, &answer), E_NOINTERFACE);
        EXPECT_EQ(answer, nullptr);
    }
}

TEST_F(ExtractorInterfacesTest, ReferencesOfAllInterfacesAreCountedTogether)
{
    auto file = m_server.make<IPersistFile>();
    EXPECT_EQ(file->AddRef(), 2U);
    ComPtr<IExtractImage> image;
    ASSERT_EQ(file.As(&image), S_OK);
    EXPECT_EQ(image->AddRef(), 4U);
    EXPECT_EQ(file->Release(), 3U);
    EXPECT_EQ(image->Release(), 2U);
    EXPECT_EQ(image.Reset(), 1U);
    EXPECT_EQ(m_server.canUnloadNow(), S_FALSE);
    EXPECT_EQ(file.Reset(), 0U);
    EXPECT_EQ(m_server.canUnloadNow(), S_OK);
}

TEST_F(ExtractorInterfacesTest, OtherMethodsOfFilesAreNotImplemented)
{
    const auto file = m_server.make<IPersistFile>();
    CLSID classId = kTypeLibraryInterface;
    LPOLESTR path = nullptr;
    EXPECT_EQ(file->GetClassID(&classId), E_NOTIMPL);
    EXPECT_EQ(classId, kTypeLibraryInterface);
    EXPECT_EQ(file->IsDirty(), E_NOTIMPL);
    EXPECT_EQ(file->Save(L"C:\\a.vrx", TRUE), E_NOTIMPL);
    EXPECT_EQ(file->Save(nullptr, FALSE), E_NOTIMPL);
    EXPECT_EQ(file->SaveCompleted(L"C:\\a.vrx"), E_NOTIMPL);
    EXPECT_EQ(file->GetCurFile(&path), E_NOTIMPL);
    EXPECT_EQ(path, nullptr);
}

struct LocationRow {
    DWORD flags;
    HRESULT result;
};

TEST_F(ExtractorInterfacesTest, LocationSaysWhetherToWaitAndWritesNothing)
{
    const LocationRow rows[] = {
        {0, S_OK},
        {IEIFLAG_ASYNC, E_PENDING},
        {IEIFLAG_CACHE | IEIFLAG_ASPECT | IEIFLAG_OFFLINE | IEIFLAG_QUALITY, S_OK},
        {IEIFLAG_ASYNC | IEIFLAG_SCREEN | IEIFLAG_ORIGSIZE, E_PENDING},
        {~DWORD{IEIFLAG_ASYNC}, S_OK},
    };
    const auto extractor = m_server.make<IExtractImage>();
    for (const LocationRow& row : rows) {
        wchar_t path[] = L"untouched";
        DWORD priority = 77;
        SIZE size = {96, 64};
        DWORD flags = row.flags;
        EXPECT_EQ(extractor->GetLocation(path, 10, &priority, &size, 24, &flags), row.result) << row.flags;
        EXPECT_STREQ(path, L"untouched");
        EXPECT_EQ(priority, 77U);
        EXPECT_EQ(size.cx, 96);
        EXPECT_EQ(size.cy, 64);
        EXPECT_EQ(flags, row.flags);
    }
    EXPECT_EQ(extractor->GetLocation(nullptr, 0, nullptr, nullptr, 0, nullptr), S_OK);
}

} // namespace
} // namespace zr::test
