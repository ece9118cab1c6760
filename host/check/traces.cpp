// SPDX-License-Identifier: MIT
#include "host/check/traces.h"

#include "cache/cached_pictures.h"
#include "core/data_location.h"
#include "host/check/connection.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace zr
{
namespace
{

// Rows are inserted by the order of the columns, whatever their names.
constexpr int kColumnOfSource = 2;

bool isThere(const QString& path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

QStringList pictures()
{
    return QDir(thumbnailImageFolder())
        .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
}

// False when the row may still be there; without a database there is none.
bool removeRow(const QString& path, QString& error)
{
    if (!QFileInfo(defaultDatabasePath()).isFile())
        return true;
    CheckConnection connection;
    const QStringList columns = connection.texts(QStringLiteral("SELECT name FROM pragma_table_info('thumbnail')"));
    const QString column = columns.value(kColumnOfSource);
    error = connection.error();
    // A database that cannot be read has taken no row, unless it is only busy.
    if (column.isEmpty())
        return !connection.isBusy();
    if (connection.run(QStringLiteral("DELETE FROM thumbnail WHERE \"%1\" = ?").arg(column), path))
        return true;
    error = connection.error();
    return false;
}

} // namespace

CheckTraces::CheckTraces()
    : m_pictures(pictures()), m_hadDatabase(isThere(defaultDatabasePath())), m_hadLog(isThere(defaultLogPath()))
{
    QString folder = thumbnailImageFolder().chopped(1);
    while (!isThere(folder) && QFileInfo(folder).path() != folder) {
        m_missingFolders += folder;
        folder = QFileInfo(folder).path();
    }
}

QStringList CheckTraces::takeBack(const QString& path)
{
    m_samples += path;
    QStringList rest;
    const QString picture = picturePath(path);
    if (QFileInfo::exists(picture) && !QFile::remove(picture))
        rest += QStringLiteral("its picture could not be taken away again; delete %1").arg(picture);
    QString error;
    if (!removeRow(path, error))
        rest +=
            QStringLiteral("its row may have stayed in %1 (%2), which does no harm").arg(defaultDatabasePath(), error);
    return rest;
}

// A process that starts to use the files between the check and the removal has to create them again, as for a new user.
void CheckTraces::takeBackNewFiles() const
{
    if (m_samples.isEmpty() || !isOnlyUser())
        return;
    if (!m_hadDatabase)
        QFile::remove(defaultDatabasePath());
    if (!m_hadLog)
        QFile::remove(defaultLogPath());
    // None of these is deleted unless it is empty.
    for (const QString& folder : m_missingFolders)
        QDir().rmdir(folder);
}

// Judges by the pictures, the rows and the log.
bool CheckTraces::isOnlyUser() const
{
    if (pictures() != m_pictures)
        return false;
    if (!m_hadDatabase && QFileInfo(defaultDatabasePath()).isFile()) {
        CheckConnection connection;
        if (connection.texts(QStringLiteral("SELECT count(*) FROM thumbnail")) != QStringList(QStringLiteral("0")))
            return false;
    }
    QFile log(defaultLogPath());
    if (m_hadLog || !QFileInfo(log).isFile() || !log.open(QIODevice::ReadOnly))
        return true;
    static const QRegularExpression request(QStringLiteral(" 37 in 2 (.*)$"), QRegularExpression::MultilineOption);
    auto matches = request.globalMatch(QString::fromLocal8Bit(log.readAll()));
    while (matches.hasNext()) {
        if (!m_samples.contains(matches.next().captured(1)))
            return false;
    }
    return true;
}

} // namespace zr
