// SPDX-License-Identifier: MIT
#pragma once

#include "core/failure_line.h"
#include "core/log_contract.h"
#include "core/reasons.h"

#include <QSqlDatabase>
#include <QString>
#include <QVariant>

#include <mutex>

namespace zr
{

// The log lines that report database failures.
constexpr FailureLine kDatabaseNotOpen{line::kDatabaseNotOpen, "database no open", FailureLine::Rest::None,
                                       reason::kDatabaseNotOpen, key::kNotSaved};
constexpr FailureLine kTableNotMade{line::kTableNotMade, "database create faild", FailureLine::Rest::None,
                                    reason::kDatabaseNotUsable, key::kNotSaved};

/// The statement that creates the cache's table. Needs no memory.
QString createTableStatement();

/// Whether the text can be recorded: statements contain their texts unescaped, so an apostrophe would end one.
bool fitsStatement(const QString& text);

/// One row of the cache: which PNG shows which state of which source file.
struct ThumbnailRecord {
    QString thumPath;     ///< full path of the PNG
    QString filePath;     ///< full path of the source file as the request gave it; the key
    quint64 thumTime = 0; ///< always 0
    quint64 fileTime = 0; ///< the source's modification time, seconds since 1970 UTC
    quint64 fileSize = 0; ///< the source's size in bytes
};

/// The SQLite table that maps source files to their cached PNGs, open while the object lives.
///
/// Every object uses Qt's default connection and removes it when it is destroyed. Qt's connections must not be shared
/// between threads, so an object of another thread waits in its constructor until this one is gone.
class ThumbnailDatabase
{
public:
    /// Opens `path` when it names an existing file that ends with ".db", else the default database, and creates the
    /// table when it is missing. After a failure, which is logged, every operation returns null or false.
    explicit ThumbnailDatabase(const QString& path);
    ~ThumbnailDatabase();
    Q_DISABLE_COPY(ThumbnailDatabase)

    // A text with an apostrophe cannot be part of a statement: looking it up returns null, and recording it fails.

    /// The value of `column` in the row of `filePath`; null when there is no such row or column.
    QVariant queryValue(const QString& filePath, const QString& column) const;

    /// Updates the row of `filePath`, or inserts one when that row has no PNG path.
    bool saveRecord(const QString& filePath, const ThumbnailRecord& record);
    bool insertRecord(const ThumbnailRecord& record);
    bool updateRecord(const QString& filePath, const ThumbnailRecord& record);

private:
    void open();
    void createTable();

    std::unique_lock<std::recursive_mutex> m_turn;
    QString m_path;
    bool m_ok = true;
    QSqlDatabase m_database;
};

} // namespace zr
