// SPDX-License-Identifier: MIT
// What draws models, and requests that leave the data folder alone.

#include "tests/host/zrthumb_fixture.h"
#include "tests/support/qt_printers.h"
#include "tests/support/software_rasteriser.h"
#include "tests/support/unprivileged.h"
#include "tools/samples/sample_files.h"

#include <QImage>

namespace zr::test
{
namespace
{

bool isModel(const samples::SampleFile& sample)
{
    return QStringList{"stl", "obj", "slc"}.contains(QFileInfo(sample.name).suffix());
}

class RendererOptionTest : public ZrthumbTest
{
protected:
    // No display, and no platform that somebody has chosen.
    void removeDisplay()
    {
        m_environment.remove("QT_QPA_PLATFORM");
        m_environment.remove("WAYLAND_DISPLAY");
        m_environment.insert("DISPLAY", "");
    }

    QString sourceOf(const samples::SampleFile& sample) const
    {
        return ZrthumbTest::sourceOf(sample.name, sample.make());
    }

    QString output() const { return m_folder.filePath("out.png"); }

    QImage pictureOf(const QString& path, const QStringList& options) const
    {
        const ProgramRun outcome = run(options + QStringList{"-o", output(), path});
        EXPECT_EQ(outcome.status, 0) << path.toStdString();
        EXPECT_EQ(outcome.err, QStringList());
        return QImage(output()).convertToFormat(QImage::Format_ARGB32);
    }
};

TEST_F(RendererOptionTest, ModelsNeedNoDisplay)
{
    removeDisplay();
    for (const char* display : {"", ":97531"}) {
        m_environment.insert("DISPLAY", display);
        for (const samples::SampleFile& sample : samples::sampleFiles()) {
            if (isModel(sample)) {
                EXPECT_GT(meshPixelCount(pictureOf(sourceOf(sample), {})), 2000) << sample.name;
            }
        }
    }
}

TEST_F(RendererOptionTest, OpenGlWithoutADisplaySaysWhatToDo)
{
    removeDisplay();
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        if (!isModel(sample))
            continue;
        const QString path = sourceOf(sample);
        const ProgramRun outcome = run({"--renderer", "opengl", path});
        EXPECT_EQ(outcome.status, 1) << sample.name;
        EXPECT_EQ(outcome.err, QStringList({"zrthumb: " + path +
                                            ": no thumbnail: OpenGL needs a display: use '--renderer software', "
                                            "which needs none"}))
            << sample.name;
    }
}

// Who names a platform without a display has chosen it.
TEST_F(RendererOptionTest, NamedPlatformIsKept)
{
    removeDisplay();
    m_environment.insert("QT_QPA_PLATFORM", "offscreen");
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        if (!isModel(sample))
            continue;
        EXPECT_EQ(run({sourceOf(sample)}).status, 1);
        EXPECT_EQ(run({"--renderer", "software", sourceOf(sample)}).status, 0);
    }
}

// With a display, too; a window's picture is what it is compared with.
TEST_F(RendererOptionTest, BothRenderersMakeTheSamePicture)
{
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        if (!isModel(sample))
            continue;
        SCOPED_TRACE(sample.name);
        const QString path = sourceOf(sample);
        const QImage drawn = pictureOf(path, {"--renderer", "opengl", "--no-cache"});
        EXPECT_EQ(pictureOf(path, {}), drawn);
        expectSamePicture(pictureOf(path, {"--renderer", "software", "--no-cache"}), drawn);
    }
}

TEST_F(RendererOptionTest, WithoutTheCacheAllFormatsHaveTheSamePicture)
{
    removeDisplay();
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        SCOPED_TRACE(sample.name);
        const QString path = sourceOf(sample);
        const QImage cached = pictureOf(path, {});
        const QImage direct = pictureOf(path, {"--no-cache"});
        ASSERT_FALSE(direct.isNull());
        EXPECT_EQ(direct, cached);
    }
}

TEST_F(RendererOptionTest, NoCacheLeavesTheDataFolderAlone)
{
    removeDisplay();
    const QString good = source("a.vrx");
    const QString bad = ZrthumbTest::sourceOf("b.vrx", "no picture");
    const auto runAll = [&] {
        EXPECT_EQ(run({"--no-cache", "-o", output(), good}).status, 0);
        EXPECT_EQ(run({"--no-cache", "-o", output(), bad}).status, 1);
        EXPECT_EQ(run({"--no-cache", "--sheet", m_folder.filePath("sheet.png"), good, bad}).status, 1);
    };
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    runAll();
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));

    EXPECT_EQ(run({good}).status, 0);
    const QStringList before = contentsOfDataFolder();
    ASSERT_GE(before.size(), 3);
    runAll();
    EXPECT_EQ(contentsOfDataFolder(), before);
}

TEST_F(RendererOptionTest, NoCacheNeedsNoHome)
{
    removeDisplay();
    for (const char* name : {"HOME", "XDG_DATA_HOME"})
        m_environment.insert(name, "/nowhere");
    EXPECT_FALSE(pictureOf(source("a.vrx"), {"--no-cache"}).isNull());
}

struct WrongUse {
    QStringList arguments;
    const char* reason;
};

TEST_F(RendererOptionTest, WrongUsesAreTold)
{
    const WrongUse wrong[] = {
        {{"--renderer", "directx", "a.vrx"}, "--renderer needs auto, opengl or software"},
        {{"--renderer", "", "a.vrx"}, "--renderer needs auto, opengl or software"},
        {{"--renderer=Software", "a.vrx"}, "--renderer needs auto, opengl or software"},
        {{"--no-cache", "a.vrx"},
         "--no-cache needs --output, --output-dir or --sheet: there is no other place for the picture"},
        {{"--check", "--renderer", "software"}, "--check stands alone"},
        {{"--check", "--no-cache"}, "--check stands alone"},
    };
    source("a.vrx");
    for (const WrongUse& use : wrong) {
        const ProgramRun outcome = run(use.arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, QStringList());
        EXPECT_EQ(outcome.err, QStringList({QLatin1String("zrthumb: ") + use.reason, "Try 'zrthumb --help'."}));
    }
}

} // namespace
} // namespace zr::test
