#include "shell/platform_plugin.h"

#include "shell/thumbnail_extractor.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

namespace zr::test
{
namespace
{

class PlatformPluginTest : public DataFolderTest
{
};

TEST_F(PlatformPluginTest, WithoutOneTheRequestFailsAndTheProcessLives)
{
    createDataFolder();
    const QTemporaryDir folder;
    const QString file = writeFile(folder.filePath("a.vrx"), "x");
    qunsetenv("QT_QPA_PLATFORM_PLUGIN_PATH");
    QCoreApplication::setLibraryPaths({folder.path()});

    EXPECT_FALSE(platformPluginExists());
    EXPECT_FALSE(ThumbnailExtractor().load(file));
    EXPECT_TRUE(QCoreApplication::startingUp());
    EXPECT_EQ(logMessages(), QStringList({"37 in 2 " + file}));

    ASSERT_TRUE(QDir(folder.path()).mkdir("platforms"));
    EXPECT_FALSE(platformPluginExists());
    writeFile(folder.filePath("platforms/qwindows.dll"), "stands for the plug-in");
    EXPECT_TRUE(platformPluginExists());
}

} // namespace
} // namespace zr::test
