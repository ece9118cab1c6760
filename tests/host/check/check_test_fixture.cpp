// SPDX-License-Identifier: MIT
#include "tests/host/check/check_test.h"

#include "core/data_location.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

namespace zr::test
{
namespace
{

QStringList rowsOfDatabase()
{
    if (!QFileInfo(defaultDatabasePath()).isFile())
        return {};
    const QString name = QStringLiteral("snapshot");
    QStringList rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(defaultDatabasePath());
        database.open();
        QSqlQuery query = database.exec(QStringLiteral("select * from thumbnail"));
        while (query.next()) {
            QStringList values;
            for (int i = 0; i < query.record().count(); ++i)
                values += query.value(i).toString();
            rows += values.join('|');
        }
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

} // namespace

const QString CheckTest::kNotRegistered =
    "note thumbnailer: zrthumb.thumbnailer is in none of the folders of data, so no file manager shows thumbnails: "
    "install the package zrthumb";

void CheckTest::SetUp()
{
    DataFolderTest::SetUp();
    m_environment.insert("XDG_DATA_DIRS", m_folder.filePath("nothing-installed"));
}

ProgramRun CheckTest::check() const
{
    return runProgram(QStringLiteral(ZRTHUMB_PROGRAM), {"--check"}, m_folder.path(), m_environment);
}

void CheckTest::useFasterClock()
{
    m_environment.insert("LD_PRELOAD", ZRTHUMB_FASTER_CLOCK);
    // A sanitizer's library would have to be the first one.
    m_environment.insert("ASAN_OPTIONS", "verify_asan_link_order=0");
}

void CheckTest::makeThumbnail() const
{
    const samples::SampleFile& sample = samples::sampleFiles().front();
    const QString path = writeFile(m_folder.filePath(sample.name), sample.make());
    ASSERT_EQ(runProgram(QStringLiteral(ZRTHUMB_PROGRAM), {path}, m_folder.path(), m_environment).status, 0);
}

void CheckTest::expectOnlyFailure(const QString& line) const
{
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(marked(run, "FAIL"), QStringList(line));
    EXPECT_EQ(run.out.value(run.out.size() - 1), "1 problem found");
    EXPECT_TRUE(run.out.contains("ok   sample slice file: its thumbnail was made, and taken away again"));
}

void CheckTest::expectFailureOfRequest(const QString& line) const
{
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, QStringList());
    const QStringList failures = marked(run, "FAIL");
    ASSERT_EQ(failures.size(), 2) << run.out.join('\n').toStdString();
    EXPECT_EQ(failures[0], line);
    EXPECT_TRUE(failures[1].startsWith("FAIL sample slice file: no thumbnail: ")) << failures[1].toStdString();
    EXPECT_EQ(run.out.last(), "2 problems found; the first one is the one to mend first");
}

void CheckTest::expectFirstFailure(const QString& line) const
{
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(marked(run, "FAIL").value(0), line);
}

QStringList CheckTest::marked(const ProgramRun& run, const QString& mark)
{
    return run.out.filter(QRegularExpression('^' + mark + ' '));
}

QString CheckTest::path(const QString& name)
{
    return dataFolder() + '/' + name;
}

QStringList CheckTest::snapshot()
{
    QStringList entries = rowsOfDatabase();
    QDirIterator files(dataFolder(), QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QFileInfo file(files.next());
        QString entry = file.filePath();
        const bool isKept = file.filePath() != defaultDatabasePath() && file.filePath() != defaultLogPath();
        if (file.isFile() && isKept) {
            entry += '|' + file.lastModified().toString(Qt::ISODateWithMs) + '|' +
                     QCryptographicHash::hash(readFile(file.filePath()), QCryptographicHash::Md5).toHex();
        }
        entries += entry;
    }
    entries.sort();
    return entries;
}

} // namespace zr::test
