// SPDX-License-Identifier: MIT
#include "tests/reliability/host_processes.h"

#include "core/data_location.h"
#include "readers/reader_table.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <map>
#include <random>

namespace zr::test
{
namespace
{

// By source path.
using Rows = std::multimap<QString, QString>;

// Only files whose pictures need no display.
std::vector<samples::SampleFile> sliceFiles()
{
    std::vector<samples::SampleFile> files;
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        const QString suffix = QFileInfo(sample.name).suffix();
        if (suffix != "stl" && suffix != "obj" && suffix != "slc")
            files.push_back(sample);
    }
    return files;
}

// The rows of the cache database, whose integrity is checked as well.
Rows readRows()
{
    const QString name = QStringLiteral("check");
    Rows rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(defaultDatabasePath());
        EXPECT_TRUE(database.open());
        QSqlQuery check(QStringLiteral("pragma integrity_check"), database);
        EXPECT_TRUE(check.next());
        EXPECT_EQ(check.value(0).toString(), "ok");
        // A missing table counts as one without rows.
        QSqlQuery query(QStringLiteral("select filePath, thumPath from thumbnail"), database);
        while (query.next())
            rows.emplace(query.value(0).toString(), query.value(1).toString());
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

QImage plain(const QImage& picture)
{
    return picture.convertToFormat(QImage::Format_ARGB32);
}

} // namespace

void HostProcessesTest::makeSources(int count)
{
    const auto kinds = sliceFiles();
    std::vector<QByteArray> bytes;
    bytes.reserve(kinds.size());
    for (const samples::SampleFile& kind : kinds)
        bytes.push_back(kind.make());
    for (int i = 0; i < count; ++i) {
        const std::size_t kind = static_cast<std::size_t>(i) % kinds.size();
        const QString path = m_folder.filePath(QStringLiteral("%1-%2").arg(i).arg(kinds[kind].name));
        m_sources.append(writeFile(path, bytes[kind]));
        const auto reader = makeReader(QFileInfo(path).suffix(), path);
        m_pictures.append(plain(reader->getImage()));
    }
}

void HostProcessesTest::touchSources() const
{
    for (const QString& path : m_sources)
        moveTimeStamp(path, 1000);
}

void HostProcessesTest::start(QProcess& program, Order order) const
{
    QStringList files = m_sources;
    if (order == Order::Random)
        std::shuffle(files.begin(), files.end(), std::random_device());
    program.start(QStringLiteral(ZRTHUMB_PROGRAM), files);
    ASSERT_TRUE(program.waitForStarted());
}

int HostProcessesTest::expectSoundCache()
{
    if (!QFileInfo::exists(defaultDatabasePath()))
        return 0;
    const Rows rows = readRows();
    for (const auto& [path, png] : rows)
        EXPECT_FALSE(QImage(png).isNull()) << png.toStdString();
    return static_cast<int>(rows.size());
}

void HostProcessesTest::expectCompleteCache() const
{
    const Rows rows = readRows();
    EXPECT_EQ(rows.size(), static_cast<std::size_t>(m_sources.size()));
    for (int i = 0; i < m_sources.size(); ++i) {
        const auto row = rows.find(m_sources.at(i));
        ASSERT_NE(row, rows.end()) << m_sources.at(i).toStdString();
        EXPECT_EQ(plain(QImage(row->second)), m_pictures.at(i)) << m_sources.at(i).toStdString();
    }
}

QStringList HostProcessesTest::unfinishedPictures()
{
    return QDir(thumbnailImageFolder()).entryList({".*"}, QDir::Files | QDir::Hidden);
}

} // namespace zr::test
