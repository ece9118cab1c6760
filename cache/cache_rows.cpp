// SPDX-License-Identifier: MIT
#include "cache/cache_rows.h"

#include "cache/database_check.h"
#include "cache/row_paths.h"
#include "core/data_location.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>

namespace zr
{
namespace
{

constexpr char kConnection[] = "all rows";

constexpr std::size_t kRowsInPiece = 1000;

// SQLite's SQLITE_BUSY, and the part of an error code that holds it.
constexpr int kBusy = 5;
constexpr int kPrimaryCode = 0xFF;

std::size_t hashOf(const QString& fileName)
{
    const QString name = comparableName(fileName);
    const QStringView view(name);
    return std::hash<std::u16string_view>()({view.utf16(), static_cast<std::size_t>(view.size())});
}

// A relative path is another file in each folder that a program is started in.
bool isGoneForSure(const QString& sourcePath)
{
    return QFileInfo(sourcePath).isAbsolute() && isGone(sourcePath);
}

} // namespace

void NamedPictures::add(const QString& pngPath)
{
    m_hashes.push_back(hashOf(QFileInfo(pngPath).fileName()));
}

void NamedPictures::sort()
{
    std::sort(m_hashes.begin(), m_hashes.end());
}

bool NamedPictures::contains(const QString& fileName) const
{
    return std::binary_search(m_hashes.begin(), m_hashes.end(), hashOf(fileName));
}

CacheRows::CacheRows(std::function<bool()> isCancelled) : m_isCancelled(std::move(isCancelled))
{
    // SQLite would create a missing file.
    if (isGone(defaultDatabasePath()))
        return;
    open();
    lookForTable();
}

CacheRows::~CacheRows()
{
    QSqlDatabase::removeDatabase(kConnection);
}

void CacheRows::open()
{
    auto database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), kConnection);
    database.setDatabaseName(defaultDatabasePath());
    if (!database.open())
        m_error = database.lastError().text();
}

// The table is missing until the first request has ended.
void CacheRows::lookForTable()
{
    Rows tables;
    run(QStringLiteral("select count(*), '' from sqlite_master where name = 'thumbnail' collate nocase"), {}, &tables);
    m_hasTable = !tables.empty() && tables.front().id > 0;
    if (isUsable() && !hasTableOfTheCache(QSqlDatabase::database(kConnection, false)))
        m_error = QStringLiteral("its table is another program's or version's");
}

qint64 CacheRows::run(const QString& statement, const QVariantList& values, Rows* results)
{
    if (!m_error.isEmpty())
        return 0;
    QSqlQuery query(QSqlDatabase::database(kConnection, false));
    query.setForwardOnly(true);
    if (query.prepare(statement)) {
        for (const QVariant& value : values)
            query.addBindValue(value);
        query.exec();
        while (results && query.next())
            results->push_back({query.value(0).toLongLong(), query.value(1).toString()});
    }
    const QSqlError error = query.lastError();
    if (!error.isValid())
        return query.numRowsAffected();
    m_isBusy = (error.nativeErrorCode().toInt() & kPrimaryCode) == kBusy;
    m_error = error.databaseText();
    return 0;
}

CacheRows::Rows CacheRows::rowsAfter(const QString& column, qint64 id)
{
    Rows rows;
    run(QStringLiteral("select rowid, %1 from thumbnail where rowid > ? order by rowid limit %2")
            .arg(column, QString::number(kRowsInPiece)),
        {id}, &rows);
    return rows;
}

void CacheRows::forEachPiece(const QString& column, const std::function<void(const Rows&)>& use)
{
    qint64 last = std::numeric_limits<qint64>::min();
    while (isUsable() && !m_isCancelled()) {
        const Rows rows = rowsAfter(column, last);
        if (rows.empty() || !m_error.isEmpty())
            return;
        last = rows.back().id;
        use(rows);
    }
}

// A row is identified by its path as well, since SQLite gives the numbers of removed rows to new ones.
qint64 CacheRows::remove(const Row& row)
{
    return run(QStringLiteral("delete from thumbnail where rowid = ? and filePath = ?"), {row.id, row.text});
}

// All that `removal` removes, or nothing.
qint64 CacheRows::removeInOneStep(const std::function<qint64()>& removal)
{
    run(QStringLiteral("begin immediate"));
    const qint64 count = removal();
    run(QStringLiteral("commit"));
    if (m_error.isEmpty())
        return count;
    QSqlQuery(QSqlDatabase::database(kConnection, false)).exec(QStringLiteral("rollback"));
    return 0;
}

qint64 CacheRows::removeGone()
{
    // Nothing is to be done while another program changes the database.
    if (isUsable())
        removeInOneStep([] { return 0; });
    qint64 count = 0;
    forEachPiece(QStringLiteral("filePath"), [&](const Rows& rows) {
        Rows gone;
        std::copy_if(rows.begin(), rows.end(), std::back_inserter(gone),
                     [](const Row& row) { return isGoneForSure(row.text); });
        if (gone.empty())
            return;
        count += removeInOneStep([&] {
            qint64 removed = 0;
            for (const Row& row : gone)
                removed += isGone(row.text) ? remove(row) : 0; // it may have come back
            return removed;
        });
    });
    return count;
}

qint64 CacheRows::removeAll()
{
    if (!isUsable() || m_isCancelled())
        return 0;
    return removeInOneStep([this] { return run(QStringLiteral("delete from thumbnail")); });
}

NamedPictures CacheRows::pictures()
{
    NamedPictures pictures;
    forEachPiece(QStringLiteral("thumPath"), [&pictures](const Rows& rows) {
        for (const Row& row : rows)
            pictures.add(row.text);
    });
    pictures.sort();
    return pictures;
}

} // namespace zr
