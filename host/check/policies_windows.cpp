// SPDX-License-Identifier: MIT
#include "host/check/handlers.h"

#include "request/server_class.h"

#include <windows.h>

namespace zr
{
namespace
{

const QString kFileBrowser = QStringLiteral("file browser");

constexpr const wchar_t* kOptions = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Advanced";
// Administrators set policies for users or machines, and under either of two keys.
constexpr const wchar_t* kPolicies[] = {L"Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer",
                                        L"Software\\Policies\\Microsoft\\Windows\\Explorer"};
constexpr const wchar_t* kApproved = L"Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Approved";
constexpr const wchar_t* kBlocked = L"Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Blocked";

struct Hive {
    HKEY key;
    const char* name;
};
const Hive kHives[] = {{HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE"}, {HKEY_CURRENT_USER, "HKEY_CURRENT_USER"}};

// Whether the number is there and not 0.
bool isSet(HKEY hive, const wchar_t* key, const wchar_t* name)
{
    DWORD value = 0;
    DWORD size = sizeof value;
    RegGetValueW(hive, key, name, RRF_RT_REG_DWORD, nullptr, &value, &size);
    return value != 0;
}

// Where the policy is set, as the user finds it in the registry; empty when it is not.
QString placeOfPolicy(const wchar_t* name)
{
    for (const Hive& hive : kHives) {
        for (const wchar_t* const key : kPolicies) {
            if (isSet(hive.key, key, name))
                return QLatin1String(hive.name) + QLatin1Char('\\') + QString::fromWCharArray(key);
        }
    }
    return {};
}

// The hive in which the server's class is listed below the key; null when it is in none.
const Hive* hiveThatLists(const wchar_t* key)
{
    const QString id = QLatin1String(kServerClassId);
    for (const Hive& hive : kHives) {
        if (RegGetValueW(hive.key, key, reinterpret_cast<LPCWSTR>(id.utf16()), RRF_RT_ANY, nullptr, nullptr, nullptr) ==
            ERROR_SUCCESS)
            return &hive;
    }
    return nullptr;
}

Findings failIf(bool isFault, const QString& sentence)
{
    return isFault ? Findings{{Verdict::Fail, kFileBrowser, sentence}} : Findings();
}

Findings checkPolicy(const wchar_t* name, const QString& consequence)
{
    const QString place = placeOfPolicy(name);
    return failIf(!place.isEmpty(), QStringLiteral("the policy '%1' %2; ask the administrator to lift it, in %3")
                                        .arg(QString::fromWCharArray(name), consequence, place));
}

Findings checkBlocked()
{
    const Hive* const hive = hiveThatLists(kBlocked);
    if (!hive)
        return {};
    return failIf(
        true, QStringLiteral("ZRThumbnail is blocked; an administrator unblocks it by deleting the value %1 "
                             "in %2\\%3")
                  .arg(QLatin1String(kServerClassId), QLatin1String(hive->name), QString::fromWCharArray(kBlocked)));
}

Findings checkApproval()
{
    if (hiveThatLists(kApproved))
        return {};
    const QString place = placeOfPolicy(L"EnforceShellExtensionSecurity");
    return failIf(!place.isEmpty(),
                  QStringLiteral("the policy 'EnforceShellExtensionSecurity' in %1 keeps ZRThumbnail out, which is not "
                                 "approved; an administrator approves it by adding the text value %2 in "
                                 "HKEY_LOCAL_MACHINE\\%3")
                      .arg(place, QLatin1String(kServerClassId), QString::fromWCharArray(kApproved)));
}

} // namespace

Findings checkPolicies()
{
    Findings failures = failIf(
        isSet(HKEY_CURRENT_USER, kOptions, L"IconsOnly"),
        QStringLiteral("its option 'Always show icons, never thumbnails' is on, so no program's thumbnails show; "
                       "turn it off in the folder options, on the page 'View'"));
    failures += checkPolicy(L"DisableThumbnails", QStringLiteral("turns all thumbnails off"));
    failures +=
        checkPolicy(L"DisableThumbnailsOnNetworkFolders", QStringLiteral("turns thumbnails off in network folders"));
    failures += checkApproval();
    failures += checkBlocked();
    return failures.isEmpty() ? Findings{{Verdict::Ok, kFileBrowser, QStringLiteral("shows thumbnails")}} : failures;
}

} // namespace zr
