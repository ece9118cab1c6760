// SPDX-License-Identifier: MIT
#include "host/options.h"

#include "readers/reader_table.h"
#include "tests/support/qt_printers.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

Options parse(const QStringList& arguments)
{
    return parseOptions(QStringList{"zrthumb"} + arguments);
}

TEST(OptionsTest, FilesAloneHaveTheDefaults)
{
    const Options options = parse({"a.stl", "b.stl"});
    EXPECT_EQ(options.action, Options::Action::MakeThumbnails);
    EXPECT_EQ(options.files, QStringList({"a.stl", "b.stl"}));
    EXPECT_EQ(options.output, "");
    EXPECT_EQ(options.outputFolder, "");
    EXPECT_EQ(options.sheet, "");
    EXPECT_EQ(options.filesFrom, "");
    EXPECT_EQ(options.sizePx, 0);
    EXPECT_EQ(options.jobs, Options::kNoJobs);
    EXPECT_EQ(options.workerMegabytes, 400);
    EXPECT_FALSE(options.endsWithZero);
    EXPECT_FALSE(options.refreshes);
    EXPECT_FALSE(options.json);
    EXPECT_FALSE(options.hasOutputs());
    EXPECT_FALSE(options.writesPictureToStdout());
    EXPECT_FALSE(options.recursive);
    EXPECT_FALSE(options.quiet);
    EXPECT_EQ(options.renderer, Options::Renderer::Auto);
    EXPECT_EQ(options.objReading, ObjReading::Server);
    EXPECT_EQ(options.dataFolderUse, DataFolderUse::Usual);
}

TEST(OptionsTest, LongAndShortFormsMeanTheSame)
{
    for (const QStringList& form : {QStringList{"-o", "x.png", "-s", "64", "-q", "a.stl"},
                                    QStringList{"--output", "x.png", "--size=64", "--quiet", "a.stl"},
                                    QStringList{"a.stl", "-q", "--output=x.png", "-s64"}}) {
        const Options options = parse(form);
        EXPECT_EQ(options.action, Options::Action::MakeThumbnails) << options.text.toStdString();
        EXPECT_EQ(options.files, QStringList({"a.stl"}));
        EXPECT_EQ(options.output, "x.png");
        EXPECT_EQ(options.sizePx, 64);
        EXPECT_TRUE(options.quiet);
    }
    EXPECT_TRUE(parse({"-r", "--sheet", "s.png", "a"}).recursive);
    EXPECT_TRUE(parse({"--recursive", "a"}).recursive);
    EXPECT_EQ(parse({"--sheet", "s.png", "a"}).sheet, "s.png");
}

TEST(OptionsTest, OptionsForManyFilesHaveTheirForms)
{
    for (const QStringList& form :
         {QStringList{"-r", "-j", "4", "-0", "--json", "-s", "64", "--refresh", "--output-dir", "p/q", "m"},
          QStringList{"-0rj4", "--json", "-s64", "--refresh", "--output-dir=p/q", "m"},
          QStringList{"m", "--recursive", "--jobs=4", "--null", "--json", "--size=64", "--refresh", "--output-dir",
                      "p/q"}}) {
        const Options options = parse(form);
        EXPECT_EQ(options.action, Options::Action::MakeThumbnails) << options.text.toStdString();
        EXPECT_EQ(options.files, QStringList({"m"}));
        EXPECT_EQ(options.outputFolder, "p/q");
        EXPECT_EQ(options.jobs, 4);
        EXPECT_EQ(options.sizePx, 64);
        EXPECT_TRUE(options.recursive && options.endsWithZero && options.json && options.refreshes);
        EXPECT_TRUE(options.hasOutputs());
        EXPECT_FALSE(options.writesPictureToStdout());
    }
    for (const char* const list : {"names.txt", "-"})
        EXPECT_EQ(parse({"--files-from", list}).filesFrom, list);
}

TEST(OptionsTest, NumbersReachFromTheLeastToTheMost)
{
    for (const int jobs : {0, 1, 256})
        EXPECT_EQ(parse({"-j", QString::number(jobs), "a"}).jobs, jobs);
    for (const int megabytes : {100, 2147483647})
        EXPECT_EQ(parse({"--worker-memory", QString::number(megabytes), "a"}).workerMegabytes, megabytes);
}

TEST(OptionsTest, NamesThatLookLikeOptionsComeAfterTwoDashes)
{
    EXPECT_EQ(parse({"--", "-q"}).files, QStringList({"-q"}));
}

TEST(OptionsTest, WrongUsageIsRejectedWithAReason)
{
    const std::pair<QStringList, const char*> cases[] = {
        {{}, "no FILE given"},
        {{"-q"}, "no FILE given"},
        {{"--nonsense", "a"}, "nonsense"},
        {{"-o", "x.png", "a", "b"}, "--output needs a single FILE"},
        {{"-r", "-o", "x.png", "a"}, "--output needs a single FILE"},
        {{"a", "-o"}, "Missing value"},
        {{"-o", "", "a"}, "--output needs a file name"},
        {{"--sheet", "", "a"}, "--sheet needs a file name"},
        {{"-s", "64", "a"}, "--size needs --output or --output-dir"},
        {{"-s", "64", "--sheet", "x.png", "a"}, "--size needs --output or --output-dir"},
        {{"-o", "x.png", "-s", "0", "a"}, "--size needs a number"},
        {{"-o", "x.png", "-s", "-5", "a"}, "--size needs a number"},
        {{"-o", "x.png", "-s", "many", "a"}, "--size needs a number"},
        {{"-o", "x.png", "-s", "4097", "a"}, "--size needs a number from 1 to 4096"},
        {{"-o", "x.png", "-s", "99999999999", "a"}, "--size needs a number"},
        {{"--output-dir", "d", "-s", "0", "a"}, "--size needs a number"},

        {{"--output-dir", "", "a"}, "--output-dir needs the name of a folder"},
        {{"--output-dir", "d"}, "no FILE given"},
        {{"a", "--output-dir"}, "Missing value"},
        {{"-o", "x.png", "--output-dir", "d", "a"}, "--output and --output-dir exclude each other"},
        {{"--refresh", "a"}, "--refresh needs --output-dir"},
        {{"--refresh", "-o", "x.png", "a"}, "--refresh needs --output-dir"},
        {{"--refresh=yes", "--output-dir", "d", "a"}, "refresh"},

        {{"--files-from", "", "-q"}, "--files-from needs a file name"},
        {{"--files-from", "l", "a"}, "--files-from and FILE exclude each other"},
        {{"--files-from", "l", "-o", "x.png"}, "--output needs a single FILE"},
        {{"-q", "--files-from"}, "Missing value"},
        {{"-0"}, "no FILE given"},

        {{"--json"}, "no FILE given"},
        {{"--json", "-o", "-", "a"}, "--json needs stdout for itself"},
        {{"--json", "--sheet", "-", "a"}, "--json needs stdout for itself"},
        {{"--json=yes", "a"}, "json"},

        {{"-j", "-1", "a"}, "--jobs needs a number from 0 to 256"},
        {{"-j", "257", "a"}, "--jobs needs a number from 0 to 256"},
        {{"-j", "", "a"}, "--jobs needs a number"},
        {{"-j", "1.5", "a"}, "--jobs needs a number"},
        {{"-j", "a.stl", "b.stl"}, "--jobs needs a number"},
        {{"-j", "99999999999", "a"}, "--jobs needs a number"},
        {{"a", "-j"}, "Missing value"},
        {{"-j", "2", "-o", "x.png", "a"}, "--jobs is for many files; leave out --output"},
        {{"--worker-memory", "99", "a"}, "--worker-memory needs a number of megabytes, at least 100"},
        {{"--worker-memory", "-400", "a"}, "--worker-memory needs a number of megabytes"},
        {{"--worker-memory", "400M", "a"}, "--worker-memory needs a number of megabytes"},
        {{"--worker-memory", "2147483648", "a"}, "--worker-memory needs a number of megabytes"},
    };
    for (const auto& [arguments, reason] : cases) {
        const Options options = parse(arguments);
        EXPECT_EQ(options.action, Options::Action::RejectUsage) << arguments.join(' ').toStdString();
        EXPECT_TRUE(options.text.startsWith("zrthumb: ")) << options.text.toStdString();
        EXPECT_TRUE(options.text.contains(reason)) << options.text.toStdString();
    }
}

TEST(OptionsTest, HelpNamesEveryOption)
{
    for (const char* form : {"-h", "--help"}) {
        const Options options = parse({form});
        EXPECT_EQ(options.action, Options::Action::ShowText);
        for (const char* part : {"Usage: zrthumb", "FILE...", "--output", "--size", "--sheet", "--recursive", "--quiet",
                                 "--output-dir", "--refresh", "--files-from", "--null", "--json", "--jobs",
                                 "--worker-memory", "--prune", "--clear", "--check", "--version", "--help"})
            EXPECT_TRUE(options.text.contains(part)) << part;
    }
}

TEST(OptionsTest, HelpHasFormatsExamplesAndStatuses)
{
    const QString text = parse({"--help"}).text;
    for (const QString& suffix : supportedSuffixes())
        EXPECT_TRUE(text.contains(QRegularExpression("\\b" + suffix + "\\b"))) << suffix.toStdString();
    for (const char* const part : {"Formats:", "Examples:", "Exit status:", "  0 ", "  1 ", "  2 ", "  130 "})
        EXPECT_TRUE(text.contains(part)) << part;
    EXPECT_TRUE(text.endsWith('\n'));
    for (const QString& line : text.split('\n'))
        EXPECT_LE(line.size(), 80) << line.toStdString();
}

TEST(OptionsTest, SomeOptionsAcceptNoOtherArguments)
{
    const std::pair<QString, Options::Action> cases[] = {
        {"--check", Options::Action::RunChecks},
        {"--prune", Options::Action::PruneCache},
        {"--clear", Options::Action::ClearCache},
    };
    for (const auto& [option, action] : cases) {
        EXPECT_EQ(parse({option}).action, action);
        for (const QStringList& more : {QStringList{option, "a.stl"}, QStringList{"-q", option}}) {
            EXPECT_EQ(parse(more).action, Options::Action::RejectUsage);
            EXPECT_TRUE(parse(more).text.contains(option + " stands alone"));
        }
    }
    EXPECT_EQ(parse({"--prune", "--clear"}).action, Options::Action::RejectUsage);
}

// The server always draws with OpenGL, and always caches.
TEST(OptionsTest, RendererAndCacheAreChosenWhereThereIsNoServer)
{
    if (talksToServer()) {
        for (const QStringList& more : {QStringList{"--renderer", "auto"}, QStringList{"--no-cache", "-o", "x.png"},
                                        QStringList{"--obj", "server"}})
            EXPECT_EQ(parse(more + QStringList("a.stl")).action, Options::Action::RejectUsage);
        return;
    }
    EXPECT_EQ(parse({"--renderer", "auto", "a"}).renderer, Options::Renderer::Auto);
    EXPECT_EQ(parse({"--renderer=opengl", "a"}).renderer, Options::Renderer::OpenGl);
    EXPECT_EQ(parse({"--renderer", "software", "a"}).renderer, Options::Renderer::Software);
    EXPECT_EQ(parse({"--no-cache", "-o", "x.png", "a"}).dataFolderUse, DataFolderUse::None);
}

TEST(OptionsTest, ObjIsReadAsTheServerDoesUnlessTheStandardIsChosen)
{
    if (talksToServer())
        return;
    for (const QStringList& more : {QStringList{}, QStringList{"--obj", "server"}}) {
        EXPECT_EQ(parse(more + QStringList{"a"}).objReading, ObjReading::Server);
        EXPECT_EQ(parse(more + QStringList{"a"}).dataFolderUse, DataFolderUse::Usual);
        EXPECT_EQ(parse(more + QStringList{"--no-cache", "-o", "x.png", "a"}).dataFolderUse, DataFolderUse::None);
    }
    // It has no use for the cache, which holds the server's pictures.
    for (const char* output : {"-o", "--sheet", "--output-dir"}) {
        const Options options = parse({"--obj=standard", output, "x.png", "a"});
        EXPECT_EQ(options.action, Options::Action::MakeThumbnails);
        EXPECT_EQ(options.objReading, ObjReading::Standard);
        EXPECT_EQ(options.dataFolderUse, DataFolderUse::None);
    }
}

TEST(OptionsTest, PicturesOutsideTheCacheNeedAPlace)
{
    if (talksToServer())
        return;
    const std::pair<QStringList, const char*> cases[] = {
        {{"--no-cache"}, "--no-cache needs --output, --output-dir or --sheet"},
        {{"--no-cache", "--json", "-j", "2"}, "--no-cache needs --output, --output-dir or --sheet"},
        {{"--obj", "standard"}, "--obj standard needs --output, --output-dir or --sheet"},
        {{"--obj", "other"}, "--obj needs server or standard"},
        {{"--renderer", "other"}, "--renderer needs auto, opengl or software"},
    };
    for (const auto& [arguments, reason] : cases) {
        const Options options = parse(arguments + QStringList("a"));
        EXPECT_EQ(options.action, Options::Action::RejectUsage) << arguments.join(' ').toStdString();
        EXPECT_TRUE(options.text.contains(reason)) << options.text.toStdString();
    }
}

TEST(OptionsTest, VersionIsOneLine)
{
    EXPECT_EQ(parse({"--version"}).action, Options::Action::ShowText);
    EXPECT_EQ(parse({"--version"}).text, "zrthumb " ZRTHUMB_VERSION "\n");
}

} // namespace
} // namespace zr::test
