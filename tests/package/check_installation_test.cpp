// zrthumb.exe --check: what it finds in an installation where all is well, and each fault that it is to name.

#include "core/data_location.h"
#include "tests/package/package_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace zr::test
{
namespace
{

const std::wstring kOtherHandler = L"{11111111-2222-3333-4444-555555555555}";

const std::wstring kExplorer = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";

// Everything but registered in a folder of its own.
class CheckInstallationTest : public PackageTest
{
protected:
    void SetUp() override
    {
        PackageTest::SetUp();
        copyFolder(unpackedZip(), m_place);
    }

    void TearDown() override
    {
        PackageTest::TearDown();
        EXPECT_TRUE(QDir(m_place).removeRecursively());
    }

    void registerServer() const { runBatch(m_place + "/register.cmd", "/q"); }

    ProgramRun check() const { return run(m_place + "/zrthumb.exe", {"--check"}); }

    static QStringList failuresOf(const ProgramRun& run)
    {
        EXPECT_EQ(run.status, 1);
        return run.out.filter(QRegularExpression("^FAIL "));
    }

    void remove(const QString& name) const { ASSERT_TRUE(QFile::remove(m_place + '/' + name)); }

    const QString m_place = QStringLiteral("C:/checked place");
};

// On a display without OpenGL.
using WithoutOpenGlTest = CheckInstallationTest;

TEST_F(CheckInstallationTest, AllIsWell)
{
    registerServer();
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, QStringList());
    QStringList expected = {
        "ok   class: registered, {E45A903D-53AE-4A14-906E-0260D13FF77F}",
        "ok   server: " + m_place + "/ZRThumbnail.dll",
        "ok   file browser: shows thumbnails",
    };
    for (const QString& suffix : kSuffixes)
        expected += "ok   " + suffix + ": ZRThumbnail makes the thumbnails";
    expected += QString("ok   Qt: %1 starts, platform windows").arg(qVersion());
    EXPECT_EQ(run.out.mid(0, expected.size()), expected);
    const QStringList rest = run.out.mid(expected.size());
    ASSERT_EQ(rest.size(), 4);
    EXPECT_TRUE(rest[0].startsWith("ok   OpenGL: 4.5 ")) << rest[0].toStdString();
    EXPECT_EQ(rest[1], "ok   data folder: " + dataFolder() + " is not there yet; the first thumbnail makes it");
    EXPECT_EQ(rest[2], "ok   database: none yet; the first thumbnail makes it");
    EXPECT_EQ(rest[3], "ok   log: none yet");
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
}

TEST_F(CheckInstallationTest, ServerElsewhereIsLookedAtThere)
{
    registerServer();
    const ProgramRun run = PackageTest::run(unpackedZip() + "/zrthumb.exe", {"--check"});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.contains("ok   server: " + m_place + "/ZRThumbnail.dll"));
}

TEST_F(CheckInstallationTest, ChangesNothing)
{
    registerServer();
    expectThumbnailsBy(m_place);
    const MachineState before = MachineState::now();
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.contains("ok   data folder: " + dataFolder() + " is writable"));
    EXPECT_EQ(run.out.filter(QRegularExpression("^       \\d\\d\\.\\d\\d\\.\\d{4} - ")).size(), 10);
    const MachineState after = MachineState::now();
    EXPECT_EQ(added(before, after).registry, RegistryLines());
    EXPECT_EQ(added(after, before).registry, RegistryLines());
    EXPECT_EQ(before.files, after.files);
}

TEST_F(CheckInstallationTest, UnregisteredClassIsTold)
{
    const QStringList failures = failuresOf(check());
    QStringList expected = {
        "FAIL class: not registered: run the installer again, or register.cmd in the folder of ZRThumbnail.dll"};
    for (const QString& suffix : kSuffixes)
        expected += "FAIL " + suffix + ": no program makes thumbnails";
    EXPECT_EQ(failures, expected);
}

TEST_F(CheckInstallationTest, RegisteredPathThatIsGoneIsTold)
{
    registerServer();
    remove("ZRThumbnail.dll");
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL server: " + m_place +
                          "/ZRThumbnail.dll is not there: run the installer again, or register.cmd in the folder of "
                          "ZRThumbnail.dll"));
}

TEST_F(CheckInstallationTest, DamagedServerIsTold)
{
    registerServer();
    writeFile(m_place + "/ZRThumbnail.dll", "damaged");
    const QStringList failures = failuresOf(check());
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures[0].startsWith("FAIL server: " + m_place + "/ZRThumbnail.dll does not load (error "))
        << failures[0].toStdString();
}

TEST_F(CheckInstallationTest, ForeignHandlerIsToldWithAllThatIsKnownOfIt)
{
    registerServer();
    writeString(HKEY_CLASSES_ROOT, L".stl" + kHandlerSubkey, L"", kOtherHandler);
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL .stl: another program makes the thumbnails: {11111111-2222-3333-4444-555555555555}"));

    const std::wstring other = L"CLSID\\" + kOtherHandler;
    writeString(HKEY_CLASSES_ROOT, other, L"", L"Their Viewer");
    writeString(HKEY_CLASSES_ROOT, other + L"\\InprocServer32", L"", L"C:\\theirs.dll");
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL .stl: another program makes the thumbnails: {11111111-2222-3333-4444-555555555555}, "
                          "Their Viewer, C:\\theirs.dll"));
    removeTree(HKEY_CLASSES_ROOT, other);
}

// File browsers ask handlers of the newer kind first.
TEST_F(CheckInstallationTest, ForeignHandlerOfTheNewerKindIsTold)
{
    registerServer();
    writeString(HKEY_CLASSES_ROOT, L".obj" + kProviderSubkey, L"", kOtherHandler);
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL .obj: another program makes the thumbnails: {11111111-2222-3333-4444-555555555555}"));
}

TEST_F(CheckInstallationTest, MissingHandlerIsTold)
{
    registerServer();
    removeTree(HKEY_CLASSES_ROOT, L".gf");
    EXPECT_EQ(failuresOf(check()), QStringList("FAIL .gf: no program makes thumbnails"));
}

TEST_F(CheckInstallationTest, FileBrowserWithoutThumbnailsIsTold)
{
    registerServer();
    const std::wstring advanced = kExplorer + L"Advanced";
    const DWORD on = 1;
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, advanced.c_str(), L"IconsOnly", REG_DWORD, &on, sizeof on), 0);
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL file browser: its option 'Always show icons, never thumbnails' is on: no program's "
                          "thumbnails show"));
    RegDeleteKeyValueW(HKEY_CURRENT_USER, advanced.c_str(), L"IconsOnly");
}

TEST_F(CheckInstallationTest, ReadOnlyDataFolderIsTold)
{
    registerServer();
    // A place where nobody can write.
    const std::wstring folders = kExplorer + L"User Shell Folders";
    wchar_t before[MAX_PATH] = {};
    DWORD size = sizeof before;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, folders.c_str(), L"Local AppData", RRF_RT_ANY | RRF_NOEXPAND, nullptr,
                           before, &size),
              0);
    writeString(HKEY_CURRENT_USER, folders, L"Local AppData", L"Z:\\proc\\sys");
    const ProgramRun run = check();
    RegSetKeyValueW(HKEY_CURRENT_USER, folders.c_str(), L"Local AppData", REG_EXPAND_SZ, before, size);
    EXPECT_EQ(failuresOf(run),
              QStringList("FAIL data folder: Z:/proc/sys/KESTRAVO_Thumbnail cannot be made: Z:/proc/sys is read-only"));
}

TEST_F(WithoutOpenGlTest, MissingOpenGlIsTold)
{
    registerServer();
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL OpenGL: there is no OpenGL, so models have no thumbnails; a driver "
                          "of the graphics card's maker brings it"));
}

} // namespace
} // namespace zr::test
