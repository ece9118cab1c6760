// SPDX-License-Identifier: MIT
#include "host/check/desktops.h"

#include <QFileInfo>

namespace zr
{

Finding checkKde(const QStringList& pluginFolders)
{
    const QString what = QStringLiteral("KDE");
    QString folderOfKde;
    for (const QString& each : pluginFolders) {
        const QString folder = each + QLatin1String("/kf5/thumbcreator");
        const QFileInfo plugin(folder + QLatin1String("/zrthumb_kde.so"));
        if (plugin.isFile() && plugin.isReadable())
            return {Verdict::Ok, what, plugin.filePath()};
        if (folderOfKde.isEmpty() && QFileInfo(folder).isDir())
            folderOfKde = folder;
    }
    if (folderOfKde.isEmpty())
        return {Verdict::Note, what,
                QStringLiteral("its thumbnails are not installed here; they need the package zrthumb-kde, too")};
    return {Verdict::Note, what,
            QStringLiteral("zrthumb_kde.so is not in %1, so Dolphin shows no thumbnails: install the package "
                           "zrthumb-kde")
                .arg(folderOfKde)};
}

} // namespace zr
