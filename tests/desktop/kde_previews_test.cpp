// SPDX-License-Identifier: MIT
// Previews as Dolphin asks for them: a job of KIO, its worker process, the installed plug-in that this finds by the
// type of the file, and zrthumbnailer. What they have to show is in the folder that make_client_cases.py has made;
// clients_test.sh runs this.

#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <KFileItem>
#include <KIO/PreviewJob>

#include <QHash>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPixmap>
#include <QTimer>

#include <gtest/gtest.h>

#include <cstdlib>

namespace zr::test
{
namespace
{

constexpr int kUsualSizePx = 256; // of files that have no picture
constexpr int kTimeLimitMs = 120'000;

struct Previews {
    QHash<QString, QImage> pictures; // by path
    QStringList failures;
    bool isFinished = false;
};

Previews previews(const QStringList& paths, int sizePx)
{
    Previews previews;
    KFileItemList files;
    for (const QString& path : paths)
        files.append(KFileItem(QUrl::fromLocalFile(path)));
    const QStringList plugins{"zrthumb_kde"};
    auto* job = new KIO::PreviewJob(files, {sizePx, sizePx}, &plugins);
    QObject::connect(job, &KIO::PreviewJob::gotPreview, [&](const KFileItem& file, const QPixmap& picture) {
        previews.pictures[file.localPath()] = picture.toImage();
    });
    QObject::connect(job, &KIO::PreviewJob::failed,
                     [&](const KFileItem& file) { previews.failures.append(file.localPath()); });
    QTimer::singleShot(kTimeLimitMs, job, [job] { job->kill(KJob::EmitResult); });
    job->setIgnoreMaximumSize();
    previews.isFinished = job->exec();
    return previews;
}

// The worker passes colours on that are multiplied by their alpha.
bool areAlike(const QImage& first, const QImage& second)
{
    constexpr int kRounding = 2;
    if (first.size() != second.size())
        return false;
    const QImage one = first.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    const QImage other = second.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    for (int y = 0; y < one.height(); ++y) {
        for (int i = 0; i < 4 * one.width(); ++i) {
            if (std::abs(one.constScanLine(y)[i] - other.constScanLine(y)[i]) > kRounding)
                return false;
        }
    }
    return true;
}

class KdePreviewsTest : public ::testing::TestWithParam<int>
{
protected:
    void SetUp() override
    {
        ASSERT_NE(m_folder, "/") << "clients_test.sh runs this";
        m_cases = QJsonDocument::fromJson(readFile(m_folder + "cases.json")).array();
        ASSERT_GT(m_cases.size(), 0);
    }

    const QString m_folder = qEnvironmentVariable("ZRTHUMB_CLIENT_CASES") + '/';
    QJsonArray m_cases;
};

TEST_F(KdePreviewsTest, DolphinKnowsThePluginAndUsesItUnlessToldOtherwise)
{
    EXPECT_TRUE(KIO::PreviewJob::availablePlugins().contains("zrthumb_kde"));
    EXPECT_TRUE(KIO::PreviewJob::defaultPlugins().contains("zrthumb_kde"));
}

TEST_P(KdePreviewsTest, FilesShowTheirOwnPicturesAndDamagedOnesFail)
{
    const int sizePx = GetParam();
    QHash<QString, QString> expected; // the path of each file's picture, empty for none
    for (const auto& row : qAsConst(m_cases)) {
        const QJsonObject pictures = row["pictures"].toObject();
        const QString picture = pictures[QString::number(sizePx)].toString();
        if (!picture.isEmpty() || (pictures.isEmpty() && sizePx == kUsualSizePx))
            expected[m_folder + row["file"].toString()] = picture;
    }
    ASSERT_GT(expected.size(), 0);

    const Previews shown = previews(expected.keys(), sizePx);
    EXPECT_TRUE(shown.isFinished);
    EXPECT_EQ(shown.pictures.size() + shown.failures.size(), expected.size());
    for (auto row = expected.begin(); row != expected.end(); ++row) {
        SCOPED_TRACE(row.key().toStdString());
        EXPECT_EQ(shown.failures.contains(row.key()), row->isEmpty());
        const QImage picture = row->isEmpty() ? QImage() : QImage(m_folder + *row);
        EXPECT_TRUE(areAlike(shown.pictures.value(row.key()), picture));
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, KdePreviewsTest, ::testing::Values(128, kUsualSizePx, 512),
                         ::testing::PrintToStringParamName());

} // namespace
} // namespace zr::test
