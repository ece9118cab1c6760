// SPDX-License-Identifier: MIT
#include "tests/cache/database_rows.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace zr::test
{

ThumbnailRecord recordOf(const QString& source)
{
    ThumbnailRecord record;
    record.thumPath = "/cache/" + source + ".png";
    record.filePath = source;
    record.fileTime = 1700000000;
    record.fileSize = 5000000000; // more than 32 bits
    return record;
}

QStringList results(const char* statement)
{
    const ThumbnailDatabase database{QString()};
    QSqlQuery query(statement);
    QStringList found;
    while (query.next()) {
        QStringList values;
        for (int i = 0; i < query.record().count(); ++i)
            values.append(query.value(i).toString());
        found.append(values.join('|'));
    }
    return found;
}

} // namespace zr::test
