// SPDX-License-Identifier: MIT
// What zrthumb prints to a Windows console and to pipes, and what it passes to the server.

#include "cache/thumbnail_database.h"
#include "tests/host/zrthumb_fixture.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QProcess>

#include <windows.h>

namespace zr::test
{
namespace
{

// Letters of one, two and three bytes of UTF-8; no code page has all of them.
const QString kName = QString::fromUtf8("t\xc3\xbcr-\xce\xb1-\xe6\xa8\xa1\xe5\x9e\x8b.vrx");

class ConsoleTest : public ZrthumbTest
{
protected:
    // The exit status of the command, run in the test's folder with the streams of `start`.
    DWORD runAndWait(const QString& line, STARTUPINFOW start) const
    {
        constexpr DWORD kTimeoutMs = 60000;
        std::wstring command = line.toStdWString();
        const std::wstring folder = QDir::toNativeSeparators(m_folder.path()).toStdWString();
        PROCESS_INFORMATION process = {};
        EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &start,
                                   &process));
        EXPECT_EQ(WaitForSingleObject(process.hProcess, kTimeoutMs), WAIT_OBJECT_0);
        DWORD status = ~0U;
        GetExitCodeProcess(process.hProcess, &status);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        return status;
    }
};

TEST_F(ConsoleTest, PipesGetUtf8)
{
    const QString path = source(kName);
    QProcess process;
    process.setProcessEnvironment(m_environment);
    startProgram(process, QStringLiteral(ZRTHUMB_PROGRAM), {path, kName});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.readAllStandardOutput(), (png(kName + "vrx.png") + "\r\n").toUtf8());
    EXPECT_EQ(process.readAllStandardError(), ("zrthumb: " + kName + ": no thumbnail: no such file\r\n").toUtf8());
}

// A console of its own while the object lives.
class Console
{
public:
    Console()
    {
        FreeConsole();
        EXPECT_TRUE(AllocConsole());
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        m_screen = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                               OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(m_screen, INVALID_HANDLE_VALUE);
    }
    ~Console()
    {
        CloseHandle(m_screen);
        FreeConsole();
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    HANDLE screen() const { return m_screen; }

    // Without the blanks at the end.
    QString text() const
    {
        CONSOLE_SCREEN_BUFFER_INFO info = {};
        EXPECT_TRUE(GetConsoleScreenBufferInfo(m_screen, &info));
        const auto length = static_cast<DWORD>(info.dwSize.X) * static_cast<DWORD>(info.dwSize.Y);
        std::wstring cells(length, L' ');
        DWORD read = 0;
        EXPECT_TRUE(ReadConsoleOutputCharacterW(m_screen, cells.data(), length, {0, 0}, &read));
        return QString::fromWCharArray(cells.data(), static_cast<int>(read)).trimmed();
    }

private:
    HANDLE m_screen = nullptr;
};

TEST_F(ConsoleTest, ConsoleGetsEveryCharacter)
{
    const Console console;
    const QString line = QDir::toNativeSeparators(QStringLiteral("\"" ZRTHUMB_PROGRAM "\" ")) + kName;
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = console.screen();
    start.hStdError = console.screen();
    EXPECT_EQ(runAndWait(line, start), 1U);
    EXPECT_EQ(console.text(), "zrthumb: " + kName + ": no thumbnail: no such file");
}

// As when a program with windows starts it.
TEST_F(ConsoleTest, MissingStreamsDoNotMatter)
{
    source("a.vrx");
    const QString line = QDir::toNativeSeparators(QStringLiteral("\"" ZRTHUMB_PROGRAM "\" -o out.png a.vrx"));
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    EXPECT_EQ(runAndWait(line, start), 0U);
    EXPECT_TRUE(QFileInfo::exists(m_folder.filePath("out.png")));
}

TEST_F(ConsoleTest, ServerIsCalledAsTheFileBrowserCallsIt)
{
    const QString path = source("a.vrx");
    ASSERT_EQ(run({QDir::fromNativeSeparators(path)}).status, 0);
    ASSERT_EQ(run({"a.vrx"}).status, 0);
    const ThumbnailDatabase database{QString()};
    const QString native = QDir::toNativeSeparators(path);
    ASSERT_TRUE(native.contains('\\') && !native.contains('/'));
    EXPECT_EQ(database.queryValue(native, "filePath").toString(), native);
    EXPECT_TRUE(database.queryValue(QDir::fromNativeSeparators(path), "filePath").isNull());
}

} // namespace
} // namespace zr::test
