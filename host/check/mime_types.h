// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

namespace zr
{

/// That the desktop gives a type to files of a suffix.
struct TypeOfSuffix {
    int weight;
    QString type;
    QString folder; ///< of the database that says so
};

/// What the desktop's databases of types say about each of the suffixes, heaviest first: the heaviest count, and among
/// equal ones what is in the file (Linux).
QHash<QString, QVector<TypeOfSuffix>> typesOfSuffixes(const QStringList& suffixes);

} // namespace zr
