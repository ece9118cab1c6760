// SPDX-License-Identifier: MIT
#include "tests/packaging/installer_fixture.h"

#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 120000;

QString pathBelowWine(const QString& path)
{
    return qEnvironmentVariable("WINEPREFIX") + "/drive_c" + path.mid(2);
}

bool isLink(const QString& path)
{
    const DWORD attributes = GetFileAttributesW(reinterpret_cast<LPCWSTR>(path.utf16()));
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
}

} // namespace

std::wstring InstallerFixture::uninstallEntry(const wchar_t* name)
{
    wchar_t text[1024] = {};
    DWORD size = sizeof text;
    RegGetValueW(HKEY_LOCAL_MACHINE, kUninstallKey.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
    return text;
}

DWORD InstallerFixture::uninstallNumber(const wchar_t* name)
{
    DWORD number = 0;
    DWORD size = sizeof number;
    RegGetValueW(HKEY_LOCAL_MACHINE, kUninstallKey.c_str(), name, RRF_RT_REG_DWORD, nullptr, &number, &size);
    return number;
}

ProgramRun InstallerFixture::runRaw(const QString& program, const QString& options)
{
    QProcess process;
    process.setWorkingDirectory("C:/");
    process.setProgram(program);
    process.setNativeArguments(options);
    startProgram(process);
    EXPECT_TRUE(process.waitForFinished(kTimeoutMs))
        << options.toStdString() << ": " << process.errorString().toStdString();
    const QString err = QString::fromUtf8(process.readAllStandardError()).remove('\r');
    return {process.exitCode(), {}, err.split('\n', Qt::SkipEmptyParts)};
}

void InstallerFixture::uninstallFrom(const QString& folder)
{
    EXPECT_EQ(runRaw(folder + "/uninstall.exe", "/S").status, 0);
    EXPECT_FALSE(QFileInfo::exists(folder)) << folder.toStdString();
    EXPECT_FALSE(keyExists(HKEY_LOCAL_MACHINE, kUninstallKey));
}

QStringList InstallerFixture::installedFiles(const QString& folder)
{
    QStringList files = filesBelow(package("payload"));
    files.replaceInStrings(package("payload"), folder);
    files += {folder + "/files.txt", folder + "/uninstall.exe", folder + "/uninstaller.exe"};
    files.sort();
    return files;
}

void InstallerFixture::expectPayloadIn(const QString& folder)
{
    EXPECT_EQ(filesBelow(folder), installedFiles(folder));
    for (const QString& path : filesBelow(package("payload"))) {
        if (QFileInfo(path).isFile()) {
            EXPECT_EQ(readFile(QString(path).replace(package("payload"), folder)), readFile(path))
                << path.toStdString();
        }
    }
}

void InstallerFixture::expectSame(const MachineState& before, const MachineState& after)
{
    EXPECT_EQ(added(before, after).registry, RegistryLines()) << "new";
    EXPECT_EQ(added(after, before).registry, RegistryLines()) << "lost";
    EXPECT_EQ(added(before, after).files, QStringList()) << "new";
    EXPECT_EQ(added(after, before).files, QStringList()) << "lost";
}

void InstallerFixture::writeFiles(const QString& folder, const QStringList& names)
{
    for (const QString& name : names) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(folder + '/' + name).path()));
        writeFile(folder + '/' + name, name.toUtf8());
    }
}

void InstallerFixture::expectFiles(const QString& folder, const QStringList& names)
{
    QStringList found;
    for (const QString& path : filesBelow(folder)) {
        if (QFileInfo(path).isFile())
            found += path.mid(folder.size() + 1);
    }
    QStringList expected = names;
    expected.sort();
    EXPECT_EQ(found, expected);
    for (const QString& name : names)
        EXPECT_EQ(readFile(folder + '/' + name), name.toUtf8()) << name.toStdString();
}

// Wine cannot create links, but recognises those of the host system.
void InstallerFixture::linkFolder(const QString& link, const QString& target)
{
    // Nor does it report the end of the host system's programs.
    EXPECT_TRUE(QProcess::startDetached("Z:/bin/ln", {"-s", pathBelowWine(target), pathBelowWine(link)}));
    EXPECT_TRUE(waitUntil([&] { return isLink(link); }));
}

void InstallerFixture::removeLink(const QString& link)
{
    ASSERT_TRUE(isLink(link)) << "the link must still exist";
    EXPECT_TRUE(QProcess::startDetached("Z:/bin/rm", {pathBelowWine(link)}));
    EXPECT_TRUE(waitUntil([&] { return !QFileInfo::exists(link); }));
}

::testing::AssertionResult refuses(const ProgramRun& run, const char* text)
{
    if (run.status == 2 && run.err.size() == 1 && run.err.first().contains(text))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "status " << run.status << ", " << run.err.join(" / ").toStdString();
}

} // namespace zr::test
