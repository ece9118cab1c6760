// SPDX-License-Identifier: MIT
// zrthumb.exe --check: what it finds in a sound installation, and each fault that it must report.

#include "core/data_location.h"
#include "tests/packaging/package_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tests/support/registered_suffixes.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace zr::test
{
namespace
{

const std::wstring kOtherHandler = L"{11111111-2222-3333-4444-555555555555}";

const std::wstring kExplorer = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\";
const std::wstring kPolicies = L"Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\Explorer";
const std::wstring kOtherPolicies = L"Software\\Policies\\Microsoft\\Windows\\Explorer";
const std::wstring kShellExtensions = L"Software\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\";
const std::wstring kClassId = L"{E45A903D-53AE-4A14-906E-0260D13FF77F}";

const QString kNoReader = "ZRThumbnail cannot read such files, so they show no thumbnail";
const QString kRegisterAgain = "run the installer again, or register.cmd in the folder of ZRThumbnail.dll";

// A value that is in the registry only while the object lives.
class RegistryValue
{
public:
    RegistryValue(HKEY hive, std::wstring key, std::wstring name, DWORD type, const void* bytes, DWORD size)
        : m_hive(hive), m_key(std::move(key)), m_name(std::move(name))
    {
        EXPECT_NE(RegGetValueW(m_hive, m_key.c_str(), m_name.c_str(), RRF_RT_ANY, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(RegSetKeyValueW(m_hive, m_key.c_str(), m_name.c_str(), type, bytes, size), 0);
    }
    RegistryValue(HKEY hive, const std::wstring& key, const std::wstring& name, DWORD number = 1)
        : RegistryValue(hive, key, name, REG_DWORD, &number, sizeof number)
    {
    }
    ~RegistryValue() { RegDeleteKeyValueW(m_hive, m_key.c_str(), m_name.c_str()); }
    RegistryValue(const RegistryValue&) = delete;
    RegistryValue& operator=(const RegistryValue&) = delete;

private:
    HKEY m_hive;
    std::wstring m_key;
    std::wstring m_name;
};

// The class in a list of shell extensions.
struct ListedClass : RegistryValue {
    ListedClass(HKEY hive, const std::wstring& list)
        : RegistryValue(hive, kShellExtensions + list, kClassId, REG_SZ, L"ZRThumbnail", sizeof L"ZRThumbnail")
    {
    }
};

// The files are in a folder of their own, not yet registered.
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
    for (const QString& suffix : kRegisteredSuffixes)
        expected += suffix == ".photon" ? "note .photon: " + kNoReader
                                        : "ok   " + suffix + ": ZRThumbnail makes the thumbnails";
    expected += QString("ok   Qt: %1 starts, platform windows").arg(qVersion());
    EXPECT_EQ(run.out.mid(0, expected.size()), expected);
    const QStringList rest = run.out.mid(expected.size());
    ASSERT_EQ(rest.size(), 7);
    EXPECT_TRUE(rest[0].startsWith("ok   OpenGL: 4.5 ")) << rest[0].toStdString();
    EXPECT_EQ(rest[1], "ok   data folder: " + dataFolder() + " is not there yet; the first thumbnail makes it");
    EXPECT_EQ(rest[2], "ok   database: none yet; the first thumbnail makes it");
    EXPECT_EQ(rest[3], "ok   log: none yet");
    EXPECT_EQ(rest[4], "ok   sample slice file: its thumbnail was made, and taken away again");
    EXPECT_EQ(rest[5], "ok   sample model: its thumbnail was made, and taken away again");
    EXPECT_EQ(rest[6], "no problems found");
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
}

TEST_F(CheckInstallationTest, ServerInAnotherFolderIsChecked)
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
    const QByteArray log = readFile(defaultLogPath());
    const MachineState before = MachineState::now();
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.contains("ok   data folder: " + dataFolder() + " is writable"));
    EXPECT_EQ(run.out.filter(QRegularExpression("^       \\d\\d\\.\\d\\d\\.\\d{4} - ")).size(), 10);
    const MachineState after = MachineState::now();
    EXPECT_EQ(added(before, after).registry, RegistryLines());
    EXPECT_EQ(added(after, before).registry, RegistryLines());
    EXPECT_EQ(before.files, after.files);
    EXPECT_TRUE(readFile(defaultLogPath()).startsWith(log));
    // No row of a sample is left, so the number of rows is the same.
    EXPECT_EQ(check().out.filter("ok   database: "), run.out.filter("ok   database: "));
}

TEST_F(CheckInstallationTest, UnregisteredClassIsReported)
{
    const ProgramRun run = check();
    QStringList expected = {"FAIL class: not registered: " + kRegisterAgain};
    for (const QString& suffix : kRegisteredSuffixes) {
        if (suffix != ".photon")
            expected += "FAIL " + suffix + ": no program makes thumbnails: " + kRegisterAgain;
    }
    expected += "FAIL sample slice file: no thumbnail: the thumbnail server is not registered: run the installer or "
                "register.cmd, or name it with --dll; mend what is marked FAIL above, if anything is";
    EXPECT_EQ(failuresOf(run), expected);
    EXPECT_EQ(run.out.last(), "12 problems found; the first one is the one to mend first");
}

TEST_F(CheckInstallationTest, MissingRegisteredFileIsReported)
{
    registerServer();
    remove("ZRThumbnail.dll");
    const QStringList failures = failuresOf(check());
    ASSERT_EQ(failures.size(), 2);
    EXPECT_EQ(failures[0], "FAIL server: " + m_place + "/ZRThumbnail.dll is not there: " + kRegisterAgain);
    EXPECT_TRUE(failures[1].startsWith("FAIL sample slice file: no thumbnail: the registered thumbnail server does not "
                                       "start (error 0x"))
        << failures[1].toStdString();
}

TEST_F(CheckInstallationTest, DamagedServerIsReported)
{
    registerServer();
    writeFile(m_place + "/ZRThumbnail.dll", "damaged");
    const QStringList failures = failuresOf(check());
    ASSERT_EQ(failures.size(), 2);
    EXPECT_TRUE(failures[0].startsWith("FAIL server: " + m_place + "/ZRThumbnail.dll does not load (error "))
        << failures[0].toStdString();
    EXPECT_TRUE(failures[0].endsWith("): run the installer again, or unpack the zip again and run register.cmd"))
        << failures[0].toStdString();
}

TEST_F(CheckInstallationTest, ForeignHandlerIsReportedWithItsDetails)
{
    registerServer();
    writeString(HKEY_CLASSES_ROOT, L".stl" + kHandlerSubkey, L"", kOtherHandler);
    const QString sentence =
        "FAIL .stl: another program makes the thumbnails (%1): turn that off there, or " + kRegisterAgain;
    EXPECT_EQ(failuresOf(check()), QStringList(sentence.arg("{11111111-2222-3333-4444-555555555555}")));

    const std::wstring other = L"CLSID\\" + kOtherHandler;
    writeString(HKEY_CLASSES_ROOT, other, L"", L"Their Viewer");
    writeString(HKEY_CLASSES_ROOT, other + L"\\InprocServer32", L"", L"C:\\theirs.dll");
    EXPECT_EQ(failuresOf(check()),
              QStringList(sentence.arg("{11111111-2222-3333-4444-555555555555}, Their Viewer, C:\\theirs.dll")));
    removeTree(HKEY_CLASSES_ROOT, other);
}

// File browsers ask handlers of the newer kind first.
TEST_F(CheckInstallationTest, ForeignHandlerOfTheNewerKindIsReported)
{
    registerServer();
    writeString(HKEY_CLASSES_ROOT, L".obj" + kProviderSubkey, L"", kOtherHandler);
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL .obj: another program makes the thumbnails ({11111111-2222-3333-4444-555555555555}): "
                          "turn that off there, or " +
                          kRegisterAgain));
}

TEST_F(CheckInstallationTest, MissingHandlerIsReported)
{
    registerServer();
    removeTree(HKEY_CLASSES_ROOT, L".gf");
    EXPECT_EQ(failuresOf(check()), QStringList("FAIL .gf: no program makes thumbnails: " + kRegisterAgain));
}

TEST_F(CheckInstallationTest, SuffixWithoutReaderIsNotAProblem)
{
    registerServer();
    for (const bool isRegistered : {true, false}) {
        if (!isRegistered)
            removeTree(HKEY_CLASSES_ROOT, L".photon");
        const ProgramRun run = check();
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out.filter(".photon:"), QStringList("note .photon: " + kNoReader));
        EXPECT_EQ(run.out.last(), "no problems found");
    }
}

TEST_F(CheckInstallationTest, FileBrowserWithoutThumbnailsIsReported)
{
    registerServer();
    const RegistryValue value(HKEY_CURRENT_USER, kExplorer + L"Advanced", L"IconsOnly");
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL file browser: its option 'Always show icons, never thumbnails' is on, so no program's "
                          "thumbnails show; turn it off in the folder options, on the page 'View'"));
}

struct Place {
    HKEY hive;
    std::wstring key;
    QString name;
};

// The keys in which administrators set policies.
const Place kPlacesOfPolicies[] = {
    {HKEY_CURRENT_USER, kPolicies, "HKEY_CURRENT_USER\\" + QString::fromStdWString(kPolicies)},
    {HKEY_LOCAL_MACHINE, kPolicies, "HKEY_LOCAL_MACHINE\\" + QString::fromStdWString(kPolicies)},
    {HKEY_CURRENT_USER, kOtherPolicies, "HKEY_CURRENT_USER\\" + QString::fromStdWString(kOtherPolicies)},
    {HKEY_LOCAL_MACHINE, kOtherPolicies, "HKEY_LOCAL_MACHINE\\" + QString::fromStdWString(kOtherPolicies)},
};

class PolicyTest : public CheckInstallationTest, public ::testing::WithParamInterface<Place>
{
};

TEST_P(PolicyTest, AgainstThumbnailsIsReported)
{
    registerServer();
    const RegistryValue value(GetParam().hive, GetParam().key, L"DisableThumbnails");
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL file browser: the policy 'DisableThumbnails' turns all thumbnails off; ask the "
                          "administrator to lift it, in " +
                          GetParam().name));
}

TEST_P(PolicyTest, AgainstThumbnailsInNetworkFoldersIsReported)
{
    registerServer();
    const RegistryValue value(GetParam().hive, GetParam().key, L"DisableThumbnailsOnNetworkFolders");
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL file browser: the policy 'DisableThumbnailsOnNetworkFolders' turns thumbnails off in "
                          "network folders; ask the administrator to lift it, in " +
                          GetParam().name));
}

TEST_P(PolicyTest, AgainstUnapprovedExtensionsIsReported)
{
    registerServer();
    const RegistryValue value(GetParam().hive, GetParam().key, L"EnforceShellExtensionSecurity");
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL file browser: the policy 'EnforceShellExtensionSecurity' in " + GetParam().name +
                          " keeps ZRThumbnail out, which is not approved; an administrator approves it by adding the "
                          "text value {E45A903D-53AE-4A14-906E-0260D13FF77F} in HKEY_LOCAL_MACHINE\\" +
                          QString::fromStdWString(kShellExtensions + L"Approved")));
    for (HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        const ListedClass approved(hive, L"Approved");
        EXPECT_EQ(check().status, 0);
    }
}

TEST_P(PolicyTest, ThatIsOffIsNotAProblem)
{
    registerServer();
    const RegistryValue thumbnails(GetParam().hive, GetParam().key, L"DisableThumbnails", 0);
    const RegistryValue network(GetParam().hive, GetParam().key, L"DisableThumbnailsOnNetworkFolders", 0);
    const RegistryValue security(GetParam().hive, GetParam().key, L"EnforceShellExtensionSecurity", 0);
    // Does not concern thumbnails.
    const RegistryValue other(GetParam().hive, GetParam().key, L"DisableThumbsDBOnNetworkFolders");
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.out.contains("ok   file browser: shows thumbnails"));
}

INSTANTIATE_TEST_SUITE_P(Places, PolicyTest, ::testing::ValuesIn(kPlacesOfPolicies));

TEST_F(CheckInstallationTest, BlockedClassIsReported)
{
    registerServer();
    for (const auto& [hive, name] : {std::make_pair(HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE"),
                                     std::make_pair(HKEY_CURRENT_USER, "HKEY_CURRENT_USER")}) {
        const ListedClass blocked(hive, L"Blocked");
        EXPECT_EQ(failuresOf(check()),
                  QStringList(QString("FAIL file browser: ZRThumbnail is blocked; an administrator unblocks it by "
                                      "deleting the value {E45A903D-53AE-4A14-906E-0260D13FF77F} in ") +
                              name + '\\' + QString::fromStdWString(kShellExtensions + L"Blocked")));
    }
}

TEST_F(CheckInstallationTest, ReadOnlyDataFolderIsReported)
{
    registerServer();
    // A folder in which no user can write.
    const std::wstring folders = kExplorer + L"User Shell Folders";
    wchar_t before[MAX_PATH] = {};
    DWORD size = sizeof before;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER, folders.c_str(), L"Local AppData", RRF_RT_ANY | RRF_NOEXPAND, nullptr,
                           before, &size),
              0);
    writeString(HKEY_CURRENT_USER, folders, L"Local AppData", L"Z:\\proc\\sys");
    const ProgramRun run = check();
    RegSetKeyValueW(HKEY_CURRENT_USER, folders.c_str(), L"Local AppData", REG_EXPAND_SZ, before, size);
    const QStringList failures = failuresOf(run);
    ASSERT_EQ(failures.size(), 2);
    EXPECT_EQ(failures[0], "FAIL data folder: Z:/proc/sys/KESTRAVO_Thumbnail cannot be made: Z:/proc/sys is read-only: "
                           "get the right to write there");
    EXPECT_TRUE(failures[1].startsWith("FAIL sample slice file: no thumbnail: ")) << failures[1].toStdString();
}

TEST_F(WithoutOpenGlTest, MissingOpenGlIsReported)
{
    registerServer();
    EXPECT_EQ(failuresOf(check()),
              QStringList("FAIL OpenGL: there is no OpenGL, so models have no thumbnails; a driver "
                          "of the graphics card's maker brings it"));
}

} // namespace
} // namespace zr::test
