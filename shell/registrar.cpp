// SPDX-License-Identifier: MIT
#include "shell/registrar.h"

namespace zr
{
namespace
{

using Removal = RegistryKeyEntry::Removal;
using Root = RegistryBranch::Root;

// An open key, closed with the object.
class OpenKey
{
public:
    OpenKey() = default;
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;
    ~OpenKey()
    {
        if (m_key)
            RegCloseKey(m_key);
    }

    LSTATUS create(HKEY parent, const std::wstring& name)
    {
        return RegCreateKeyExW(parent, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE, nullptr,
                               &m_key, nullptr);
    }

    LSTATUS open(HKEY parent, const std::wstring& name, REGSAM access)
    {
        return RegOpenKeyExW(parent, name.c_str(), 0, access, &m_key);
    }

    HKEY get() const { return m_key; }

private:
    HKEY m_key = nullptr;
};

HKEY rootHandle(Root root)
{
    switch (root) {
    case Root::ClassesRoot:
        return HKEY_CLASSES_ROOT;
    case Root::CurrentUser:
        return HKEY_CURRENT_USER;
    case Root::LocalMachine:
        break;
    }
    return HKEY_LOCAL_MACHINE;
}

LSTATUS ignoreMissing(LSTATUS status)
{
    return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

LSTATUS writeBytes(HKEY key, const RegistryValue& value, DWORD type, const void* data, std::size_t size)
{
    return RegSetValueExW(key, value.name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size));
}

LSTATUS writeValue(HKEY key, const RegistryValue& value)
{
    if (const auto* const text = std::get_if<std::wstring>(&value.data))
        return writeBytes(key, value, REG_SZ, text->c_str(), (text->size() + 1) * sizeof(wchar_t));
    const DWORD number = std::get<std::uint32_t>(value.data);
    return writeBytes(key, value, REG_DWORD, &number, sizeof number);
}

LSTATUS writeKey(HKEY parent, const RegistryKeyEntry& entry)
{
    if (entry.removal == Removal::WithEverything) {
        const LSTATUS status = ignoreMissing(RegDeleteTreeW(parent, entry.name.c_str()));
        if (status != ERROR_SUCCESS)
            return status;
    }
    OpenKey key;
    LSTATUS status = key.create(parent, entry.name);
    for (const RegistryValue& value : entry.values) {
        if (status == ERROR_SUCCESS)
            status = writeValue(key.get(), value);
    }
    for (const RegistryKeyEntry& subkey : entry.subkeys) {
        if (status == ERROR_SUCCESS)
            status = writeKey(key.get(), subkey);
    }
    return status;
}

bool hasSubkeys(HKEY key)
{
    DWORD count = 0;
    return RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr) == ERROR_SUCCESS &&
           count > 0;
}

// Keeps the first failure.
void note(LSTATUS& first, LSTATUS status)
{
    if (first == ERROR_SUCCESS)
        first = ignoreMissing(status);
}

LSTATUS removeKey(HKEY parent, const RegistryKeyEntry& entry);

// Removes the entry's values and subkeys; `isShared` says whether others have keys there.
LSTATUS emptyKey(HKEY parent, const RegistryKeyEntry& entry, bool& isShared)
{
    OpenKey key;
    LSTATUS first = key.open(parent, entry.name, KEY_READ | KEY_WRITE);
    if (first != ERROR_SUCCESS)
        return first;
    for (const RegistryKeyEntry& subkey : entry.subkeys)
        note(first, removeKey(key.get(), subkey));
    for (const RegistryValue& value : entry.values)
        note(first, RegDeleteValueW(key.get(), value.name.c_str()));
    isShared = hasSubkeys(key.get());
    return first;
}

LSTATUS removeKey(HKEY parent, const RegistryKeyEntry& entry)
{
    if (entry.removal == Removal::WithEverything)
        return ignoreMissing(RegDeleteTreeW(parent, entry.name.c_str()));
    bool isShared = false;
    LSTATUS status = emptyKey(parent, entry, isShared);
    if (status == ERROR_SUCCESS && entry.removal == Removal::WhenEmpty && !isShared)
        status = RegDeleteKeyW(parent, entry.name.c_str());
    return ignoreMissing(status);
}

} // namespace

HRESULT registerScript(const std::vector<RegistryBranch>& script)
{
    for (const RegistryBranch& branch : script) {
        for (const RegistryKeyEntry& entry : branch.keys) {
            const LSTATUS status = writeKey(rootHandle(branch.root), entry);
            if (status != ERROR_SUCCESS) {
                unregisterScript(script);
                return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
            }
        }
    }
    return S_OK;
}

HRESULT unregisterScript(const std::vector<RegistryBranch>& script)
{
    LSTATUS first = ERROR_SUCCESS;
    for (const RegistryBranch& branch : script) {
        for (const RegistryKeyEntry& entry : branch.keys)
            note(first, removeKey(rootHandle(branch.root), entry));
    }
    return HRESULT_FROM_WIN32(static_cast<DWORD>(first));
}

} // namespace zr
