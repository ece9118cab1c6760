// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVariant>

#include <cstddef>
#include <functional>
#include <vector>

namespace zr
{

/// The PNGs that rows name, by their file names. A million of them take 8 MB.
class NamedPictures
{
public:
    void add(const QString& pngPath);
    /// To be called after the last add().
    void sort();
    /// Whether a row names a file of this name. May be true by mistake, never false.
    bool contains(const QString& fileName) const;

private:
    std::vector<std::size_t> m_hashes;
};

/// All rows of the cache's default database, on a connection of their own. Other processes may use the database
/// meanwhile: rows are read in pieces, no lock is held while files are looked at, and a database in use is waited for,
/// 5 seconds each time. After an error nothing more is done.
class CacheRows
{
public:
    /// Opens the database; a missing one has no rows, and is not created. `isCancelled` is asked between pieces.
    explicit CacheRows(std::function<bool()> isCancelled);
    ~CacheRows();
    Q_DISABLE_COPY(CacheRows)

    /// Removes the rows of source files that are gone. Returns how many.
    qint64 removeGone();

    /// Removes all rows, in one transaction. Returns how many.
    qint64 removeAll();

    /// What the rows name; incomplete after an error, or when cancelled.
    NamedPictures pictures();

    /// The first error, in the words of SQLite; empty when there was none.
    const QString& error() const { return m_error; }
    /// Whether the reason was that another program has the database locked.
    bool isBusy() const { return m_isBusy; }

private:
    struct Row {
        qint64 id = 0;
        QString text; ///< of the column that was asked for
    };
    using Rows = std::vector<Row>;

    void open();
    void lookForTable();
    bool isUsable() const { return m_hasTable && m_error.isEmpty(); }
    void forEachPiece(const QString& column, const std::function<void(const Rows&)>& use);
    Rows rowsAfter(const QString& column, qint64 id);
    qint64 removeInOneStep(const std::function<qint64()>& removal);
    qint64 remove(const Row& row);
    /// The first columns of the result are in `results`, if given. Returns the number of changed rows.
    qint64 run(const QString& statement, const QVariantList& values = {}, Rows* results = nullptr);

    std::function<bool()> m_isCancelled;
    QString m_error;
    bool m_isBusy = false;
    bool m_hasTable = false;
};

} // namespace zr
