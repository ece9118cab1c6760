// SPDX-License-Identifier: MIT
// The user's settings for Qt's platform: zrthumb ignores what does not work, and --check reports it.

#include "tests/host/check/check_test.h"

#include "core/data_location.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>
#include <vector>

namespace zr::test
{
namespace
{

using Variables = std::vector<std::pair<const char*, const char*>>;

struct PlatformRow {
    const char* name;
    Variables variables;
    bool usesDisplay;   ///< in the end; otherwise models are drawn without OpenGL
    const char* unused; ///< the settings that the check reports; empty if none
    const char* names;  ///< their names
};

std::ostream& operator<<(std::ostream& out, const PlatformRow& row)
{
    return out << row.name;
}

const PlatformRow kPlatforms[] = {
    {"Typo", {{"QT_QPA_PLATFORM", "xbc"}}, true, "QT_QPA_PLATFORM=xbc", "QT_QPA_PLATFORM"},
    {"WaylandWithoutServer", {{"QT_QPA_PLATFORM", "wayland"}}, true, "QT_QPA_PLATFORM=wayland", "QT_QPA_PLATFORM"},
    {"WaylandThatIsGone",
     {{"QT_QPA_PLATFORM", "wayland"}, {"WAYLAND_DISPLAY", "wayland-97531"}},
     true,
     "QT_QPA_PLATFORM=wayland",
     "QT_QPA_PLATFORM"},
    {"XcbWithoutDisplay",
     {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", ""}},
     false,
     "QT_QPA_PLATFORM=xcb",
     "QT_QPA_PLATFORM"},
    {"XcbWithDisplayThatIsGone",
     {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", ":97531"}},
     false,
     "QT_QPA_PLATFORM=xcb",
     "QT_QPA_PLATFORM"},
    // The plug-in ends the process if it finds no screen.
    {"PlugInThatAborts",
     {{"QT_QPA_PLATFORM", "eglfs"}, {"DISPLAY", ""}},
     false,
     "QT_QPA_PLATFORM=eglfs",
     "QT_QPA_PLATFORM"},
    {"PlugInWithoutScreens", {{"QT_QPA_PLATFORM", "linuxfb"}}, true, "QT_QPA_PLATFORM=linuxfb", "QT_QPA_PLATFORM"},
    {"PlugInThatAbortsOnAnyPath",
     {{"QT_QPA_PLATFORM", "eglfs"}, {"DISPLAY", ""}, {"QT_PLUGIN_PATH", "/nowhere"}},
     false,
     "QT_QPA_PLATFORM=eglfs QT_PLUGIN_PATH=/nowhere",
     "QT_QPA_PLATFORM QT_PLUGIN_PATH"},
    {"EmptyList", {{"QT_QPA_PLATFORM", ";"}}, true, "QT_QPA_PLATFORM=;", "QT_QPA_PLATFORM"},
    {"ListWithOneThatWorks", {{"QT_QPA_PLATFORM", "wayland;XCB"}}, true, "", ""},
    {"PlatformWithArguments", {{"QT_QPA_PLATFORM", "xcb:anything"}}, true, "", ""},
    {"PathToNowhere", {{"QT_PLUGIN_PATH", "/nowhere"}, {"QT_QPA_PLATFORM_PLUGIN_PATH", "/nowhere"}}, true, "", ""},
    {"PathToNowhereWithoutDisplay", {{"QT_QPA_PLATFORM_PLUGIN_PATH", "/nowhere"}, {"DISPLAY", ""}}, false, "", ""},
    {"ThemeThatIsMissing", {{"QT_QPA_PLATFORMTHEME", "missing"}}, true, "", ""},
    {"DisplayThatIsGone", {{"DISPLAY", ":97531"}}, false, "", ""},
    {"WaylandDisplayThatIsGone", {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-97531"}}, false, "", ""},
};

class PlatformTest : public CheckTest
{
protected:
    void set(const Variables& variables)
    {
        for (const auto& [name, value] : variables)
            m_environment.insert(name, value);
    }

    QString sample(const QString& name) const
    {
        const auto& all = samples::sampleFiles();
        const auto found = std::find_if(all.begin(), all.end(), [&](const auto& each) { return name == each.name; });
        return writeFile(m_folder.filePath(name), found->make());
    }

    ProgramRun thumbnailOf(const QString& name) const
    {
        return runProgram(QStringLiteral(ZRTHUMB_PROGRAM), {sample(name)}, m_folder.path(), m_environment);
    }
};

class PlatformSettingTest : public PlatformTest, public ::testing::WithParamInterface<PlatformRow>
{
};

TEST_P(PlatformSettingTest, ThumbnailsAreStillMade)
{
    set(GetParam().variables);
    const ProgramRun slice = thumbnailOf("rook.vrx");
    EXPECT_EQ(slice.status, 0);
    EXPECT_EQ(slice.err, QStringList());
    const ProgramRun model = thumbnailOf("gear.stl");
    EXPECT_EQ(model.status, 0);
    EXPECT_EQ(model.err, QStringList());
}

TEST_P(PlatformSettingTest, CheckReportsWhatDoesNotWork)
{
    set(GetParam().variables);
    const ProgramRun run = check();
    EXPECT_EQ(run.err, QStringList());
    const QStringList expected =
        *GetParam().unused == '\0'
            ? QStringList()
            : QStringList(QString("FAIL Qt: does not start with %1, and went without; type 'unset %2', and take it out "
                                  "of where it is set")
                              .arg(GetParam().unused, GetParam().names));
    EXPECT_EQ(marked(run, "FAIL").filter("FAIL Qt:"), expected);
    EXPECT_EQ(marked(run, "FAIL").filter("FAIL OpenGL:"), QStringList());
    EXPECT_EQ(marked(run, "note").filter("note OpenGL:").isEmpty(), GetParam().usesDisplay);
    EXPECT_EQ(run.status, marked(run, "FAIL").isEmpty() ? 0 : 1);
    EXPECT_TRUE(run.out.contains("ok   sample slice file: its thumbnail was made, and taken away again"));
}

INSTANTIATE_TEST_SUITE_P(Platform, PlatformSettingTest, ::testing::ValuesIn(kPlatforms),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(PlatformTest, RequestedPlatformWithoutOpenGlIsReported)
{
    set({{"QT_QPA_PLATFORM", "minimal"}});
    expectOnlyFailure("FAIL OpenGL: the platform 'minimal' has none here, so models have no thumbnails: unset "
                      "QT_QPA_PLATFORM, which asks for it");
}

// A copy of the program that cannot find Qt's plug-ins.
class NoPlugInTest : public PlatformTest
{
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        ASSERT_TRUE(QFile::copy(ZRTHUMB_PROGRAM, m_folder.filePath("zrthumb")));
        writeFile(m_folder.filePath("qt.conf"), "[Paths]\nPlugins=/nowhere\n");
    }

    ProgramRun run(const QString& argument) const
    {
        return runProgram(m_folder.filePath("zrthumb"), {argument}, m_folder.path(), m_environment);
    }
};

constexpr char kNoPlugIn[] = "Qt does not start, since none of its platform plug-ins works: unset the variables that "
                             "begin with QT_, or install the package libqt5gui5 again";

TEST_F(NoPlugInTest, RunEndsWithOneLine)
{
    for (const char* platform : {"", "xcb", "nonsense"}) {
        m_environment.insert("QT_QPA_PLATFORM", platform);
        const ProgramRun outcome = run(sample("rook.vrx"));
        EXPECT_EQ(outcome.status, 1) << platform;
        EXPECT_EQ(outcome.out, QStringList()) << platform;
        EXPECT_EQ(outcome.err, QStringList(QString("zrthumb: ") + kNoPlugIn)) << platform;
    }
}

TEST_F(NoPlugInTest, CheckReportsIt)
{
    const ProgramRun outcome = run("--check");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, QStringList({kNotRegistered, QString("FAIL Qt: ") + kNoPlugIn, "1 problem found"}));
    EXPECT_EQ(outcome.err, QStringList());
}

} // namespace
} // namespace zr::test
