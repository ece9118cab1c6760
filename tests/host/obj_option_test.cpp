// SPDX-License-Identifier: MIT
// OBJ files as other programs write them, read by zrthumb.

#include "tests/host/zrthumb_fixture.h"
#include "tests/support/qt_printers.h"
#include "tests/support/software_rasteriser.h"
#include "tools/samples/sample_files.h"

#include <QImage>

namespace zr::test
{
namespace
{

const QByteArray kBoxPoints = "v 0 0 0\nv 9 0 0\nv 9 5 0\nv 0 5 0\nv 0 0 4\nv 9 0 4\nv 9 5 4\nv 0 5 4\n";

// The same box three times: for the server, and in two forms of other programs.
const QByteArray kServerBox = kBoxPoints + "f 0 2 1\nf 0 3 2\nf 4 5 6\nf 4 6 7\nf 0 1 5\nf 0 5 4\nf 1 2 6\nf 1 6 5\n"
                                           "f 2 3 7\nf 2 7 6\nf 3 0 4\nf 3 4 7\n";
const QByteArray kSlashedBox = kBoxPoints + "f 1/1/1 4/1/1 3/1/1 2/1/1\nf 5//2 6//2 7//2 8//2\nf 1/1 2/1 6/1 5/1\n"
                                            "f 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n";
const QByteArray kNegativeBox = kBoxPoints + "f -8 -5 -6 -7\nf -4 -3 -2 -1\nf -8 -7 -3 -4\nf -7 -6 -2 -3\n"
                                             "f -6 -5 -1 -2\nf -5 -8 -4 -1\n";

class ObjOptionTest : public ZrthumbTest
{
protected:
    void SetUp() override
    {
        ZrthumbTest::SetUp();
        m_environment.remove("QT_QPA_PLATFORM");
        m_environment.remove("WAYLAND_DISPLAY");
        m_environment.insert("DISPLAY", "");
    }

    QString output() const { return m_folder.filePath("out.png"); }

    // The picture, after a run that had nothing to say but `told`.
    QImage pictureOf(const QString& path, const QStringList& options, const QStringList& told = {}) const
    {
        const ProgramRun outcome = run(options + QStringList{"-o", output(), path});
        EXPECT_EQ(outcome.status, 0) << path.toStdString();
        EXPECT_EQ(outcome.err, told);
        return QImage(output()).convertToFormat(QImage::Format_ARGB32);
    }
};

TEST_F(ObjOptionTest, StandardShowsWhatOtherProgramsWrite)
{
    const QImage box = pictureOf(sourceOf("server.obj", kServerBox), {});
    ASSERT_GT(meshPixelCount(box), 2000);
    for (const QByteArray& content : {kSlashedBox, kNegativeBox})
        EXPECT_EQ(pictureOf(sourceOf("other.obj", content), {"--obj", "standard"}), box) << content.constData();
    EXPECT_NE(pictureOf(sourceOf("server.obj", kServerBox), {"--obj", "standard"}), box);
}

TEST_F(ObjOptionTest, ServerIsTheDefault)
{
    const QString path = sourceOf("server.obj", kServerBox);
    EXPECT_EQ(pictureOf(path, {"--obj", "server"}), pictureOf(path, {}));
    EXPECT_EQ(pictureOf(path, {"--obj", "server", "--no-cache"}), pictureOf(path, {}));
}

TEST_F(ObjOptionTest, OtherFormatsAreReadAsEver)
{
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        if (QFileInfo(sample.name).suffix() == "obj")
            continue;
        const QString path = sourceOf(sample.name, sample.make());
        EXPECT_EQ(pictureOf(path, {"--obj", "standard"}), pictureOf(path, {"--no-cache"})) << sample.name;
    }
}

// Neither are its pictures stored, nor are the server's taken for its own.
TEST_F(ObjOptionTest, StandardNeverTouchesTheCache)
{
    const QString path = sourceOf("box.obj", kSlashedBox);
    const QString sheet = m_folder.filePath("sheet.png");
    const auto runBoth = [&] {
        EXPECT_GT(meshPixelCount(pictureOf(path, {"--obj", "standard"})), 2000);
        EXPECT_EQ(run({"--obj", "standard", "--sheet", sheet, path}).status, 0);
    };
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    runBoth();
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));

    EXPECT_EQ(run({path}).status, 0);
    const QStringList before = contentsOfDataFolder();
    ASSERT_GE(before.size(), 3);
    runBoth();
    EXPECT_EQ(contentsOfDataFolder(), before);
}

TEST_F(ObjOptionTest, HintLeadsToThePicture)
{
    const QString path = sourceOf("box.obj", kSlashedBox.left(kSlashedBox.indexOf("f 2 3")));
    const QImage empty =
        pictureOf(path, {},
                  {"zrthumb: " + path +
                   ": nothing can be seen in its thumbnail; mostly because its faces have slashes "
                   "('f 1/2/3') or negative numbers: use '--obj standard' with -o, --output-dir or --sheet, which "
                   "reads them"});
    EXPECT_EQ(meshPixelCount(empty), 0);
    EXPECT_GT(meshPixelCount(pictureOf(path, {"--obj", "standard"})), 2000);
}

TEST_F(ObjOptionTest, HintIsNotGivenToWhoFollowedIt)
{
    const QString path = sourceOf("line.obj", kBoxPoints + "f 1 2 1\n");
    pictureOf(
        path, {"--obj", "standard"},
        {"zrthumb: " + path + ": nothing can be seen in its thumbnail; its triangles may have no area, or face away"});
}

TEST_F(ObjOptionTest, FailuresAreToldInTheSameWords)
{
    const std::pair<QByteArray, const char*> cases[] = {
        {kBoxPoints, "there is nothing to draw: the model is empty, or the file is damaged"},
        {kBoxPoints + "f 1 2 9\n", "there is nothing to draw: the model is empty, or the file is damaged"},
        {"v 1 1 1\nf 1 1 1\n", "the model has no extent, or is larger than 10000 units"},
    };
    for (const auto& [content, reason] : cases) {
        const QString path = sourceOf("bad.obj", content);
        const ProgramRun outcome = run({"--obj", "standard", "-o", output(), path});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, QStringList({"zrthumb: " + path + ": no thumbnail: " + reason}));
    }
}

TEST_F(ObjOptionTest, WrongUsesAreTold)
{
    const std::pair<QStringList, const char*> wrong[] = {
        {{"--obj", "blender", "a.obj"}, "--obj needs server or standard"},
        {{"--obj", "", "a.obj"}, "--obj needs server or standard"},
        {{"--obj=Standard", "-o", "x.png", "a.obj"}, "--obj needs server or standard"},
        {{"--obj", "standard", "a.obj"},
         "--obj standard needs --output, --output-dir or --sheet: the cache holds the server's pictures only"},
        {{"--obj", "standard", "--no-cache", "a.obj"},
         "--obj standard needs --output, --output-dir or --sheet: the cache holds the server's pictures only"},
        {{"--check", "--obj", "standard"}, "--check stands alone"},
    };
    for (const auto& [arguments, reason] : wrong) {
        const ProgramRun outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, QStringList());
        EXPECT_EQ(outcome.err, QStringList({QLatin1String("zrthumb: ") + reason, "Try 'zrthumb --help'."}));
    }
}

} // namespace
} // namespace zr::test
