// SPDX-License-Identifier: MIT
#pragma once

#include <unknwn.h>

namespace zr
{

/// The factory of CZReExtract. There is one, which lives as long as the DLL; references to it hold the module.
class ClassFactory final : public IClassFactory
{
public:
    static ClassFactory& instance();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    /// With an outer object, only IUnknown can be asked for.
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

private:
    constexpr ClassFactory() = default;
};

} // namespace zr
