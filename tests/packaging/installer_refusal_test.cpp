// SPDX-License-Identifier: MIT
// What the installer and the uninstaller refuse, with a status and a line that says why, and without changing anything.

#include "tests/packaging/installer_fixture.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace zr::test
{
namespace
{

const std::wstring kOtherHandler = L"{11111111-2222-3333-4444-555555555555}";

class InstallerRefusalTest : public InstallerFixture
{
protected:
    // An installer whose server cannot be registered.
    static QString unfitSetup() { return package("unfit-setup.exe"); }

    // Unlike the machine's state, with volatile keys.
    static RegistryLines registryOf(const std::wstring& path)
    {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
        const RegistryLines lines = registryBelow(key);
        RegCloseKey(key);
        return lines;
    }
};

TEST_F(InstallerRefusalTest, InvalidOptions)
{
    writeFile("C:/file.txt", "x");
    const MachineState before = MachineState::now();
    const struct {
        const char *options, *reason;
    } rows[] = {
        {"/S /quiet", "There is no option /quiet: it is /S, /CLEAN when uninstalling, /LOG=FILE"},
        {"/S /CLEAN", "There is no option /CLEAN"},
        {"/S /d=C:\\Models", "There is no option /d=C:\\Models"},
        {"/S \"/D=C:\\Some folder\"", "There is no option /D=C:\\Some folder"},
        {"/S Models", "There is no option Models"},
        {"/S /LOG=", "/LOG= needs the name of a file"},
        {"/S /D=Models", "Models is no full path of a folder, such as C:\\Program Files\\ZRThumbnail."},
        {"/S /D=C:Models", "C:Models is no full path of a folder"},
        {"/S /D=\\Models", "\\Models is no full path of a folder"},
        {"/S /D=", " is no full path of a folder"},
        {"/S /D=C:\\a:b", "C:\\a:b is no full path of a folder"},
        {"/S /D=C:\\a*", "C:\\a* is no full path of a folder"},
        {"/S /D=\\\\?\\C:\\Models", "is no full path of a folder"},
        {"/S /D=\\\\.\\C:\\Models", "is no full path of a folder"},
        {"/S /D=C:\\file.txt", "C:\\file.txt is a file: choose a folder."},
        {"/S /D=C:\\file.txt\\below", "The files cannot be written to C:\\file.txt\\below."},
        {"/S /D=Q:\\Models", "The files cannot be written to Q:\\Models."},
    };
    for (const auto& row : rows)
        EXPECT_TRUE(refuses(runRaw(setup(), row.options), row.reason)) << row.options;
    expectSame(before, MachineState::now());
    ASSERT_TRUE(QFile::remove("C:/file.txt"));
}

TEST_F(InstallerRefusalTest, SecondRunAtTheSameTime)
{
    ASSERT_EQ(install(setup()), 0);
    const MachineState before = MachineState::now();
    auto* const other = CreateMutexW(nullptr, FALSE, L"Global\\ZRThumbnail setup");
    EXPECT_TRUE(refuses(runRaw(setup(), "/S"), "is being installed or uninstalled already"));
    EXPECT_TRUE(refuses(runRaw(kInstallFolder + "/uninstall.exe", "/S"), "is being installed or uninstalled already"));
    CloseHandle(other);
    expectSame(before, MachineState::now());
    uninstall();
}

TEST_F(InstallerRefusalTest, UninstallerWithoutItsInstallation)
{
    const QString copy = "C:/copy";
    ASSERT_EQ(install(setup()), 0);
    copyFolder(kInstallFolder, copy + "/all");
    writeFiles(copy, {"uninstall.exe", "pair/files.txt"});
    for (const char* const path : {"uninstall.exe", "pair/uninstall.exe", "pair/uninstaller.exe"}) {
        QFile::remove(copy + '/' + path);
        ASSERT_TRUE(QFile::copy(kInstallFolder + '/' + QFileInfo(path).fileName(), copy + '/' + path));
    }
    const MachineState before = MachineState::now();
    EXPECT_TRUE(refuses(runRaw(copy + "/uninstall.exe", "/S"), "C:\\copy holds no installation."));
    EXPECT_TRUE(refuses(runRaw(copy + "/pair/uninstall.exe", "/S"), "C:\\copy\\pair holds no installation."));
    EXPECT_TRUE(refuses(runRaw(copy + "/all/uninstall.exe", "/S"),
                        "is installed in C:\\Program Files\\ZRThumbnail, not in C:\\copy\\all"));
    EXPECT_TRUE(refuses(runRaw(kInstallFolder + "/uninstall.exe", "/S /D=C:\\copy"),
                        "There is no option /D= when uninstalling"));
    expectSame(before, MachineState::now());
    uninstall();
    EXPECT_TRUE(QDir(copy).removeRecursively());
}

TEST_F(InstallerRefusalTest, FailedRegistrationLeavesNothing)
{
    const MachineState before = MachineState::now();
    EXPECT_TRUE(refuses(runRaw(unfitSetup(), "/S /D=C:\\one\\two"), "cannot be registered, so nothing is installed"));
    expectSame(before, MachineState::now());
}

// Windows refuses to create permanent keys below a volatile one.
TEST_F(InstallerRefusalTest, RegistrationThatFailsHalfWayLeavesNothing)
{
    const std::wstring handler = L"Software\\Classes\\.stl" + kHandlerSubkey;
    const std::wstring other = L"Software\\Classes\\CLSID\\" + kOtherHandler;
    writeString(HKEY_LOCAL_MACHINE, other + L"\\InprocServer32", L"", L"C:\\other.dll");
    writeString(HKEY_LOCAL_MACHINE, handler, L"", kOtherHandler);
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.obj", 0, nullptr, REG_OPTION_VOLATILE,
                              KEY_ALL_ACCESS, nullptr, &key, nullptr),
              0);
    RegCloseKey(key);
    writeString(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.obj", L"", L"Their.Document");
    const MachineState before = MachineState::now();
    const RegistryLines volatileBefore = registryOf(L"Software\\Classes\\.obj");
    EXPECT_TRUE(refuses(runRaw(setup(), "/S"), "cannot be registered, so nothing is installed"));
    expectSame(before, MachineState::now());
    EXPECT_EQ(registryOf(L"Software\\Classes\\.obj"), volatileBefore);
    removeTree(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.obj");
    removeTree(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.stl");
    removeTree(HKEY_LOCAL_MACHINE, other);
}

TEST_F(InstallerRefusalTest, FailedRegistrationKeepsTheOldVersion)
{
    ASSERT_EQ(install(olderSetup()), 0);
    for (const char* const options : {"/S", "/S /D=C:\\one\\two"}) {
        const MachineState before = MachineState::now();
        EXPECT_TRUE(refuses(runRaw(unfitSetup(), options), "cannot be registered, so the version before stays"));
        expectSame(before, MachineState::now());
    }
    EXPECT_EQ(uninstallEntry(L"DisplayVersion"), L"0.9.0.0");
    expectThumbnailsBy(kInstallFolder);
    uninstall();
}

// This fails only after the old version has been removed.
TEST_F(InstallerRefusalTest, FileThatCannotBeMovedInLeavesNothing)
{
    const MachineState before = MachineState::now();
    for (const bool upgrade : {false, true}) {
        SCOPED_TRACE(upgrade);
        if (upgrade) {
            ASSERT_EQ(install(olderSetup()), 0);
            ASSERT_TRUE(QFile::remove(kInstallFolder + "/zrthumb.exe"));
        }
        QProcess process;
        startProgram(process, setup(), {"/S"});
        EXPECT_TRUE(waitUntil([] { return QFileInfo::exists(kInstallFolder + "/ZRThumbnail.incoming/LICENSE.txt"); }));
        ASSERT_TRUE(QDir().mkdir(kInstallFolder + "/zrthumb.exe"));
        EXPECT_TRUE(process.waitForFinished());
        EXPECT_TRUE(refuses({process.exitCode(), {}, {QString::fromUtf8(process.readAllStandardError())}},
                            "zrthumb.exe cannot be written, so ZRThumbnail is not installed"));
        EXPECT_EQ(filesBelow(kInstallFolder), QStringList(kInstallFolder + "/zrthumb.exe"));
        ASSERT_TRUE(QDir(kInstallFolder).removeRecursively());
        expectSame(before, MachineState::now());
    }
}

} // namespace
} // namespace zr::test
