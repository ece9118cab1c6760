// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zr
{

/// One value that a script writes.
struct RegistryValue {
    std::wstring name;                              ///< empty for the key's default value
    std::variant<std::wstring, std::uint32_t> data; ///< a string, or a DWORD
};

/// One key that a script writes, with everything below it.
struct RegistryKeyEntry {
    /// What happens to the key when the script is undone.
    enum class Removal {
        WhenEmpty,      ///< no flag: it is removed unless somebody else has keys below it
        WithEverything, ///< ForceRemove: it is removed with everything below it, also before it is written
        Never,          ///< NoRemove: it stays, only what the script wrote below it is removed
    };

    std::wstring name;
    Removal removal = Removal::WhenEmpty;
    std::vector<RegistryValue> values;
    std::vector<RegistryKeyEntry> subkeys;
};

/// The keys below one of the registry's roots.
struct RegistryBranch {
    enum class Root { ClassesRoot, CurrentUser, LocalMachine };

    Root root = Root::ClassesRoot;
    std::vector<RegistryKeyEntry> keys;
};

/// The replacement of each %NAME% of a script, by name.
using RegistryReplacements = std::map<std::wstring, std::wstring, std::less<>>;

/// Parses a script in the syntax of ATL's registrar:
///
///     HKCR
///     {
///         [NoRemove | ForceRemove] KEY [= s 'STRING' | = d NUMBER]
///         {
///             val NAME = s 'STRING' | d NUMBER
///             KEY ...
///         }
///     }
///
/// Tokens are separated by blanks or enclosed in single quotes, where '' is a quote; a quoted token is never a keyword.
/// Keywords are case-insensitive. %NAME% is replaced inside every token, %% is a per cent sign. Deleting keys, and
/// values other than strings and DWORDs, are not supported. Returns nullopt when the text breaks these rules or names
/// an unknown replacement.
std::optional<std::vector<RegistryBranch>> parseRegistryScript(std::wstring_view text,
                                                               const RegistryReplacements& replacements);

} // namespace zr
