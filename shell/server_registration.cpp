// SPDX-License-Identifier: MIT
#include "shell/server_registration.h"

#include "request/module_path.h"
#include "request/this_module.h"
#include "shell/registrar.h"
#include "shell/resource_ids.h"

#include <oleauto.h>

namespace zr
{
namespace
{

// The script is plain ASCII.
std::wstring scriptText()
{
    auto* const module = thisModule();
    auto* const resource = FindResourceW(module, MAKEINTRESOURCEW(ZR_RESOURCE_REGISTRY), L"REGISTRY");
    auto* const loaded = resource ? LoadResource(module, resource) : nullptr;
    const auto* const text = loaded ? static_cast<const char*>(LockResource(loaded)) : nullptr;
    return text ? std::wstring(text, text + SizeofResource(module, resource)) : std::wstring();
}

// What ATL's registrar returns for a script that it cannot parse.
constexpr HRESULT kBadScript = DISP_E_EXCEPTION;

std::optional<std::vector<RegistryBranch>> serverScript()
{
    auto script = parseRegistryScript(scriptText(), {{L"MODULE", modulePath().toStdWString()}});
    if (script && script->empty())
        script.reset();
    return script;
}

// The type library that is a resource of the DLL.
class TypeLibrary
{
public:
    explicit TypeLibrary(const std::wstring& path) { m_result = LoadTypeLib(path.c_str(), &m_library); }
    Q_DISABLE_COPY(TypeLibrary)
    ~TypeLibrary()
    {
        if (m_attributes)
            m_library->ReleaseTLibAttr(m_attributes);
        if (m_library)
            m_library->Release();
    }

    HRESULT add(std::wstring path)
    {
        if (FAILED(m_result))
            return m_result;
        std::wstring folder = path.substr(0, path.find_last_of(L"\\/") + 1);
        return RegisterTypeLib(m_library, path.data(), folder.data());
    }

    HRESULT remove()
    {
        if (SUCCEEDED(m_result))
            m_result = m_library->GetLibAttr(&m_attributes);
        if (FAILED(m_result))
            return m_result;
        if (!isRegistered())
            return S_OK;
        return UnRegisterTypeLib(m_attributes->guid, m_attributes->wMajorVerNum, m_attributes->wMinorVerNum,
                                 m_attributes->lcid, m_attributes->syskind);
    }

private:
    // Unregistering fails alike for a library that is not registered and for one that may not be unregistered.
    bool isRegistered() const
    {
        BSTR path = nullptr;
        const HRESULT result = QueryPathOfRegTypeLib(m_attributes->guid, m_attributes->wMajorVerNum,
                                                     m_attributes->wMinorVerNum, m_attributes->lcid, &path);
        SysFreeString(path);
        return SUCCEEDED(result);
    }

    ITypeLib* m_library = nullptr;
    TLIBATTR* m_attributes = nullptr;
    HRESULT m_result;
};

} // namespace

HRESULT registerServer()
{
    const auto script = serverScript();
    const HRESULT result = script ? registerScript(*script) : kBadScript;
    if (FAILED(result))
        return result;
    const std::wstring path = modulePath().toStdWString();
    return TypeLibrary(path).add(path);
}

HRESULT unregisterServer()
{
    const auto script = serverScript();
    const HRESULT scriptResult = script ? unregisterScript(*script) : kBadScript;
    const HRESULT libraryResult = TypeLibrary(modulePath().toStdWString()).remove();
    return FAILED(scriptResult) ? scriptResult : libraryResult;
}

} // namespace zr
