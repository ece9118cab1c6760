#pragma once

#include "tests/packaging/package_test.h"

namespace zr::test
{

/// A test that installs and uninstalls, with the means to tell what that changed.
class InstallerFixture : public PackageTest
{
protected:
    /// Values of the entry in "Apps"; empty and 0 when there are none.
    static std::wstring uninstallEntry(const wchar_t* name);
    static DWORD uninstallNumber(const wchar_t* name);

    /// Runs a program with options that stand in its command line as they are.
    static ProgramRun runRaw(const QString& program, const QString& options);

    /// Runs the uninstaller of an installation anywhere, silently; it and its folder are gone when that returns.
    static void uninstallFrom(const QString& folder);

    /// The paths of the payload as installed, with their folders.
    static QStringList installedFiles(const QString& folder);
    /// Nothing else is in the folder.
    static void expectPayloadIn(const QString& folder);

    static void expectSame(const MachineState& before, const MachineState& after);

    /// Makes files of the user, each with its name as its content, and expects just them.
    static void writeFiles(const QString& folder, const QStringList& names);
    static void expectFiles(const QString& folder, const QStringList& names);

    /// Makes a link to a folder; removes the link, which is to be there, and nothing behind it.
    static void linkFolder(const QString& link, const QString& target);
    static void removeLink(const QString& link);
};

/// Whether a program refused with a single line, which has `text` in it.
::testing::AssertionResult refuses(const ProgramRun& run, const char* text);

} // namespace zr::test
