// SPDX-License-Identifier: MIT
// What Qt sees of a host, in a program that has the same shield as the server.

#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibraryInfo>

#include <gtest/gtest.h>

#include <windows.h>

#include <objbase.h>

namespace zr::test
{
namespace
{

TEST(HostShieldTest, QtVariablesAreHidden)
{
    for (const char* const name : {"QT_QPA_PLATFORM", "QT_ANYTHING", "qt_scale_factor", "Qt_Hash_Seed"}) {
        ASSERT_TRUE(qputenv(name, "7"));
        EXPECT_FALSE(qEnvironmentVariableIsSet(name)) << name;
        EXPECT_TRUE(qEnvironmentVariableIsEmpty(name)) << name;
        EXPECT_TRUE(qgetenv(name).isNull()) << name;
        EXPECT_EQ(qEnvironmentVariable(name, "none"), "none") << name;
        EXPECT_EQ(qEnvironmentVariableIntValue(name), 0) << name;
        // The host's own code still sees them.
        EXPECT_EQ(GetEnvironmentVariableA(name, nullptr, 0), 2U) << name;
    }
}

TEST(HostShieldTest, OtherVariablesAreNot)
{
    for (const char* const name : {"ZR_ANYTHING", "QT", "QTDIR", "MY_QT_SETTING"}) {
        ASSERT_TRUE(qputenv(name, "7"));
        EXPECT_TRUE(qEnvironmentVariableIsSet(name)) << name;
        EXPECT_EQ(qgetenv(name), "7") << name;
        EXPECT_EQ(qEnvironmentVariable(name), "7") << name;
    }
}

TEST(HostShieldTest, ConfigurationNextToTheProgramIsNotRead)
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    QString path = QString::fromWCharArray(program);
    path = writeFile(path.left(path.lastIndexOf('\\') + 1) + "qt.conf", "[Platforms]\nWindowsArguments = menus=none\n");
    int argc = 1;
    char name[] = "host";
    char* argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
    EXPECT_EQ(QLibraryInfo::platformPluginArguments("windows"), QStringList());
    EXPECT_TRUE(QFile::remove(path));
}

// The shield redirects the test's calls just as Qt's.
TEST(HostShieldTest, CallsOnTheHostsThreadHaveNoEffect)
{
    EXPECT_EQ(OleInitialize(nullptr), S_OK);
    APTTYPE type = APTTYPE_CURRENT;
    APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
    EXPECT_EQ(CoGetApartmentType(&type, &qualifier), CO_E_NOTINITIALIZED);
    EXPECT_EQ(RegisterPowerSettingNotification(nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(MessageBoxW(nullptr, L"text", L"title", MB_OK), IDOK) << "shows no box";
}

TEST(HostShieldTest, WindowsAreMessageOnly)
{
    auto* const window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    ASSERT_TRUE(window);
    EXPECT_EQ(FindWindowExW(HWND_MESSAGE, nullptr, L"STATIC", nullptr), window);
    auto* const child = CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 1, 1, window, nullptr, nullptr, nullptr);
    EXPECT_EQ(GetParent(child), window) << "only top-level windows change";
    DestroyWindow(window);
}

} // namespace
} // namespace zr::test
