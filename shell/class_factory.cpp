// SPDX-License-Identifier: MIT
#include "shell/class_factory.h"

#include "shell/module.h"
#include "shell/zre_extract.h"

namespace zr
{
namespace
{

// What AddRef() and Release() return, since references are not counted one by one.
constexpr ULONG kSomeReferences = 1;

} // namespace

ClassFactory& ClassFactory::instance()
{
    static ClassFactory factory;
    return factory;
}

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (iid != __uuidof(IUnknown) && iid != __uuidof(IClassFactory))
        return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IClassFactory*>(this);
    return S_OK;
}

ULONG ClassFactory::AddRef()
{
    ModuleLock::add();
    return kSomeReferences + 1;
}

ULONG ClassFactory::Release()
{
    ModuleLock::remove();
    return kSomeReferences;
}

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (outer && iid != __uuidof(IUnknown))
        return CLASS_E_NOAGGREGATION;
    return CZReExtract::create(outer, iid, object);
}

HRESULT ClassFactory::LockServer(BOOL lock)
{
    if (lock)
        ModuleLock::add();
    else
        ModuleLock::remove();
    return S_OK;
}

} // namespace zr
