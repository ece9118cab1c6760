// SPDX-License-Identifier: MIT
// Previews as Dolphin asks for them: a job of KIO, its worker process, the plug-in that this finds by the type of the
// file, and zrthumbnailer.

#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <KFileItem>
#include <KIO/PreviewJob>

#include <QDir>
#include <QImage>
#include <QMap>
#include <QPixmap>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

// The size of each file's preview.
QMap<QString, QSize> previews(const KFileItemList& files, QSize size, const QStringList& plugins)
{
    QMap<QString, QSize> sizes;
    auto* job = new KIO::PreviewJob(files, size, &plugins);
    QObject::connect(job, &KIO::PreviewJob::gotPreview,
                     [&](const KFileItem& file, const QPixmap& picture) { sizes[file.name()] = picture.size(); });
    job->setIgnoreMaximumSize();
    job->exec();
    return sizes;
}

class KdePreviewsTest : public ::testing::Test
{
protected:
    // KIO's worker inherits it.
    KdePreviewsTest() { qputenv("XDG_CACHE_HOME", m_cache.path().toUtf8()); }

    QTemporaryDir m_cache;
};

TEST_F(KdePreviewsTest, DolphinKnowsThePluginAndUsesItUnlessToldOtherwise)
{
    EXPECT_TRUE(KIO::PreviewJob::availablePlugins().contains("zrthumb_kde"));
    EXPECT_TRUE(KIO::PreviewJob::defaultPlugins().contains("zrthumb_kde"));
}

TEST_F(KdePreviewsTest, EverySampleFileHasAPreview)
{
    const QTemporaryDir folder;
    KFileItemList files;
    for (const samples::SampleFile& sample : samples::sampleFiles())
        files.append(KFileItem(QUrl::fromLocalFile(writeFile(folder.filePath(sample.name), sample.make()))));
    files.append(KFileItem(QUrl::fromLocalFile(writeFile(folder.filePath("damaged.stl"), "solid"))));

    const QMap<QString, QSize> sizes = previews(files, {256, 256}, {"zrthumb_kde"});
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        const QSize size = sizes.value(sample.name);
        EXPECT_EQ(std::max(size.width(), size.height()), 256) << sample.name;
    }
    EXPECT_FALSE(sizes.contains("damaged.stl"));
}

} // namespace
} // namespace zr::test
