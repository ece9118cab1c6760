// SPDX-License-Identifier: MIT
// A host without Qt starts Qt once per process, so this program has one test.

#include "core/log_file.h"
#include "request/module_path.h"
#include "request/thumbnail_extractor.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

namespace zr::test
{
namespace
{

class QtBootstrapTest : public DataFolderTest
{
};

TEST_F(QtBootstrapTest, FirstLoadMakesTheApplicationAndLaterOnesUseIt)
{
    createDataFolder();
    const QTemporaryDir folder;
    const QString loaded = "37 in 2 " + folder.path();
    ASSERT_TRUE(QCoreApplication::startingUp());

    EXPECT_FALSE(ThumbnailExtractor().load(folder.path()));
    EXPECT_EQ(logMessages(), QStringList({loaded, "61 app start", "63 app after"}));
    auto* const application = qobject_cast<QApplication*>(QCoreApplication::instance());
    ASSERT_NE(application, nullptr);
    EXPECT_EQ(QCoreApplication::arguments(), QStringList({"platformplugin"}));
    EXPECT_TRUE(QCoreApplication::libraryPaths().contains(QDir(moduleFolder()).canonicalPath()));

    restartLog();
    ThumbnailExtractor second;
    EXPECT_FALSE(second.load(folder.path()));
    EXPECT_TRUE(second.extract().isNull());
    EXPECT_EQ(logMessages(), QStringList({loaded, "63 app after"}));
    EXPECT_EQ(QCoreApplication::instance(), application);
}

} // namespace
} // namespace zr::test
