// SPDX-License-Identifier: MIT
#include "host/check/handlers.h"

#include "readers/reader_table.h"
#include "request/server_class.h"

#include <QStringList>

#include <windows.h>

#include <objbase.h>
#include <shlwapi.h>

namespace zr
{
namespace
{

// The file browser asks handlers of the newer kind first.
constexpr const wchar_t* kHandlerKinds[] = {L"{e357fccd-a995-4576-b01f-234630154e96}",  // IThumbnailProvider
                                            L"{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}"}; // IExtractImage

constexpr DWORD kMaxText = 1024;

LPCWSTR wide(const QString& text)
{
    return reinterpret_cast<LPCWSTR>(text.utf16());
}

// The class that the system finds for the suffix, by the user's choice of a program, the suffix's own key and so on;
// empty when there is none.
QString handlerOf(LPCWSTR suffix)
{
    for (const wchar_t* const kind : kHandlerKinds) {
        wchar_t handler[kMaxText] = {};
        DWORD length = kMaxText;
        if (SUCCEEDED(AssocQueryStringW(ASSOCF_NONE, ASSOCSTR_SHELLEXTENSION, suffix, kind, handler, &length)))
            return QString::fromWCharArray(handler);
    }
    return {};
}

QString classValue(const QString& classId, const wchar_t* subkey)
{
    wchar_t text[kMaxText] = {};
    DWORD size = sizeof text;
    const QString key = QStringLiteral("CLSID\\") + classId + QString::fromWCharArray(subkey);
    RegGetValueW(HKEY_CLASSES_ROOT, wide(key), nullptr, RRF_RT_REG_SZ, nullptr, text, &size);
    return QString::fromWCharArray(text);
}

// What the registry says about another program's handler.
QString describe(const QString& classId)
{
    QStringList parts = {classId, classValue(classId, L""), classValue(classId, L"\\InprocServer32")};
    parts.removeAll(QString());
    return parts.join(QLatin1String(", "));
}

Finding checkSuffix(const QString& suffix)
{
    const QString what = QLatin1Char('.') + suffix;
    // Registered without a reader: whichever handler is asked for their thumbnails, there is nothing to fix.
    if (!supportedSuffixes().contains(suffix))
        return {Verdict::Note, what, QStringLiteral("ZRThumbnail cannot read such files, so they show no thumbnail")};
    const QString handler = handlerOf(wide(what));
    if (handler.isEmpty())
        return {Verdict::Fail, what, QStringLiteral("no program makes thumbnails: %1").arg(kRegisterAnew)};
    if (handler.compare(QLatin1String(kServerClassId), Qt::CaseInsensitive) != 0)
        return {Verdict::Fail, what,
                QStringLiteral("another program makes the thumbnails (%1): turn that off there, or %2")
                    .arg(describe(handler), kRegisterAnew)};
    return {Verdict::Ok, what, QStringLiteral("ZRThumbnail makes the thumbnails")};
}

} // namespace

Findings checkHandlers()
{
    Findings findings;
    for (const QString& suffix : registeredSuffixes())
        findings += checkSuffix(suffix);
    return findings;
}

} // namespace zr
