// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <windows.h>

namespace zr::test
{

/// A part of the registry as sorted lines of text: "PATH" for each key and "PATH NAME=DATA" for each value, the name
/// of a default value being empty. Strings are in double quotes, other data in hexadecimal bytes.
using RegistryLines = std::vector<std::wstring>;

/// What is below `key`, without a line for the key itself and without the subkeys of these names.
RegistryLines registryBelow(HKEY key, const std::vector<std::wstring>& except = {});

/// The same of the key `path` below `root` from the file that Wine saves, which is many times faster: the data are as
/// written there, and volatile keys are missing.
RegistryLines savedRegistryBelow(HKEY root, const std::wstring& path);

bool keyExists(HKEY root, const std::wstring& path);

/// The default value as a string; a note if there is none.
std::wstring defaultValue(HKEY root, const std::wstring& path);

/// Makes the key; sets a string value of it, for an empty name the default one.
void writeKey(HKEY root, const std::wstring& path);
void writeString(HKEY root, const std::wstring& path, const std::wstring& name, const std::wstring& text);

/// Removes the key with everything below it.
void removeTree(HKEY root, const std::wstring& path);

/// The lines that are in one list only.
RegistryLines linesOnlyIn(const RegistryLines& lines, const RegistryLines& others);

} // namespace zr::test
