// SPDX-License-Identifier: MIT
#include "tests/reliability/request_test.h"

#include "cache/thumbnail_database.h"
#include "core/data_location.h"
#include "core/log_file.h"
#include "readers/reader_table.h"
#include "request/thumbnail_extractor.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

namespace zr::test
{
namespace
{

constexpr unsigned kHangsAfterSeconds = 120;

QImage plain(const QImage& picture)
{
    return picture.convertToFormat(QImage::Format_ARGB32);
}

} // namespace

void RequestTest::SetUp()
{
    alarm(kHangsAfterSeconds);
    DataFolderTest::SetUp();
    restartLog();
    ASSERT_TRUE(QDir().mkpath(thumbnailImageFolder()));
    expectRequestWorks(source("earlier.vrx"));
}

void RequestTest::TearDown()
{
    DataFolderTest::TearDown();
    alarm(0);
}

QString RequestTest::source(const QString& name, quint16 word, int extraBytes) const
{
    samples::VrxParts parts;
    parts.preview.width = 2;
    parts.preview.height = 2;
    parts.preview.data = samples::wordBytes({0, word, word, word});
    return sourceOf(name, samples::vrxBytes(parts) + QByteArray(extraBytes, 'x'));
}

QString RequestTest::sourceOf(const QString& name, const QByteArray& bytes) const
{
    return writeFile(m_folder.filePath(name), bytes);
}

RequestOutcome RequestTest::request(const QString& path)
{
    if (QFileInfo(defaultLogPath()).isFile())
        QFile::remove(defaultLogPath());
    RequestOutcome outcome;
    ThumbnailExtractor extractor;
    outcome.loaded = extractor.load(path);
    outcome.picture = plain(extractor.extract());
    if (!QFileInfo(defaultLogPath()).isFile())
        return outcome;
    outcome.log = logMessages();
    outcome.log.removeAll("37 in 2 " + path);
    outcome.log.removeAll("63 app after");
    return outcome;
}

void RequestTest::expectRequestWorks(const QString& path)
{
    const RequestOutcome outcome = request(path);
    EXPECT_TRUE(outcome.loaded);
    EXPECT_EQ(outcome.picture, pictureOf(path));
}

QImage RequestTest::pictureOf(const QString& path)
{
    const auto reader = makeReader(QFileInfo(path).suffix(), path);
    return plain(reader->getImage());
}

QString RequestTest::pngOf(const QString& path)
{
    const QFileInfo source(path);
    return thumbnailImageFolder() + source.fileName() + source.suffix() + ".png";
}

QStringList RequestTest::cachedFiles()
{
    return QDir(thumbnailImageFolder()).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

QString RequestTest::rowOf(const QString& path)
{
    const ThumbnailDatabase database{QString()};
    QStringList values;
    for (const char* column : {"thumPath", "fileTime", "fileSize"})
        values.append(database.queryValue(path, column).toString());
    return values.join('|');
}

} // namespace zr::test
