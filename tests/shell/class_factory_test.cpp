// SPDX-License-Identifier: MIT
// What COM itself calls. No request is made here, so the DLL is unloaded after each test.

#include "tests/shell/server_dll.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <shobjidl.h>

namespace zr::test
{
namespace
{

void* const kUntouched = reinterpret_cast<void*>(1);

class ClassFactoryTest : public ::testing::Test
{
protected:
    void TearDown() override
    {
        EXPECT_EQ(m_server.canUnloadNow(), S_OK);
        EXPECT_TRUE(QCoreApplication::startingUp()) << "only a request starts Qt";
    }

    ServerDll m_server;
};

TEST_F(ClassFactoryTest, OnlyTheOneClassIsOffered)
{
    GUID other = kClassId;
    other.Data4[7] ^= 1;
    void* object = kUntouched;
    EXPECT_EQ(m_server.getClassObject(other, __uuidof(IClassFactory), &object), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(m_server.getClassObject(__uuidof(IExtractImage), __uuidof(IClassFactory), &object),
              CLASS_E_CLASSNOTAVAILABLE);
}

TEST_F(ClassFactoryTest, MissingOutPointersAreRefused)
{
    EXPECT_EQ(m_server.getClassObject(kClassId, __uuidof(IClassFactory), nullptr), E_POINTER);
    const auto factory = m_server.factory();
    EXPECT_EQ(factory->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
    EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(IUnknown), nullptr), E_POINTER);
    EXPECT_EQ(m_server.make<IUnknown>()->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
}

TEST_F(ClassFactoryTest, FactoryIsAClassFactoryAndNothingElse)
{
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(m_server.getClassObject(kClassId, IID_PPV_ARGS(unknown.GetAddressOf())), S_OK);
    const auto factory = m_server.factory();
    ComPtr<IUnknown> identity;
    EXPECT_EQ(factory.As(&identity), S_OK);
    EXPECT_EQ(identity.Get(), unknown.Get());
    void* object = kUntouched;
    EXPECT_EQ(factory->QueryInterface(__uuidof(IPersistFile), &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    object = kUntouched;
    EXPECT_EQ(m_server.getClassObject(kClassId, __uuidof(IExtractImage), &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
}

TEST_F(ClassFactoryTest, FactoryHoldsTheModule)
{
    {
        const auto factory = m_server.factory();
        EXPECT_EQ(m_server.canUnloadNow(), S_FALSE);
    }
    EXPECT_EQ(m_server.canUnloadNow(), S_OK);
}

TEST_F(ClassFactoryTest, LockServerHoldsTheModule)
{
    const auto lock = [this](BOOL on) { EXPECT_EQ(m_server.factory()->LockServer(on), S_OK); };
    lock(TRUE);
    EXPECT_EQ(m_server.canUnloadNow(), S_FALSE);
    lock(TRUE);
    lock(FALSE);
    EXPECT_EQ(m_server.canUnloadNow(), S_FALSE);
    lock(FALSE);
    EXPECT_EQ(m_server.canUnloadNow(), S_OK);
}

TEST_F(ClassFactoryTest, ObjectsHoldTheModule)
{
    auto first = m_server.make<IPersistFile>();
    EXPECT_EQ(m_server.canUnloadNow(), S_FALSE);
    auto second = m_server.make<IUnknown>();
    first.Reset();
    EXPECT_EQ(m_server.canUnloadNow(), S_FALSE);
    second.Reset();
    EXPECT_EQ(m_server.canUnloadNow(), S_OK);
}

TEST_F(ClassFactoryTest, RefusedObjectsAreDestroyed)
{
    void* object = kUntouched;
    EXPECT_EQ(m_server.factory()->CreateInstance(nullptr, __uuidof(IDispatch), &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(m_server.canUnloadNow(), S_OK);
}

// An object that aggregates another one and offers the interfaces of that inner object.
class Outer final : public IUnknown
{
public:
    Outer() = default;
    Outer(const Outer&) = delete;
    Outer& operator=(const Outer&) = delete;
    virtual ~Outer() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (iid != __uuidof(IUnknown))
            return m_inner->QueryInterface(iid, object);
        AddRef();
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }

    ULONG references() const { return m_references; }
    ComPtr<IUnknown>& inner() { return m_inner; }

private:
    ULONG m_references = 1;
    ComPtr<IUnknown> m_inner;
};

TEST_F(ClassFactoryTest, OuterObjectsMustAskForIUnknown)
{
    Outer outer;
    for (const GUID& iid : {__uuidof(IPersistFile), __uuidof(IExtractImage), __uuidof(IDispatch)}) {
        void* object = kUntouched;
        EXPECT_EQ(m_server.factory()->CreateInstance(&outer, iid, &object), CLASS_E_NOAGGREGATION);
        EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(outer.references(), 1U);
}

TEST_F(ClassFactoryTest, InnerObjectDelegatesToItsOuterObject)
{
    Outer outer;
    ASSERT_EQ(m_server.factory()->CreateInstance(&outer, IID_PPV_ARGS(outer.inner().GetAddressOf())), S_OK);
    EXPECT_NE(outer.inner().Get(), &outer);
    EXPECT_EQ(outer.references(), 1U) << "the inner object holds no reference to the outer one";

    ComPtr<IExtractImage2> extractor;
    ASSERT_EQ(outer.QueryInterface(IID_PPV_ARGS(extractor.GetAddressOf())), S_OK);
    EXPECT_EQ(outer.references(), 2U);
    ComPtr<IUnknown> identity;
    EXPECT_EQ(extractor.As(&identity), S_OK);
    EXPECT_EQ(identity.Get(), &outer);
    ComPtr<IPersistFile> file;
    EXPECT_EQ(extractor.As(&file), S_OK);
    EXPECT_EQ(outer.references(), 4U);
    EXPECT_EQ(file->IsDirty(), E_NOTIMPL);
    void* object = kUntouched;
    EXPECT_EQ(file->QueryInterface(__uuidof(IDispatch), &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);

    identity.Reset();
    file.Reset();
    extractor.Reset();
    EXPECT_EQ(outer.references(), 1U);
    EXPECT_EQ(m_server.canUnloadNow(), S_FALSE);
}

TEST_F(ClassFactoryTest, InnerUnknownHasItsOwnCount)
{
    Outer outer;
    ComPtr<IUnknown> inner;
    ASSERT_EQ(m_server.factory()->CreateInstance(&outer, IID_PPV_ARGS(inner.GetAddressOf())), S_OK);
    EXPECT_EQ(inner->AddRef(), 2U);
    EXPECT_EQ(inner->Release(), 1U);
    ComPtr<IUnknown> again;
    EXPECT_EQ(inner.As(&again), S_OK);
    EXPECT_EQ(again.Get(), inner.Get());
    EXPECT_EQ(outer.references(), 1U);
}

TEST(ServerDllTest, IsUnloadedWhenItHasServedNoRequest)
{
    {
        const ServerDll server;
        server.make<IPersistFile>();
        EXPECT_TRUE(ServerDll::isLoaded());
    }
    EXPECT_FALSE(ServerDll::isLoaded());
}

} // namespace
} // namespace zr::test
