// SPDX-License-Identifier: MIT
#pragma once

#include "tests/packaging/package_test.h"

namespace zr::test
{

/// A test that installs and uninstalls, and can check what that changed.
class InstallerFixture : public PackageTest
{
protected:
    /// Values of the entry in "Apps"; empty and 0 if there are none.
    static std::wstring uninstallEntry(const wchar_t* name);
    static DWORD uninstallNumber(const wchar_t* name);

    /// Runs a program with `options` unchanged in its command line.
    static ProgramRun runRaw(const QString& program, const QString& options);

    /// Runs the uninstaller in `folder` silently; expects that it and the folder are gone afterwards.
    static void uninstallFrom(const QString& folder);

    /// The paths of the payload as installed, with their folders.
    static QStringList installedFiles(const QString& folder);
    /// Expects no other files in the folder.
    static void expectPayloadIn(const QString& folder);

    static void expectSame(const MachineState& before, const MachineState& after);

    /// Makes files of the user, each with its name as its content; expects exactly these files.
    static void writeFiles(const QString& folder, const QStringList& names);
    static void expectFiles(const QString& folder, const QStringList& names);

    /// Makes a link to a folder; removes the link, which must exist, but not its target.
    static void linkFolder(const QString& link, const QString& target);
    static void removeLink(const QString& link);
};

/// Whether a program refused with a single line that contains `text`.
::testing::AssertionResult refuses(const ProgramRun& run, const char* text);

} // namespace zr::test
