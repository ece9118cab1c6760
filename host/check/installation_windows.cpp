// SPDX-License-Identifier: MIT
#include "host/check/installation.h"

#include "host/check/handlers.h"
#include "request/server_class.h"

#include <QDir>
#include <QFileInfo>

#include <windows.h>

#include <shobjidl.h>
#include <wrl/client.h>

namespace zr
{
namespace
{

const QString kClass = QStringLiteral("class");
const QString kServer = QStringLiteral("server");
const QString kInstallAnew = QStringLiteral("run the installer again, or unpack the zip again and run register.cmd");

constexpr std::size_t kMaxRegisteredPath = 1024;

// Why the DLL cannot be loaded, empty when it can. It is loaded in the same way as by COM.
QString loadFault(const QString& path)
{
    const QString native = QDir::toNativeSeparators(path);
    if (LoadLibraryExW(reinterpret_cast<LPCWSTR>(native.utf16()), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH))
        return {};
    return QStringLiteral("%1 does not load (error %2): %3").arg(path, QString::number(GetLastError()), kInstallAnew);
}

// Where the registry says that the class's DLL is; empty when it says nothing.
QString registeredPath()
{
    wchar_t path[kMaxRegisteredPath] = {};
    DWORD size = sizeof path;
    const QString key = QStringLiteral("CLSID\\%1\\InprocServer32").arg(QLatin1String(kServerClassId));
    RegGetValueW(HKEY_CLASSES_ROOT, reinterpret_cast<LPCWSTR>(key.utf16()), nullptr, RRF_RT_REG_SZ, nullptr, path,
                 &size);
    return QDir::fromNativeSeparators(QString::fromWCharArray(path));
}

Finding checkClass(const QString& path)
{
    if (path.isEmpty())
        return {Verdict::Fail, kClass, QStringLiteral("not registered: ") + kRegisterAnew};
    return {Verdict::Ok, kClass, QStringLiteral("registered, %1").arg(QLatin1String(kServerClassId))};
}

// Creates and releases an object, as the file browser's first step. Does not start Qt.
Finding checkServer(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return {Verdict::Fail, kServer, QStringLiteral("%1 is not there: %2").arg(path, kRegisterAnew)};
    const QString fault = loadFault(path);
    if (!fault.isEmpty())
        return {Verdict::Fail, kServer, fault};
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CLSID classId = {};
    CLSIDFromString(reinterpret_cast<LPCOLESTR>(QString(QLatin1String(kServerClassId)).utf16()), &classId);
    Microsoft::WRL::ComPtr<IPersistFile> object;
    const HRESULT result =
        CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf()));
    if (FAILED(result))
        return {Verdict::Fail, kServer,
                QStringLiteral("%1 makes no object (error 0x%2): %3")
                    .arg(path, QString::number(static_cast<quint32>(result), 16), kInstallAnew)};
    return {Verdict::Ok, kServer, path};
}

} // namespace

Findings checkInstallation()
{
    const QString path = registeredPath();
    Findings findings = {checkClass(path)};
    if (!path.isEmpty())
        findings += checkServer(path);
    return findings + checkPolicies() + checkHandlers();
}

} // namespace zr
