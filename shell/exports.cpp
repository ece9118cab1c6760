// SPDX-License-Identifier: MIT
// The DLL's exports; zrthumbnail.def lists their names.

#include "shell/class_factory.h"
#include "shell/identifiers.h"
#include "shell/module.h"
#include "shell/server_registration.h"

#include <olectl.h>

STDAPI DllCanUnloadNow()
{
    return zr::ModuleLock::isHeld() ? S_FALSE : S_OK;
}

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (classId != zr::kExtractorClassId)
        return CLASS_E_CLASSNOTAVAILABLE;
    return zr::ClassFactory::instance().QueryInterface(iid, object);
}

STDAPI DllRegisterServer()
{
    try {
        return zr::registerServer();
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}

STDAPI DllUnregisterServer()
{
    try {
        return zr::unregisterServer();
    } catch (...) {
        return E_OUTOFMEMORY;
    }
}
