// SPDX-License-Identifier: MIT
#include "host/check/data.h"

#include "core/data_location.h"
#include "host/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace zr
{
namespace
{

const QString kDataFolder = QStringLiteral("data folder");

// As much as a large picture takes.
constexpr int kTrialBytes = 1 << 19;

// Why files cannot be written to the folder, and what to do; empty when they can. Writes a temporary file, since the
// permissions that a system reports are not all that it applies.
QString writeFault(const QString& folder)
{
    QTemporaryFile file(folder + QLatin1String("/check-XXXXXX"));
    const bool isOpen = file.open();
    if (isOpen && file.write(QByteArray(kTrialBytes, '\0')) == kTrialBytes && file.flush())
        return {};
    if (isOpen || file.errorString() == diskFullText())
        return QStringLiteral("%1 takes no more data (%2): make room on that disk").arg(folder, file.errorString());
    return QStringLiteral("%1 is read-only: get the right to write there").arg(folder);
}

// The closest folder above that exists.
QString existingParent(QString folder)
{
    while (!QFileInfo::exists(folder) && QFileInfo(folder).path() != folder)
        folder = QFileInfo(folder).path();
    return folder;
}

Finding missingDataFolder()
{
    const QString folder = dataFolder();
    if (QFileInfo(folder).isSymLink())
        return {Verdict::Fail, kDataFolder,
                QStringLiteral("%1 is a link to a folder that is not there: make that folder, or delete the link")
                    .arg(folder)};
    const QString parent = existingParent(folder);
    const QString fault = QFileInfo(parent).isDir() ? writeFault(parent) : parent + QStringLiteral(" is no folder");
    if (fault.isEmpty())
        return {Verdict::Ok, kDataFolder,
                QStringLiteral("%1 is not there yet; the first thumbnail makes it").arg(folder)};
    return {Verdict::Fail, kDataFolder, QStringLiteral("%1 cannot be made: %2").arg(folder, fault)};
}

Finding existingDataFolder()
{
    for (const QString& path : {dataFolder(), thumbnailImageFolder().chopped(1)}) {
        const QFileInfo folder(path);
        if (!folder.exists())
            continue;
        if (!folder.isDir())
            return {Verdict::Fail, kDataFolder,
                    QStringLiteral("%1 is a file, where a folder should be: move it elsewhere").arg(path)};
        const QString fault = writeFault(path);
        if (!fault.isEmpty())
            return {Verdict::Fail, kDataFolder, fault};
    }
    return {Verdict::Ok, kDataFolder, QStringLiteral("%1 is writable").arg(dataFolder())};
}

} // namespace

Findings checkDataFolder()
{
    const QFileInfo folder(dataFolder());
    Findings findings;
    if (folder.isRelative())
        findings += {Verdict::Note, kDataFolder,
                     QStringLiteral("%1 is another one for each folder that zrthumb is started in: set XDG_DATA_HOME "
                                    "to a whole path")
                         .arg(folder.filePath())};
    // The cache's statements cannot contain such a text, see ThumbnailDatabase.
    if (folder.absoluteFilePath().contains(QLatin1Char('\'')))
        findings += {Verdict::Fail, kDataFolder,
                     QStringLiteral("%1 has an apostrophe in its path, so the cache cannot record any picture: %2")
                         .arg(folder.absoluteFilePath(), otherDataFolder())};
    else
        findings += folder.exists() ? existingDataFolder() : missingDataFolder();
    return findings;
}

QString fileFault(const QString& path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return {};
    if (file.isDir())
        return QStringLiteral("%1 is a folder, where a file should be: move it elsewhere").arg(path);
    // Opening a pipe might block.
    if (!file.isFile())
        return QStringLiteral("%1 is a pipe or a device, where a file should be: delete it").arg(path);
    if (!QFile(path).open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return QStringLiteral("%1 cannot be written: get the right to write it, or delete it").arg(path);
    return {};
}

} // namespace zr
