// SPDX-License-Identifier: MIT
// The installer's pages, clicked through as by a user.

#include "tests/packaging/installer_fixture.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>

namespace zr::test
{
namespace
{

constexpr int kNextButton = 1;
constexpr int kCancelButton = 2;
constexpr int kYesButton = 6;
constexpr int kFolderField = 1019;

class InstallerWizardTest : public InstallerFixture
{
protected:
    void SetUp() override
    {
        InstallerFixture::SetUp();
        writeFiles(m_models, m_theirs);
    }

    void TearDown() override
    {
        if (m_process.state() != QProcess::NotRunning)
            m_process.kill();
        m_process.waitForFinished();
        InstallerFixture::TearDown();
        EXPECT_TRUE(QDir(m_models).removeRecursively());
    }

    // Goes to the page with the folder and enters `folder` there.
    void chooseFolder(const wchar_t* folder)
    {
        startProgram(m_process, setup(), {});
        ASSERT_TRUE(waitUntil([this] { return (m_wizard = dialog(nullptr)) != nullptr; }));
        ASSERT_TRUE(waitUntil([this] { return IsWindowEnabled(GetDlgItem(m_wizard, kNextButton)); }));
        click(m_wizard, kNextButton); // agrees to the licence
        ASSERT_TRUE(waitUntil([this] { return field() != nullptr; }));
        SendMessageW(field(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(folder));
        click(m_wizard, kNextButton);
    }

    // Waits for a question that contains `text` and answers it.
    void answer(const wchar_t* text, int button) const
    {
        HWND box = nullptr;
        ASSERT_TRUE(waitUntil([&] { return (box = dialog(m_wizard)) != nullptr; }));
        struct Search {
            std::wstring text;
            bool found;
        } search = {text, false};
        const auto look = [](HWND child, LPARAM data) -> BOOL {
            auto* const wanted = reinterpret_cast<Search*>(data);
            wchar_t shown[1024] = {};
            GetWindowTextW(child, shown, 1024);
            wanted->found |= std::wstring(shown).find(wanted->text) != std::wstring::npos;
            return TRUE;
        };
        EnumChildWindows(box, look, reinterpret_cast<LPARAM>(&search));
        EXPECT_TRUE(search.found);
        click(box, button);
        EXPECT_TRUE(waitUntil([box] { return !IsWindow(box); }));
    }

    static void click(HWND window, int button)
    {
        PostMessageW(window, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(window, button)));
    }

    // Waits for the end and returns the exit status.
    int status()
    {
        EXPECT_TRUE(m_process.waitForFinished());
        return m_process.exitCode();
    }

    HWND field() const
    {
        auto* const page = FindWindowExW(m_wizard, nullptr, L"#32770", nullptr);
        auto* const edit = page ? GetDlgItem(page, kFolderField) : nullptr;
        return edit && IsWindowVisible(edit) ? edit : nullptr;
    }

    // A visible dialog of the installer other than `except`.
    HWND dialog(HWND except) const
    {
        for (auto* window = FindWindowExW(nullptr, nullptr, L"#32770", nullptr); window;
             window = FindWindowExW(nullptr, window, L"#32770", nullptr)) {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == m_process.processId() && window != except && IsWindowVisible(window))
                return window;
        }
        return nullptr;
    }

    const QString m_models = QStringLiteral("C:/Models");
    const QStringList m_theirs = {"README.txt", "incoming/a.stl"};
    QProcess m_process;
    HWND m_wizard = nullptr;
};

TEST_F(InstallerWizardTest, ShowsItsOwnFolderAndMakesIt)
{
    chooseFolder(L"C:\\Models");
    answer(L"C:\\Models\\ZRThumbnail", IDOK);
    ASSERT_TRUE(waitUntil([this] {
        return keyExists(HKEY_LOCAL_MACHINE, kUninstallKey) && IsWindowEnabled(GetDlgItem(m_wizard, kNextButton));
    }));
    click(m_wizard, kNextButton);
    EXPECT_EQ(status(), 0);
    expectPayloadIn(m_models + "/ZRThumbnail");
    uninstallFrom(m_models + "/ZRThumbnail");
    expectFiles(m_models, m_theirs);
}

TEST_F(InstallerWizardTest, CancellingChangesNothing)
{
    const MachineState before = MachineState::now();
    chooseFolder(L"C:\\Models");
    answer(L"C:\\Models\\ZRThumbnail", IDCANCEL);
    EXPECT_TRUE(field()) << "the page must allow another folder";
    click(m_wizard, kCancelButton);
    answer(L"quit", kYesButton);
    EXPECT_EQ(status(), 1);
    expectSame(before, MachineState::now());
}

} // namespace
} // namespace zr::test
