// SPDX-License-Identifier: MIT
// The installer and its uninstaller, run silently; the state of the machine is compared before and after.

#include "core/data_location.h"
#include "tests/packaging/installer_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tests/support/registered_suffixes.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace zr::test
{
namespace
{

const std::wstring kOtherHandler = L"{11111111-2222-3333-4444-555555555555}";

class InstallerTest : public InstallerFixture
{
protected:
    static void writeOtherClass()
    {
        writeString(HKEY_LOCAL_MACHINE, L"Software\\Classes\\CLSID\\" + kOtherHandler + L"\\InprocServer32", L"",
                    L"C:\\other.dll");
    }

    static void removeOtherClass() { removeTree(HKEY_LOCAL_MACHINE, L"Software\\Classes\\CLSID\\" + kOtherHandler); }
};

TEST_F(InstallerTest, UninstallLeavesOnlyTheCache)
{
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(setup()), 0);
    const MachineState installed = added(before, MachineState::now());
    EXPECT_EQ(added(MachineState::now(), before).registry, RegistryLines()) << "lost";
    EXPECT_EQ(installed.files, QStringList(kInstallFolder) + installedFiles(kInstallFolder) + QStringList(kShortcut));
    expectPayloadIn(kInstallFolder);
    for (const QString& suffix : kRegisteredSuffixes)
        EXPECT_EQ(defaultValue(HKEY_LOCAL_MACHINE, L"Software\\Classes\\" + suffix.toStdWString() + kHandlerSubkey),
                  kClassKey.substr(kClassKey.find(L'{')));

    EXPECT_EQ(uninstallEntry(L"DisplayName"), L"ZRThumbnail");
    EXPECT_EQ(uninstallEntry(L"DisplayVersion"), QString(ZRTHUMB_VERSION).toStdWString());
    EXPECT_EQ(uninstallEntry(L"Publisher"), L"The ZRThumbnail authors");
    EXPECT_EQ(uninstallEntry(L"UninstallString"), L"\"C:\\Program Files\\ZRThumbnail\\uninstall.exe\"");
    EXPECT_EQ(uninstallEntry(L"QuietUninstallString"), L"\"C:\\Program Files\\ZRThumbnail\\uninstall.exe\" /S");
    EXPECT_EQ(uninstallEntry(L"InstallLocation"), L"C:\\Program Files\\ZRThumbnail");
    EXPECT_EQ(uninstallEntry(L"InstallDate"), QDate::currentDate().toString("yyyyMMdd").toStdWString());
    EXPECT_EQ(uninstallEntry(L"Readme"), L"C:\\Program Files\\ZRThumbnail\\README.txt");
    EXPECT_EQ(uninstallEntry(L"DisplayIcon"), L"C:\\Program Files\\ZRThumbnail\\zrthumb.exe,0");
    qint64 bytes = 0;
    for (const QString& path : filesBelow(kInstallFolder))
        bytes += QFileInfo(path).size();
    EXPECT_NEAR(uninstallNumber(L"EstimatedSize"), static_cast<double>(bytes) / 1024, 200);

    expectThumbnailsBy(kInstallFolder);
    uninstall();
    EXPECT_TRUE(QFileInfo::exists(defaultDatabasePath()));
    EXPECT_TRUE(QFileInfo::exists(defaultLogPath()));
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    expectSame(before, MachineState::now());
    expectNoThumbnails();
}

TEST_F(InstallerTest, CleanUninstallAlsoRemovesTheDataOfAllUsers)
{
    const MachineState before = MachineState::now();
    const std::wstring profile = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-21-1-2-3-1001";
    const QString otherData = "C:/users/other/AppData/Local/KESTRAVO_Thumbnail";
    writeString(HKEY_LOCAL_MACHINE, profile, L"ProfileImagePath", L"C:\\users\\other");
    ASSERT_TRUE(QDir().mkpath(otherData + "/thumbnailImage"));
    writeFile(otherData + "/thumbnail.db", "x");
    writeFile(otherData + "/thumbnailImage/a.stlstl.png", "x");
    writeFile(otherData + "/theirs.txt", "x");

    ASSERT_EQ(install(setup()), 0);
    {
        FileBrowser browser;
        EXPECT_FALSE(browser.ask(sample("rook.vrx")).picture.isNull());
    }
    uninstall({"/CLEAN"});
    EXPECT_EQ(filesBelow(otherData), QStringList(otherData + "/theirs.txt"));
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));

    removeTree(HKEY_LOCAL_MACHINE, profile);
    ASSERT_TRUE(QDir("C:/users/other").removeRecursively());
    expectSame(before, MachineState::now());
}

TEST_F(InstallerTest, OtherProgramsKeepTheirKeys)
{
    writeString(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.stl", L"", L"Their.Document");
    writeString(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.stl" + kProviderSubkey, L"", kOtherHandler);
    writeString(HKEY_LOCAL_MACHINE, L"Software\\Classes\\.gf\\OpenWithProgids", L"Their.Document", L"");
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(setup()), 0);
    uninstall();
    expectSame(before, MachineState::now());
}

TEST_F(InstallerTest, SuffixReturnsToItsFormerHandler)
{
    const std::wstring key = L"Software\\Classes\\.stl" + kHandlerSubkey;
    writeOtherClass();
    writeString(HKEY_LOCAL_MACHINE, key, L"", kOtherHandler);
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(setup()), 0);
    EXPECT_NE(defaultValue(HKEY_LOCAL_MACHINE, key), kOtherHandler);
    ASSERT_EQ(install(setup()), 0); // now our own handler is there
    uninstall();
    expectSame(before, MachineState::now());

    ASSERT_EQ(install(setup()), 0);
    removeOtherClass();
    uninstall();
    EXPECT_FALSE(keyExists(HKEY_LOCAL_MACHINE, key)) << "that program is gone";
}

TEST_F(InstallerTest, SuffixThatAnotherProgramTookLaterIsLeftAlone)
{
    const std::wstring key = L"Software\\Classes\\.obj" + kHandlerSubkey;
    ASSERT_EQ(install(setup()), 0);
    writeString(HKEY_LOCAL_MACHINE, key, L"", kOtherHandler);
    uninstall();
    EXPECT_EQ(defaultValue(HKEY_LOCAL_MACHINE, key), kOtherHandler);
}

TEST_F(InstallerTest, UpgradeReplacesFilesInUse)
{
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(olderSetup()), 0);
    EXPECT_EQ(uninstallEntry(L"DisplayVersion"), L"0.9.0.0");
    EXPECT_TRUE(QFileInfo::exists(kInstallFolder + "/older/only.txt"));
    {
        FileBrowser browser;
        const QImage picture = browser.ask(sample("rook.vrx")).picture;
        EXPECT_FALSE(picture.isNull());
        EXPECT_FALSE(QFile::remove(kInstallFolder + "/ZRThumbnail.dll")) << "the file must be in use";

        ASSERT_EQ(install(setup()), 0) << "no restart must be needed";
        EXPECT_EQ(uninstallEntry(L"DisplayVersion"), QString(ZRTHUMB_VERSION).toStdWString());
        expectThumbnailsBy(kInstallFolder);
        EXPECT_FALSE(browser.ask(sample("gear.stl")).picture.isNull()) << "the older server must keep working";
    }
    // Again, now that no file is in use.
    ASSERT_EQ(install(setup()), 0);
    expectPayloadIn(kInstallFolder);
    uninstall({"/CLEAN"});
    expectSame(before, MachineState::now());
}

// Older versions had Qt next to the server, and running file browsers use it.
TEST_F(InstallerTest, UpgradeFromManyFilesLeavesNoneOfThem)
{
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(olderSetup()), 0);
    std::vector<HMODULE> inUse;
    for (const wchar_t* const name : {L"Qt5Core.dll", L"platforms\\qwindows.dll", L"libstdc++-6.dll"}) {
        inUse.push_back(LoadLibraryW((L"C:\\Program Files\\ZRThumbnail\\" + std::wstring(name)).c_str()));
        EXPECT_TRUE(inUse.back());
    }
    ASSERT_EQ(install(setup()), 0);
    const QStringList left = filesBelow(kInstallFolder);
    EXPECT_EQ(left.filter(QRegularExpression("Qt5|qwindows|libstdc")), QStringList());
    expectThumbnailsBy(kInstallFolder);

    for (auto* const module : inUse)
        FreeLibrary(module);
    ASSERT_EQ(install(setup()), 0);
    expectPayloadIn(kInstallFolder);
    uninstall({"/CLEAN"});
    expectSame(before, MachineState::now());
}

TEST_F(InstallerTest, UninstallsFilesInUse)
{
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(setup()), 0);
    {
        FileBrowser browser;
        EXPECT_FALSE(browser.ask(sample("rook.vrx")).picture.isNull());
        uninstall({"/CLEAN"}, true);
        EXPECT_EQ(added(before, MachineState::now()).registry, RegistryLines());
    }
    // The next start of Windows or the next installation removes files that were in use.
    ASSERT_EQ(install(setup()), 0);
    uninstall();
    expectSame(before, MachineState::now());
}

TEST_F(InstallerTest, UpgradeMayChangeTheFolder)
{
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(olderSetup()), 0);
    const QString elsewhere = "C:/Programs of mine/Thumbnails";
    ASSERT_EQ(run(setup(), {"/S", "/D=C:\\Programs", "of", "mine\\Thumbnails"}).status, 0);
    EXPECT_FALSE(QFileInfo::exists(kInstallFolder));
    expectPayloadIn(elsewhere);
    expectThumbnailsBy(elsewhere);

    EXPECT_EQ(run(elsewhere + "/uninstall.exe", {"/S", "/CLEAN"}).status, 0);
    EXPECT_FALSE(QFileInfo::exists(elsewhere));
    ASSERT_TRUE(QDir().rmdir("C:/Programs of mine"));
    expectSame(before, MachineState::now());
}

TEST_F(InstallerTest, FolderThatCannotBeWrittenChangesNothing)
{
    const MachineState before = MachineState::now();
    // A folder in which no user can write.
    EXPECT_EQ(install(setup(), {"/D=Z:\\proc\\sys\\below"}), 2);
    expectSame(before, MachineState::now());
}

TEST_F(InstallerTest, DamagedInstallationIsUninstalled)
{
    const MachineState before = MachineState::now();
    ASSERT_EQ(install(setup()), 0);
    writeFile(kInstallFolder + "/ZRThumbnail.dll", "damaged");
    ASSERT_TRUE(QFile::remove(kInstallFolder + "/zrthumb.exe"));
    uninstall();
    // The uninstaller must unregister the type library without the help of the DLL.
    expectSame(before, MachineState::now());
}

} // namespace
} // namespace zr::test
