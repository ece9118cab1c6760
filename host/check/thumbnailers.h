// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace zr
{

/// A program that is registered with file managers for types of files, by a file NAME.thumbnailer.
struct Thumbnailer {
    QString path;    ///< of that file
    QString program; ///< as it is written there
    QStringList types;

    /// Whether it is the one of ZRThumbnail, whoever has registered it.
    bool isOurs() const;
};

/// The folders of data in the desktops' order, the user's own first (Linux).
QStringList dataFolders();

/// Whether the file is in the user's own folder of data (Linux).
bool isOfUser(const QString& path);

/// The files `name` in the folders of data, in their order, whatever they are (Linux).
QStringList filesOfData(const QString& name);

/// All that the desktops use, in the order in which they read them, for which the first one of a type counts (Linux).
QVector<Thumbnailer> registeredThumbnailers();

/// Whether GNOME, in whose sandbox there is little besides /usr, finds the program. A name is looked up in PATH
/// (Linux).
bool isSeenByGnome(const QString& program);

} // namespace zr
