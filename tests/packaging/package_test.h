// SPDX-License-Identifier: MIT
#pragma once

#include "tests/shell/registry_dump.h"
#include "tests/support/program_run.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <functional>

#include <gtest/gtest.h>

namespace zr::test
{

const QString kInstallFolder = QStringLiteral("C:/Program Files/ZRThumbnail");

/// The entry of the start menu.
const QString kShortcut = QStringLiteral("C:/ProgramData/Microsoft/Windows/Start Menu/Programs/ZRThumbnail check.lnk");

const std::wstring kClassKey = L"CLSID\\{E45A903D-53AE-4A14-906E-0260D13FF77F}";
const std::wstring kHandlerSubkey = L"\\shellex\\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}";
const std::wstring kProviderSubkey = L"\\shellex\\{e357fccd-a995-4576-b01f-234630154e96}";
const std::wstring kUninstallKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\ZRThumbnail";

/// A file browser, another process that asks for thumbnails until the object goes.
class FileBrowser
{
public:
    struct Answer {
        QImage picture; ///< null if there is none
        QString server; ///< path of the server's DLL that is loaded there; empty if none is
    };

    FileBrowser();
    ~FileBrowser();
    FileBrowser(const FileBrowser&) = delete;
    FileBrowser& operator=(const FileBrowser&) = delete;

    Answer ask(const QString& path);

private:
    QTemporaryDir m_pictures;
    QProcess m_process;
};

/// A test of the packages on a Windows without any other Qt or compiler's runtime. It starts and ends without an
/// installation, a registration and a data folder.
class PackageTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// One of the files that the build made for the tests.
    static QString package(const QString& name);
    static QString setup();      ///< this version's
    static QString olderSetup(); ///< that of a version whose files all differ from this one's
    static QString unpackedZip();

    static ProgramRun run(const QString& program, const QStringList& arguments);
    static void runBatch(const QString& file, const QString& arguments);

    /// Silently; `arguments` are added.
    static int install(const QString& setup, const QStringList& arguments = {});
    /// Silently; expects nothing to be left except, with `inUse`, files in use.
    static void uninstall(const QStringList& arguments = {}, bool inUse = false);

    /// Copies a folder with everything below it.
    static void copyFolder(const QString& from, const QString& to);

    /// A sample file in a folder of the test's own.
    QString sample(const QString& name) const;

    /// Asks a new file browser for the thumbnail of every sample; expects those of the Linux host, from the server in
    /// `folder`.
    void expectThumbnailsBy(const QString& folder) const;
    void expectNoThumbnails() const;

    static bool waitUntil(const std::function<bool()>& condition);

    QTemporaryDir m_folder;
};

/// The state of a machine: its registry, in lines, and the paths of its files and folders.
struct MachineState {
    RegistryLines registry;
    QStringList files;

    static MachineState now();
};

/// What is in the second state but not in the first.
MachineState added(const MachineState& before, const MachineState& after);

QStringList filesBelow(const QString& folder);

} // namespace zr::test
