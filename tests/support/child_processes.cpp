// SPDX-License-Identifier: MIT
#include "tests/support/child_processes.h"

#ifdef Q_OS_LINUX

#include <QDir>
#include <QFile>

#include <csignal>

namespace zr::test
{
namespace
{

// The fields of /proc/PID/stat after the program's name, which may contain anything: state, parent and so on.
QList<QByteArray> fieldsOf(qint64 process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = file.readAll();
    return text.mid(text.lastIndexOf(')') + 2).split(' ');
}

} // namespace

std::set<qint64> childrenOf(qint64 parent)
{
    std::set<qint64> children;
    const QStringList names = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& name : names) {
        bool isProcess = false;
        const qint64 process = name.toLongLong(&isProcess);
        if (isProcess && fieldsOf(process).value(1).toLongLong() == parent && isRunning(process))
            children.insert(process);
    }
    return children;
}

bool isRunning(qint64 process)
{
    const QByteArray state = fieldsOf(process).value(0);
    return !state.isEmpty() && state != "Z";
}

void killProcess(qint64 process)
{
    ::kill(static_cast<pid_t>(process), SIGKILL);
}

} // namespace zr::test

#else

#include <QString>

#include <windows.h>

#include <tlhelp32.h>

namespace zr::test
{
namespace
{

// A program without a console or a desktop gets one, which is a process of its own; when the console ends, so does the
// program. Under Wine a process that is just starting has no name, so it may be either.
bool mayBeMadeBySystem(const wchar_t* name)
{
    const QString file = QString::fromWCharArray(name);
    return file.isEmpty() || file == QLatin1String("conhost.exe") || file == QLatin1String("explorer.exe");
}

} // namespace

std::set<qint64> childrenOf(qint64 parent)
{
    std::set<qint64> children;
    HANDLE const snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
        if (entry.th32ParentProcessID == static_cast<DWORD>(parent) && !mayBeMadeBySystem(entry.szExeFile))
            children.insert(entry.th32ProcessID);
    }
    CloseHandle(snapshot);
    return children;
}

bool isRunning(qint64 process)
{
    HANDLE const handle = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(process));
    if (!handle)
        return false;
    const bool runs = WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
    CloseHandle(handle);
    return runs;
}

void killProcess(qint64 process)
{
    HANDLE const handle = OpenProcess(PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process));
    if (!handle)
        return;
    TerminateProcess(handle, 9);
    CloseHandle(handle);
}

} // namespace zr::test

#endif
