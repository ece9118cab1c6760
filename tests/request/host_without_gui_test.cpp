// SPDX-License-Identifier: MIT
// A host's Qt application object may be one without windows, as in a service or a command line program. There is one
// application object per process, so this program has one test.

#include "request/thumbnail_extractor.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTemporaryDir>

namespace zr::test
{
namespace
{

class HostWithoutGuiTest : public DataFolderTest
{
};

bool isModel(const QString& path)
{
    return QStringList({"stl", "obj", "slc"}).contains(QFileInfo(path).suffix());
}

TEST_F(HostWithoutGuiTest, GetsPicturesOfSliceFilesButNotOfModels)
{
    createDataFolder();
    int argc = 1;
    char name[] = "host";
    char* argv[] = {name, nullptr};
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        const QString path = writeFile(folder.filePath(sample.name), sample.make());
        restartLog();
        ThumbnailExtractor extractor;
        EXPECT_EQ(extractor.load(path), !isModel(path)) << sample.name;
        EXPECT_EQ(extractor.extract().isNull(), isModel(path)) << sample.name;
        const QStringList renderer = {"200 opengl version is not valid", "278 ", "279  throw ",
                                      "115 Builder function failed\tvertexShaderErr"};
        const QStringList messages = logMessages();
        const int first = messages.indexOf(renderer.first());
        EXPECT_EQ(messages.mid(first, renderer.size()) == renderer, isModel(path)) << sample.name;
    }
}

} // namespace
} // namespace zr::test
