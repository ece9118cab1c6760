// SPDX-License-Identifier: MIT
// The folder that the installer uses as its own, and the user's files in and around it.

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

const QString kModels = QStringLiteral("C:/Models");
const QString kElsewhere = QStringLiteral("C:/Elsewhere");

class InstallerFolderTest : public InstallerFixture
{
protected:
    void TearDown() override
    {
        InstallerFixture::TearDown();
        for (const QString& folder : {kModels, kElsewhere})
            EXPECT_TRUE(QDir(folder).removeRecursively());
    }

    static ProgramRun installIn(const QString& folder) { return runRaw(setup(), "/S /D=" + folder); }

    // As in versions whose list had no first line of ours yet.
    static void makeListOld(const QString& folder)
    {
        QByteArray list = readFile(folder + "/files.txt");
        list = list.mid(list.indexOf('\n') + 1).replace("uninstall.exe\r\nuninstaller.exe\r\n", "");
        writeFile(folder + "/files.txt", list);
        ASSERT_TRUE(QFile::remove(folder + "/uninstaller.exe"));
    }

    const QStringList m_theirs = {"LICENSE.txt",    "README.txt",        "bench.stl",    "files.txt",
                                  "incoming/a.stl", "licenses/mine.txt", "retired/b.stl"};
};

TEST_F(InstallerFolderTest, OptionIsUsedAsWritten)
{
    const QString umlauts = QString::fromUtf8("D\xc3\xb6ner & 3D (neu)");
    const struct {
        QString option, folder;
    } rows[] = {
        {"C:\\Elsewhere\\", kElsewhere},
        {"C:/Elsewhere/of mine", kElsewhere + "/of mine"},
        {"\"C:\\Elsewhere\\quoted name\"", kElsewhere + "/quoted name"},
        {"C:\\Elsewhere\\.\\x\\..\\y", kElsewhere + "/y"},
        {"C:\\Elsewhere\\" + umlauts, kElsewhere + '/' + umlauts},
        {"C:\\", "C:/ZRThumbnail"},
        {"C:\\Program Files", kInstallFolder},
        {"C:\\windows", "C:/windows/ZRThumbnail"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.option.toStdString());
        const ProgramRun run = runRaw(setup(), "/S /D=" + row.option);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, QStringList());
        EXPECT_EQ(QDir::fromNativeSeparators(QString::fromStdWString(uninstallEntry(L"InstallLocation"))), row.folder);
        expectPayloadIn(row.folder);
        uninstallFrom(row.folder);
    }
}

TEST_F(InstallerFolderTest, FolderOfTheUserIsNotChanged)
{
    writeFiles(kModels, m_theirs);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(installIn("C:\\Models").status, 0);
        expectPayloadIn(kModels + "/ZRThumbnail");
    }
    expectThumbnailsBy(kModels + "/ZRThumbnail");
    uninstallFrom(kModels + "/ZRThumbnail");
    expectFiles(kModels, m_theirs);
}

TEST_F(InstallerFolderTest, SecondFolderOfTheUserIsRefused)
{
    writeFiles(kModels, m_theirs + QStringList{"ZRThumbnail/files.txt", "ZRThumbnail/c.stl"});
    const MachineState before = MachineState::now();
    EXPECT_TRUE(refuses(installIn("C:\\Models"), "C:\\Models\\ZRThumbnail have other files in them"));
    expectSame(before, MachineState::now());
    expectFiles(kModels, m_theirs + QStringList{"ZRThumbnail/files.txt", "ZRThumbnail/c.stl"});
}

TEST_F(InstallerFolderTest, FilesOfTheUserNextToOursStay)
{
    ASSERT_EQ(install(setup()), 0);
    const QStringList theirs = {"incoming/a.stl", "licenses/mine.txt", "licenses/qt/mine.txt", "mine.stl",
                                "retired/b.stl"};
    writeFiles(kInstallFolder, theirs);
    ASSERT_EQ(install(setup()), 0);
    EXPECT_EQ(run(kInstallFolder + "/uninstall.exe", {"/S"}).status, 0);
    expectFiles(kInstallFolder, theirs);
    EXPECT_TRUE(QDir(kInstallFolder).removeRecursively());
}

TEST_F(InstallerFolderTest, FileOfTheUserInPlaceOfANewOneIsRefused)
{
    ASSERT_EQ(install(setup()), 0);
    for (const char* const name : {"older/only.txt", "platforms"}) {
        SCOPED_TRACE(name);
        writeFiles(kInstallFolder, {name});
        const MachineState before = MachineState::now();
        EXPECT_TRUE(refuses(runRaw(olderSetup(), "/S"), "ove")); // "written over" or "move that away"
        expectSame(before, MachineState::now());
        EXPECT_EQ(readFile(kInstallFolder + '/' + name), name);
        ASSERT_TRUE(QFile::remove(kInstallFolder + '/' + name));
        QDir().rmdir(kInstallFolder + "/older");
    }
    uninstall();
}

TEST_F(InstallerFolderTest, UnpackedZipStays)
{
    copyFolder(unpackedZip(), kModels);
    runBatch(kModels + "/register.cmd", "/q");
    const QStringList zip = filesBelow(kModels);
    ASSERT_EQ(installIn("C:\\Models").status, 0);
    expectThumbnailsBy(kModels + "/ZRThumbnail");
    uninstallFrom(kModels + "/ZRThumbnail");
    EXPECT_EQ(filesBelow(kModels), zip);
}

TEST_F(InstallerFolderTest, OlderVersionIsRecognisedByTheRegistry)
{
    ASSERT_EQ(install(olderSetup()), 0);
    makeListOld(kInstallFolder);
    ASSERT_EQ(install(setup()), 0);
    expectPayloadIn(kInstallFolder);
    uninstall();

    ASSERT_EQ(runRaw(olderSetup(), "/S /D=C:\\Models").status, 0);
    makeListOld(kModels);
    ASSERT_EQ(installIn("C:\\Elsewhere").status, 0);
    EXPECT_FALSE(QFileInfo::exists(kModels)) << "the older version is still there";
    uninstallFrom(kElsewhere);
}

TEST_F(InstallerFolderTest, OlderVersionInAnotherFolderThanTheRegistrysIsLeftAlone)
{
    ASSERT_EQ(install(setup()), 0);
    copyFolder(kInstallFolder, kModels);
    makeListOld(kModels);
    const QStringList copy = filesBelow(kModels);
    ASSERT_EQ(installIn("C:\\Models").status, 0);
    EXPECT_FALSE(QFileInfo::exists(kInstallFolder));
    uninstallFrom(kModels + "/ZRThumbnail");
    EXPECT_EQ(filesBelow(kModels), copy);
}

TEST_F(InstallerFolderTest, FolderOfTheUserInTheRegistryIsNotRemoved)
{
    writeFiles(kModels, m_theirs);
    writeFile(kModels + "/files.txt", "README.txt\r\nbench.stl\r\nincoming\\a.stl\r\n");
    writeString(HKEY_LOCAL_MACHINE, kUninstallKey, L"InstallLocation", L"C:\\Models");
    ASSERT_EQ(installIn("C:\\Elsewhere").status, 0);
    uninstallFrom(kElsewhere);
    writeFile(kModels + "/files.txt", "files.txt");
    expectFiles(kModels, m_theirs);

    writeString(HKEY_LOCAL_MACHINE, kUninstallKey, L"InstallLocation", L"C:\\Models");
    ASSERT_EQ(install(setup()), 0);
    uninstallFrom(kModels + "/ZRThumbnail");
    expectFiles(kModels, m_theirs);
}

TEST_F(InstallerFolderTest, ListCannotNameOtherFolders)
{
    const char* const lines[] = {
        "..\\victim.txt",
        "C:\\Models\\victim.txt",
        "\\Models\\victim.txt",
        "/Models/victim.txt",
        "C:victim.txt",
        "licenses\\..\\..\\victim.txt",
        "..\\*",
        "*",
        "mine.*",
        "mine.tx?",
        ".. \\victim.txt",
        ". .\\victim.txt",
        "...\\victim.txt",
        "..",
        "\\\\?\\C:\\Models\\victim.txt",
        "\\\\localhost\\C$\\Models\\victim.txt",
        "..//victim.txt",
    };
    const QString folder = kModels + "/ours";
    ASSERT_EQ(installIn("C:\\Models\\ours").status, 0);
    writeFiles(kModels, {"victim.txt", "ours/mine.txt"});
    QByteArray list = readFile(folder + "/files.txt");
    for (const char* const line : lines)
        list += QByteArray(line) + "\r\n";
    list += QByteArray(3000, 'x') + "\\..\\..\\victim.txt";
    for (const bool upgrade : {true, false}) {
        writeFile(folder + "/files.txt", list);
        const ProgramRun run = upgrade ? installIn("C:\\Models\\ours") : runRaw(folder + "/uninstall.exe", "/S");
        EXPECT_EQ(run.status, 0);
    }
    expectFiles(kModels, {"victim.txt", "ours/mine.txt"});
}

TEST_F(InstallerFolderTest, LinksAreNotFollowed)
{
    const QStringList theirs = {"README.txt", "qt/copyright.txt", "versions.txt"};
    writeFiles(kElsewhere + "/licenses", theirs);
    ASSERT_EQ(install(setup()), 0);
    ASSERT_TRUE(QDir(kInstallFolder + "/licenses").removeRecursively());
    linkFolder(kInstallFolder + "/licenses", kElsewhere + "/licenses");
    EXPECT_TRUE(refuses(runRaw(setup(), "/S"), "its folder is a link to elsewhere"));
    EXPECT_EQ(run(kInstallFolder + "/uninstall.exe", {"/S"}).status, 0);
    expectFiles(kElsewhere + "/licenses", theirs);
    EXPECT_EQ(filesBelow(kInstallFolder).filter("/licenses").first(), kInstallFolder + "/licenses");
    removeLink(kInstallFolder + "/licenses");
    ASSERT_TRUE(QDir().rmdir(kInstallFolder));
}

// Although their targets have everything that makes such a folder ours.
TEST_F(InstallerFolderTest, LinksInPlaceOfWorkFoldersAreNotFollowed)
{
    ASSERT_EQ(install(setup()), 0);
    const QByteArray list = readFile(kInstallFolder + "/files.txt");
    for (const char* const name : {"ZRThumbnail.incoming", "ZRThumbnail.retired"}) {
        SCOPED_TRACE(name);
        writeFiles(kElsewhere, {"README.txt", "licenses/README.txt"});
        writeFile(kElsewhere + "/files.txt", list);
        const QStringList before = filesBelow(kElsewhere);
        linkFolder(kInstallFolder + '/' + name, kElsewhere);
        const ProgramRun again = runRaw(setup(), "/S");
        if (QString(name).endsWith("incoming")) {
            EXPECT_TRUE(refuses(again, "is in the way"));
        }
        EXPECT_EQ(run(kInstallFolder + "/uninstall.exe", {"/S"}).status, 0);
        EXPECT_EQ(filesBelow(kElsewhere), before);
        removeLink(kInstallFolder + '/' + name);
        ASSERT_TRUE(QDir().rmdir(kInstallFolder));
        ASSERT_EQ(install(setup()), 0);
    }
    uninstall();
}

TEST_F(InstallerFolderTest, LinkForAFolderStays)
{
    ASSERT_TRUE(QDir().mkpath(kElsewhere));
    linkFolder(kModels, kElsewhere);
    ASSERT_EQ(installIn("C:\\Models").status, 0);
    expectPayloadIn(kElsewhere);
    EXPECT_EQ(runRaw(kModels + "/uninstall.exe", "/S").status, 0);
    EXPECT_EQ(filesBelow(kElsewhere), QStringList());
    removeLink(kModels);
}

// The power may fail at any time.
TEST_F(InstallerFolderTest, InterruptedInstallationIsRecovered)
{
    const MachineState before = MachineState::now();
    for (const char* const reached : {"/ZRThumbnail.incoming/LICENSE.txt", "/ZRThumbnail.incoming/zrthumb.exe",
                                      "/LICENSE.txt", "/ZRThumbnail.dll"}) {
        for (const bool upgrade : {false, true}) {
            SCOPED_TRACE(std::string(reached) + (upgrade ? ", upgrade" : ""));
            if (upgrade) {
                ASSERT_EQ(install(olderSetup()), 0);
                ASSERT_TRUE(QFile::remove(kInstallFolder + "/LICENSE.txt"));
                ASSERT_TRUE(QFile::remove(kInstallFolder + "/ZRThumbnail.dll"));
            }
            QProcess process;
            startProgram(process, setup(), {"/S"});
            EXPECT_TRUE(waitUntil([&] { return QFileInfo::exists(kInstallFolder + reached); }));
            process.kill();
            EXPECT_TRUE(process.waitForFinished());

            ASSERT_EQ(install(setup()), 0);
            expectPayloadIn(kInstallFolder);
            uninstall({"/CLEAN"});
        }
    }
    expectSame(before, MachineState::now());
}

} // namespace
} // namespace zr::test
