// SPDX-License-Identifier: MIT
// The server in other programs' processes: whatever they have loaded or set, they get their pictures, and the server
// leaves their process unchanged.

#include "tests/shell/server_test.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <iterator>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 120000;

// DLLs that any version has installed; other programs have DLLs of the same names.
constexpr const char* kShippedNames[] = {"Qt5Core.dll",     "Qt5Gui.dll",         "Qt5Sql.dll",
                                         "Qt5Widgets.dll",  "qwindows.dll",       "qsqlite.dll",
                                         "libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll"};

using Variables = std::vector<std::pair<QString, QString>>;

struct HostOutput {
    QStringList pictures;
    QStringList windows;     ///< top-level ones
    QStringList messageOnly; ///< windows that get no broadcasts
    QStringList rest;        ///< all other lines: what failed or has changed
};

QString hashOf(const QImage& picture)
{
    quint32 hash = 2166136261U;
    const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
    for (qsizetype i = 0; i < pixels.sizeInBytes(); ++i)
        hash = (hash ^ pixels.constBits()[i]) * 16777619U;
    return QStringLiteral("picture %1x%2 %3")
        .arg(picture.width())
        .arg(picture.height())
        .arg(hash, 8, 16, QLatin1Char('0'));
}

// A user's setting for the windows of programs that start from then on.
class DesktopSetting
{
public:
    DesktopSetting(const wchar_t* name, DWORD value) : m_name(name)
    {
        EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, kDesktopKey, name, REG_DWORD, &value, sizeof value), 0);
    }
    ~DesktopSetting() { RegDeleteKeyValueW(HKEY_CURRENT_USER, kDesktopKey, m_name); }
    DesktopSetting(const DesktopSetting&) = delete;
    DesktopSetting& operator=(const DesktopSetting&) = delete;

private:
    static constexpr const wchar_t* kDesktopKey = L"Control Panel\\Desktop";
    const wchar_t* m_name;
};

// Without this, Wine takes all programs as aware of each monitor.
constexpr const wchar_t* kScaling = L"DpiScalingVer";
constexpr DWORD kScalingOn = 0x1000;

QString windowsPath(const char* variable)
{
    return QDir::fromNativeSeparators(qEnvironmentVariable(variable));
}

class HostsTest : public ServerTest
{
protected:
    void SetUp() override
    {
        ServerTest::SetUp();
        for (const char* const sample : kSamples)
            m_expected += hashOf(request(writeSource(QString("expected/") + sample, sampleBytes(sample))));
    }

    // The files are new each time, so that their pictures do not come from the cache.
    HostOutput runHost(const QStringList& options, const Variables& variables = {},
                       const QString& program = windowsPath("ZRTHUMB_TEST_HOST"),
                       const QString& server = windowsPath("ZRTHUMB_SERVER"))
    {
        const QString folder = QString::number(m_runs++) + '/';
        QStringList arguments = options + QStringList(QDir::toNativeSeparators(server));
        for (const char* const sample : kSamples)
            arguments += writeSource(folder + sample, sampleBytes(sample));
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.remove("WINEPATH");
        for (const auto& [name, value] : variables)
            environment.insert(name, value);
        QProcess process;
        process.setProcessEnvironment(environment);
        startProgram(process, program, arguments);
        EXPECT_TRUE(process.waitForFinished(kTimeoutMs)) << "the host hangs";
        process.kill();
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 0);
        EXPECT_EQ(process.readAllStandardError(), QByteArray());
        return sorted(QString::fromUtf8(process.readAllStandardOutput()).remove('\r').split('\n', Qt::SkipEmptyParts));
    }

    void expectPicturesAndNoChange(const QStringList& options, const Variables& variables = {})
    {
        const HostOutput output = runHost(options, variables);
        EXPECT_EQ(output.pictures, m_expected);
        EXPECT_EQ(output.rest, QStringList());
        EXPECT_EQ(output.windows, QStringList());
    }

    static HostOutput sorted(const QStringList& lines)
    {
        HostOutput output;
        for (const QString& line : lines) {
            if (line.startsWith("picture "))
                output.pictures += line;
            else if (line.startsWith("window "))
                output.windows += line;
            else if (line.startsWith("message-only "))
                output.messageOnly += line;
            else
                output.rest += line;
        }
        return output;
    }

    static constexpr const char* kSamples[] = {"rook.vrx", "gear.stl", "tower.slc"};

    QStringList m_expected;
    int m_runs = 0;
};

TEST_F(HostsTest, UsualHost)
{
    expectPicturesAndNoChange({});
}

TEST_F(HostsTest, LibrariesOfOurNamesLoadedBefore)
{
    const QDir all(m_folder.filePath("all"));
    for (const char* const name : kShippedNames) {
        SCOPED_TRACE(name);
        const QDir one(m_folder.filePath(QString("only-") + name));
        for (const QDir& folder : {one, all}) {
            ASSERT_TRUE(folder.mkpath("."));
            ASSERT_TRUE(QFile::copy(windowsPath("ZRTHUMB_DECOY"), folder.filePath(name)));
        }
        expectPicturesAndNoChange({"--load", QDir::toNativeSeparators(one.path())});
    }
    expectPicturesAndNoChange({"--load", QDir::toNativeSeparators(all.path())});
}

TEST_F(HostsTest, VariablesThatEndQtPrograms)
{
    const std::pair<QString, QString> rows[] = {
        {"QT_QPA_PLATFORM", "offscreen"},   {"QT_QPA_PLATFORM", "typo"},    {"QT_QPA_PLATFORM", "wayland;xcb"},
        {"qt_qpa_platform", "minimal"},     {"QT_FATAL_WARNINGS", "1"},     {"QT_FATAL_CRITICALS", "1"},
        {"QT_NO_CPU_FEATURE", "sse2 sse3"}, {"QT_LOAD_TESTABILITY", "yes"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE((row.first + '=' + row.second).toStdString());
        expectPicturesAndNoChange({}, {row});
    }
}

TEST_F(HostsTest, VariablesThatChangeQtPrograms)
{
    expectPicturesAndNoChange({}, {
                                      {"QT_QPA_PLATFORM_PLUGIN_PATH", "C:\\nowhere"},
                                      {"QT_PLUGIN_PATH", "C:\\nowhere"},
                                      {"QT_QPA_GENERIC_PLUGINS", "evdevmouse"},
                                      {"QT_LOGGING_RULES", "*=true"},
                                      {"QT_LOGGING_TO_CONSOLE", "1"},
                                      {"QT_FORCE_STDERR_LOGGING", "1"},
                                      {"QT_ASSUME_STDERR_HAS_CONSOLE", "1"},
                                      {"QT_MESSAGE_PATTERN", "%{message} of Qt"},
                                      {"QT_DEBUG_PLUGINS", "1"},
                                      {"QT_QPA_VERBOSE", "qt.qpa.*=true"},
                                      {"QT_OPENGL", "software"},
                                      {"QT_OPENGL_DLL", "nothing.dll"},
                                      {"QT_OPENGL_BUGLIST", "C:\\nowhere.json"},
                                      {"QT_SCALE_FACTOR", "3"},
                                      {"QT_SCREEN_SCALE_FACTORS", "2;2"},
                                      {"QT_AUTO_SCREEN_SCALE_FACTOR", "1"},
                                      {"QT_FONT_DPI", "300"},
                                      {"QT_STYLE_OVERRIDE", "kvantum"},
                                      {"QT_IM_MODULE", "ibus"},
                                      {"QT_HASH_SEED", "7"},
                                      {"QT_DEFAULT_THREAD_STACK_SIZE", "1"},
                                  });
}

// As when the zip is unpacked into the folder of an older version, which consisted of many files.
TEST_F(HostsTest, FilesOfAnOlderVersionNextToTheServer)
{
    const QDir folder(m_folder.filePath("installed"));
    ASSERT_TRUE(folder.mkpath("platforms") && folder.mkpath("sqldrivers"));
    for (const char* const name : kShippedNames) {
        ASSERT_TRUE(QFile::copy(windowsPath("ZRTHUMB_DECOY"), folder.filePath(name)));
    }
    ASSERT_TRUE(QFile::rename(folder.filePath("qwindows.dll"), folder.filePath("platforms/qwindows.dll")));
    ASSERT_TRUE(QFile::rename(folder.filePath("qsqlite.dll"), folder.filePath("sqldrivers/qsqlite.dll")));
    const QString server = folder.filePath("ZRThumbnail.dll");
    ASSERT_TRUE(QFile::copy(windowsPath("ZRTHUMB_SERVER"), server));
    const HostOutput output = runHost({}, {}, windowsPath("ZRTHUMB_TEST_HOST"), server);
    EXPECT_EQ(output.pictures, m_expected);
    EXPECT_EQ(output.rest, QStringList());
}

// Qt reads platform options from a file of this name next to the program.
TEST_F(HostsTest, ConfigurationOfAnotherQtNextToTheProgram)
{
    const QDir folder(m_folder.filePath("program"));
    ASSERT_TRUE(folder.mkpath("."));
    const QString program = folder.filePath("host.exe");
    ASSERT_TRUE(QFile::copy(windowsPath("ZRTHUMB_TEST_HOST"), program));
    writeSource("program/qt.conf", "[Platforms]\nWindowsArguments = gl=gdi,dpiawareness=1,verbose=9\n"
                                   "[Paths]\nPlugins = C:/nowhere\n");
    const HostOutput output = runHost({}, {}, program);
    EXPECT_EQ(output.pictures, m_expected);
    EXPECT_EQ(output.rest, QStringList());
}

TEST_F(HostsTest, AnyWindowScaling)
{
    const DesktopSetting scaling(kScaling, kScalingOn);
    for (const DWORD dpi : {96, 144}) {
        const DesktopSetting resolution(L"LogPixels", dpi);
        expectPicturesAndNoChange({}); // the host does not set its awareness, so the server could
        for (const char* const awareness : {"unaware", "system", "monitor"}) {
            SCOPED_TRACE(awareness);
            expectPicturesAndNoChange({"--dpi", awareness});
        }
    }
}

TEST_F(HostsTest, AnyApartment)
{
    for (const char* const kind : {"sta", "mta", "none"}) {
        SCOPED_TRACE(kind);
        expectPicturesAndNoChange({"--apartment", kind});
    }
}

TEST_F(HostsTest, SmallStacks)
{
    for (const char* const bytes : {"1048576", "262144"}) {
        SCOPED_TRACE(bytes);
        expectPicturesAndNoChange({"--stack", bytes});
    }
}

TEST_F(HostsTest, ThreadsThatEndWithTheirRequest)
{
    expectPicturesAndNoChange({"--thread-each"});
    expectPicturesAndNoChange({"--thread-each", "--apartment", "mta"});
    expectPicturesAndNoChange({"--thread-each", "--stack", "262144"});
}

// Windows stops them wherever they are, with the locks that they hold.
TEST_F(HostsTest, ThreadsThatEndWithTheProcess)
{
    for (int i = 0; i < 10; ++i)
        expectPicturesAndNoChange({"--thread-each", "--threads-at-end", "50"});
}

TEST_F(HostsTest, DeletedCurrentFolder)
{
    expectPicturesAndNoChange({"--folder-gone"});
}

TEST_F(HostsTest, OwnOpenGlContext)
{
    const HostOutput output = runHost({"--opengl"});
    EXPECT_EQ(output.pictures, m_expected);
    EXPECT_EQ(output.rest, QStringList());
    EXPECT_EQ(output.windows, QStringList());
}

TEST_F(HostsTest, FloatingPointTraps)
{
    expectPicturesAndNoChange({"--traps"});
}

TEST_F(HostsTest, RestrictedToken)
{
    expectPicturesAndNoChange({"--restricted"});
}

TEST_F(HostsTest, ProgramWithWindows)
{
    expectPicturesAndNoChange({"--application"});
    const DesktopSetting scaling(kScaling, kScalingOn);
    expectPicturesAndNoChange({"--application", "--dpi", "monitor", "--opengl"});
}

// The windows that stay in a host get no broadcasts: the one of Qt's event dispatcher, and one for each STL file, whose
// reader leaves its OpenGL context. OleMainThreadWndClass is the host's own, of its apartment.
TEST_F(HostsTest, KeepsTwoMessageOnlyWindows)
{
    const QStringList windows = runHost({"--apartment", "none"}).messageOnly;
    EXPECT_EQ(windows.size(), 2) << windows.join(' ').toStdString();
    EXPECT_EQ(windows.filter("QEventDispatcher").size(), 1);
    EXPECT_EQ(windows.filter("QWindow").size(), 1);
}

// A broadcast waits for each thread that has a window, forever if that thread handles no messages.
TEST_F(HostsTest, BroadcastsDoNotHang)
{
    const HostOutput output = runHost({"--broadcast"});
    EXPECT_EQ(output.pictures, m_expected);
    EXPECT_EQ(output.rest, QStringList("broadcast passed"));
}

TEST_F(HostsTest, UnloadsAndLoadsAgain)
{
    expectPicturesAndNoChange({"--reload", "200"});
}

TEST_F(HostsTest, LoadsForEachRequest)
{
    constexpr int kTimes = 200;
    const HostOutput output = runHost({"--load-each", QString::number(kTimes)});
    QStringList expected;
    for (int i = 0; i < kTimes; ++i)
        expected += m_expected;
    EXPECT_EQ(output.pictures, expected);
    EXPECT_EQ(output.rest, QStringList());
}

} // namespace
} // namespace zr::test
