#pragma once

#include <string>
#include <vector>

#include <windows.h>

namespace zr::test
{

/// Lines of text on a part of the registry, sorted: "PATH" for each key and "PATH NAME=DATA" for each value, the name
/// of a default value being empty. Strings are in double quotes, other data in hexadecimal bytes.
using RegistryLines = std::vector<std::wstring>;

/// What is below `key`, without a line for the key itself and without the subkeys of these names.
RegistryLines registryBelow(HKEY key, const std::vector<std::wstring>& except = {});

/// Whether there is such a key.
bool keyExists(HKEY root, const std::wstring& path);

/// The default value as a string; a remark when there is none.
std::wstring defaultValue(HKEY root, const std::wstring& path);

/// Makes the key, and gives it a string value; an empty name stands for the default one.
void writeKey(HKEY root, const std::wstring& path);
void writeString(HKEY root, const std::wstring& path, const std::wstring& name, const std::wstring& text);

/// Removes the key with everything below it.
void removeTree(HKEY root, const std::wstring& path);

/// The lines that are in one list only.
RegistryLines linesOnlyIn(const RegistryLines& lines, const RegistryLines& others);

} // namespace zr::test
