// SPDX-License-Identifier: MIT
#include "tests/shell/registry_dump.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

// No name of a key or a value is longer.
constexpr DWORD kMaxName = 16384;

std::wstring hexadecimal(const std::vector<BYTE>& data)
{
    static constexpr wchar_t kDigits[] = L"0123456789abcdef";
    std::wstring text;
    for (const BYTE byte : data)
        text += {kDigits[byte >> 4], kDigits[byte & 15]};
    return text;
}

std::wstring dataText(DWORD type, const std::vector<BYTE>& data)
{
    if (type != REG_SZ)
        return std::to_wstring(type) + L":" + hexadecimal(data);
    std::wstring text(data.size() / sizeof(wchar_t), L'\0');
    std::copy_n(data.data(), text.size() * sizeof(wchar_t), reinterpret_cast<BYTE*>(text.data()));
    // The terminating zero is part of the data.
    if (!text.empty() && text.back() == L'\0')
        text.pop_back();
    return L'"' + text + L'"';
}

void listValues(HKEY key, const std::wstring& path, RegistryLines& lines)
{
    std::wstring name(kMaxName, L'\0');
    for (DWORD index = 0;; ++index) {
        DWORD nameLength = kMaxName;
        DWORD type = 0;
        DWORD size = 0;
        if (RegEnumValueW(key, index, name.data(), &nameLength, nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
            return;
        std::vector<BYTE> data(size);
        nameLength = kMaxName;
        RegEnumValueW(key, index, name.data(), &nameLength, nullptr, &type, data.data(), &size);
        lines.push_back(path + L" " + name.substr(0, nameLength) + L"=" + dataText(type, data));
    }
}

void listSubkeys(HKEY key, const std::wstring& path, const std::vector<std::wstring>& except, RegistryLines& lines)
{
    std::wstring name(kMaxName, L'\0');
    for (DWORD index = 0;; ++index) {
        DWORD nameLength = kMaxName;
        if (RegEnumKeyExW(key, index, name.data(), &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            return;
        if (std::find(except.begin(), except.end(), name.c_str()) != except.end())
            continue;
        std::wstring subpath = path;
        if (!subpath.empty())
            subpath += L'\\';
        subpath += name.substr(0, nameLength);
        lines.push_back(subpath);
        HKEY subkey = nullptr;
        if (RegOpenKeyExW(key, name.c_str(), 0, KEY_READ, &subkey) != ERROR_SUCCESS)
            continue;
        listValues(subkey, subpath, lines);
        listSubkeys(subkey, subpath, {}, lines);
        RegCloseKey(subkey);
    }
}

void allowSaving()
{
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES, &token));
    TOKEN_PRIVILEGES wanted = {1, {{{}, SE_PRIVILEGE_ENABLED}}};
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, L"SeBackupPrivilege", &wanted.Privileges[0].Luid));
    EXPECT_TRUE(AdjustTokenPrivileges(token, FALSE, &wanted, 0, nullptr, nullptr));
    CloseHandle(token);
}

// The name of the key in a line such as "[Software\\\\Classes] 1795427110".
std::wstring savedKey(const std::string& line)
{
    std::wstring path;
    const std::size_t end = line.rfind(']');
    for (std::size_t i = 1; i < end; ++i) {
        if (line[i] == '\\' && line[i + 1] == '\\')
            ++i;
        path += static_cast<wchar_t>(line[i]);
    }
    return path;
}

// A key and those above it, which have no lines of their own in the file if they have no values.
void addKeys(std::wstring path, std::set<std::wstring>& keys)
{
    while (!path.empty() && keys.insert(path).second)
        path.resize(path.find(L'\\') == std::wstring::npos ? 0 : path.rfind(L'\\'));
}

// Without the times of changes. Long data go on in the next line, which is indented.
RegistryLines linesOfSaved(std::istream& file)
{
    RegistryLines lines;
    std::set<std::wstring> keys;
    std::wstring path;
    bool isInKeys = false;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind('[', 0) == 0) {
            path = savedKey(line);
            addKeys(path, keys);
            isInKeys = true;
        } else if (isInKeys && line.rfind("  ", 0) == 0) {
            lines.back().append(line.begin(), line.end());
        } else if (isInKeys && !line.empty() && line.rfind("#time=", 0) != 0) {
            lines.push_back(path + L' ' + std::wstring(line.begin(), line.end()));
        }
    }
    lines.insert(lines.end(), keys.begin(), keys.end());
    return lines;
}

} // namespace

RegistryLines registryBelow(HKEY key, const std::vector<std::wstring>& except)
{
    RegistryLines lines;
    listValues(key, {}, lines);
    listSubkeys(key, {}, except, lines);
    std::sort(lines.begin(), lines.end());
    return lines;
}

RegistryLines savedRegistryBelow(HKEY root, const std::wstring& path)
{
    allowSaving();
    wchar_t folder[MAX_PATH + 1] = {};
    GetTempPathW(MAX_PATH, folder);
    const std::filesystem::path file = folder + (L"registry-" + std::to_wstring(GetCurrentProcessId()));
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(RegSaveKeyW(key, file.c_str(), nullptr), ERROR_SUCCESS);
    RegCloseKey(key);
    std::ifstream saved(file);
    RegistryLines lines = linesOfSaved(saved);
    saved.close();
    EXPECT_TRUE(std::filesystem::remove(file));
    std::sort(lines.begin(), lines.end());
    return lines;
}

bool keyExists(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return false;
    RegCloseKey(key);
    return true;
}

std::wstring defaultValue(HKEY root, const std::wstring& path)
{
    wchar_t text[1024] = {};
    DWORD size = sizeof text;
    if (RegGetValueW(root, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS)
        return L"no default value";
    return text;
}

void writeKey(HKEY root, const std::wstring& path)
{
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr), ERROR_SUCCESS);
    RegCloseKey(key);
}

void writeString(HKEY root, const std::wstring& path, const std::wstring& name, const std::wstring& text)
{
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    ASSERT_EQ(RegSetKeyValueW(root, path.c_str(), name.c_str(), REG_SZ, text.c_str(), size), ERROR_SUCCESS);
}

void removeTree(HKEY root, const std::wstring& path)
{
    RegDeleteTreeW(root, path.c_str());
}

RegistryLines linesOnlyIn(const RegistryLines& lines, const RegistryLines& others)
{
    RegistryLines result;
    std::set_difference(lines.begin(), lines.end(), others.begin(), others.end(), std::back_inserter(result));
    return result;
}

} // namespace zr::test
