// SPDX-License-Identifier: MIT
// What /LOG= makes the installer and the uninstaller write.

#include "tests/packaging/installer_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>

namespace zr::test
{
namespace
{

class InstallerLogTest : public InstallerFixture
{
protected:
    void SetUp() override
    {
        InstallerFixture::SetUp();
        ASSERT_TRUE(QDir().mkpath(m_place));
    }

    void TearDown() override
    {
        InstallerFixture::TearDown();
        EXPECT_TRUE(QDir(m_place).removeRecursively());
    }

    QStringList lines() const { return QString::fromUtf8(readFile(m_log)).remove('\r').split('\n'); }

    const QString m_place = QString::fromUtf8("C:/log place \xc3\xa4\xe6\x97\xa5");
    const QString m_log = m_place + "/setup.log";
    const QString m_option = "/LOG=\"" + QDir::toNativeSeparators(m_log) + '"';
};

TEST_F(InstallerLogTest, NamesEachFileAndTheResult)
{
    EXPECT_EQ(runRaw(setup(), "/S " + m_option).status, 0);
    QStringList log = lines();
    EXPECT_TRUE(log.first().startsWith("ZRThumbnail setup log: " ZRTHUMB_VERSION ", 20")) << log.first().toStdString();
    EXPECT_TRUE(log.contains("folder: C:\\Program Files\\ZRThumbnail"));
    EXPECT_TRUE(log.contains("registered: C:\\Program Files\\ZRThumbnail\\ZRThumbnail.dll"));
    const QStringList files = installedFiles(kInstallFolder) + QStringList(kShortcut);
    for (const QString& path : files) {
        if (QFileInfo(path).isFile() && !path.endsWith("/files.txt")) {
            EXPECT_TRUE(log.contains("installed: " + QDir::toNativeSeparators(path))) << path.toStdString();
        }
    }
    EXPECT_EQ(log.mid(log.size() - 2), QStringList({"result: 0, installed", ""}));

    // An older log is replaced.
    EXPECT_EQ(runRaw(kInstallFolder + "/uninstall.exe", "/S " + m_option).status, 0);
    log = lines();
    EXPECT_TRUE(log.first().startsWith("ZRThumbnail setup log: "));
    EXPECT_EQ(log.filter("installed: "), QStringList());
    for (const QString& path : files) {
        if (path.endsWith("/uninstall.exe") || path.endsWith(".dll") || path.endsWith(".lnk")) {
            EXPECT_TRUE(log.contains("removed: " + QDir::toNativeSeparators(path))) << path.toStdString();
        }
    }
    EXPECT_EQ(log.mid(log.size() - 2), QStringList({"result: 0, uninstalled", ""}));
}

TEST_F(InstallerLogTest, NamesTheReasonOfAFailure)
{
    EXPECT_EQ(runRaw(setup(), "/S " + m_option + " /D=Models").status, 2);
    EXPECT_EQ(lines().filter("Models is no full path of a folder").size(), 1);
    EXPECT_TRUE(lines().contains("result: 2, nothing is changed"));
}

TEST_F(InstallerLogTest, OverwritesNothingElse)
{
    ASSERT_EQ(install(setup()), 0);
    writeFiles(m_place, {"part.stl", "empty", "folder/x"});
    writeFile(m_place + "/empty", "");
    const MachineState before = MachineState::now();
    const QString native = QDir::toNativeSeparators(m_place);
    for (const QString& program : {setup(), kInstallFolder + "/uninstall.exe"}) {
        for (const char* const name : {"part.stl", "empty", "folder"})
            EXPECT_TRUE(refuses(runRaw(program, "/S \"/LOG=" + native + '\\' + name + '"'),
                                "is not written: there is something else of that name"))
                << name;
        for (const char* const name : {"none\\setup.log", "a*"})
            EXPECT_TRUE(refuses(runRaw(program, "/S \"/LOG=" + native + '\\' + name + '"'), "cannot be written"))
                << name;
    }
    expectSame(before, MachineState::now());
    EXPECT_EQ(readFile(m_place + "/part.stl"), "part.stl");
    EXPECT_EQ(readFile(m_place + "/empty"), "");
    uninstall();
}

} // namespace
} // namespace zr::test
