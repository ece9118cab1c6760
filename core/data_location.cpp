// SPDX-License-Identifier: MIT
#include "core/data_location.h"

#include <QStandardPaths>

namespace zr
{

QString dataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QLatin1String("/KESTRAVO_Thumbnail");
}

QString defaultDatabasePath()
{
    return dataFolder() + QLatin1String("/thumbnail.db");
}

QString defaultLogPath()
{
    return dataFolder() + QLatin1String("/thumbnail.log");
}

QString thumbnailImageFolder()
{
    return dataFolder() + QLatin1String("/thumbnailImage/");
}

} // namespace zr
