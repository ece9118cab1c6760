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
        QImage picture; ///< null when there is none
        QString server; ///< path of the server's DLL that is loaded there; empty for none
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

/// A test of what users get, on a Windows that has nothing but that: no Qt and no compiler's runtime elsewhere.
/// It starts and ends without an installation, a registration and a data folder.
class PackageTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// A file of those that the build made for the tests.
    static QString package(const QString& name);
    static QString setup();      ///< this version's
    static QString olderSetup(); ///< that of a version whose files all differ from this one's
    static QString unpackedZip();

    static ProgramRun run(const QString& program, const QStringList& arguments);
    static void runBatch(const QString& file, const QString& arguments);

    /// Silently; `arguments` besides.
    static int install(const QString& setup, const QStringList& arguments = {});
    /// Silently; nothing of it is left then but, with `inUse`, what is in use.
    static void uninstall(const QStringList& arguments = {}, bool inUse = false);

    /// Copies a folder with all that is below it.
    static void copyFolder(const QString& from, const QString& to);

    /// A sample file in a folder of the test's own.
    QString sample(const QString& name) const;

    /// Asks a new file browser for the thumbnail of every sample; each is that of the Linux host, and comes from the
    /// server in `folder`.
    void expectThumbnailsBy(const QString& folder) const;
    void expectNoThumbnails() const;

    static bool waitUntil(const std::function<bool()>& condition);

    QTemporaryDir m_folder;
};

/// What is on a machine: its registry, in lines, and the paths of its files and folders.
struct MachineState {
    RegistryLines registry;
    QStringList files;

    static MachineState now();
};

/// What the second state has and the first has not.
MachineState added(const MachineState& before, const MachineState& after);

QStringList filesBelow(const QString& folder);

} // namespace zr::test
