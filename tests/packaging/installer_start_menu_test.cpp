// SPDX-License-Identifier: MIT
// The entry in the start menu that runs the check.

#include "tests/packaging/installer_fixture.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <shlobj.h>
#include <wrl/client.h>

namespace zr::test
{
namespace
{

class StartMenuTest : public InstallerFixture
{
};

struct Link {
    QString program, arguments, folder, icon;
};

Link readLink(const QString& path)
{
    using Microsoft::WRL::ComPtr;
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    ComPtr<IShellLinkW> link;
    ComPtr<IPersistFile> file;
    EXPECT_EQ(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(link.GetAddressOf())),
              S_OK);
    EXPECT_EQ(link.As(&file), S_OK);
    const QString native = QDir::toNativeSeparators(path);
    EXPECT_EQ(file->Load(reinterpret_cast<LPCOLESTR>(native.utf16()), STGM_READ), S_OK);
    wchar_t program[MAX_PATH] = {};
    wchar_t arguments[MAX_PATH] = {};
    wchar_t folder[MAX_PATH] = {};
    wchar_t icon[MAX_PATH] = {};
    int index = -1;
    link->GetPath(program, MAX_PATH, nullptr, 0);
    link->GetArguments(arguments, MAX_PATH);
    link->GetWorkingDirectory(folder, MAX_PATH);
    link->GetIconLocation(icon, MAX_PATH, &index);
    EXPECT_EQ(index, 0);
    return {QString::fromWCharArray(program), QString::fromWCharArray(arguments), QString::fromWCharArray(folder),
            QString::fromWCharArray(icon)};
}

TEST_F(StartMenuTest, CheckStaysUntilAKeyIsPressed)
{
    const QString folder = QString::fromUtf8("C:/D\xc3\xb6ner & 3D (neu) %PATH%");
    ASSERT_EQ(runRaw(setup(), "/S /D=" + QDir::toNativeSeparators(folder)).status, 0);
    const Link link = readLink(kShortcut);
    EXPECT_EQ(link.program.toLower(), "c:\\windows\\system32\\cmd.exe");
    EXPECT_EQ(link.folder, QDir::toNativeSeparators(folder));
    EXPECT_EQ(link.icon, QDir::toNativeSeparators(folder + "/zrthumb.exe"));

    QProcess process;
    process.setProgram(link.program);
    process.setNativeArguments(link.arguments);
    process.setWorkingDirectory(link.folder);
    startProgram(process);
    QByteArray out;
    EXPECT_TRUE(waitUntil([&] {
        process.waitForReadyRead(100);
        out += process.readAllStandardOutput();
        return out.contains("any key");
    })) << out.toStdString();
    EXPECT_TRUE(out.startsWith("ok   class: registered")) << out.toStdString();
    EXPECT_TRUE(out.contains("log: none yet")) << out.toStdString();
    EXPECT_FALSE(process.waitForFinished(500)) << "the output must stay readable";
    process.write("\r\n");
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished());
    uninstallFrom(folder);
    EXPECT_FALSE(QFileInfo::exists(kShortcut));
}

TEST_F(StartMenuTest, UpgradeKeepsOneEntry)
{
    ASSERT_EQ(install(olderSetup()), 0);
    ASSERT_EQ(install(setup()), 0);
    EXPECT_EQ(filesBelow("C:/ProgramData").filter(".lnk"), QStringList(kShortcut));
    uninstall();
    EXPECT_FALSE(QFileInfo::exists(kShortcut));
}

TEST_F(StartMenuTest, ForeignEntryOfThatNameStays)
{
    writeFile(kShortcut, "theirs");
    ASSERT_EQ(install(setup()), 0);
    EXPECT_EQ(readFile(kShortcut), "theirs");
    uninstall();
    EXPECT_EQ(readFile(kShortcut), "theirs");
    ASSERT_TRUE(QFile::remove(kShortcut));
}

} // namespace
} // namespace zr::test
