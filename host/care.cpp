// SPDX-License-Identifier: MIT
#include "host/care.h"

#include "cache/cache_care.h"
#include "core/data_location.h"
#include "core/printable.h"
#include "host/application.h"
#include "host/cache_fault.h"
#include "host/console.h"
#include "host/interruption.h"
#include "host/platform.h"

#include <QDir>
#include <QFileInfo>

#include <cstdio>

namespace zr
{
namespace
{

constexpr int kDone = 0;
constexpr int kFailed = 1;

void printError(const QString& text)
{
    printLine(stderr, QLatin1String("zrthumb: ") + printable(text));
}

QString counted(qint64 count, const char* one, const char* many)
{
    return QStringLiteral("%1 %2").arg(count).arg(QLatin1String(count == 1 ? one : many));
}

// What keeps the cache from being looked after at all; empty when nothing is known to.
QString cacheAsAWholeFault()
{
    for (const QString& folder : {dataFolder(), QDir::cleanPath(thumbnailImageFolder())}) {
        const QString fault = misplacedFolderFault(folder);
        if (!fault.isEmpty())
            return fault;
    }
    const QFileInfo database(defaultDatabasePath());
    return database.exists() || database.isSymLink() ? databaseFault(database.filePath()) : QString();
}

QString removedText(const CareResult& result, Options::Action action)
{
    const bool isPrune = action == Options::Action::PruneCache;
    QStringList parts;
    if (result.rows > 0)
        parts += isPrune ? counted(result.rows, "row of a file that is gone", "rows of files that are gone")
                         : counted(result.rows, "row", "rows");
    if (result.pictures > 0)
        parts += QStringLiteral("%1, %2").arg(counted(result.pictures, "picture", "pictures"),
                                              counted(result.bytes, "byte", "bytes"));
    return parts.isEmpty() ? QString() : QLatin1String("removed ") + parts.join(QLatin1String(" and "));
}

QString databaseErrorText(const CareResult& result)
{
    if (result.isDatabaseBusy)
        return QStringLiteral("the cache's database is locked by another program: end that program, or try again");
    for (const QString& fault : {databaseFault(defaultDatabasePath()), spaceFault()}) {
        if (!fault.isEmpty())
            return fault;
    }
    return QStringLiteral("the cache's database cannot be used (%1): 'zrthumb --check' tells more")
        .arg(result.databaseError);
}

QString keptText(const CareResult& result)
{
    if (result.keptPictures == 1)
        return QStringLiteral("1 picture could not be removed: %1: %2").arg(result.firstKept, result.keptReason);
    return QStringLiteral("%1 pictures could not be removed, such as %2: %3")
        .arg(QString::number(result.keptPictures), result.firstKept, result.keptReason);
}

// What could not be done, a line each.
QStringList faultTexts(const CareResult& result)
{
    QStringList texts;
    if (!result.databaseError.isEmpty())
        texts += databaseErrorText(result);
    if (result.isFolderClosed)
        texts += QStringLiteral("%1 cannot be listed: get the right to read it")
                     .arg(QDir::cleanPath(thumbnailImageFolder()));
    if (result.keptPictures > 0)
        texts += keptText(result);
    return texts;
}

// Returns whether all was done.
bool report(const CareResult& result, Options::Action action)
{
    const QStringList faults = faultTexts(result);
    const QString removed = removedText(result, action);
    if (!removed.isEmpty())
        printLine(stdout, removed);
    else if (faults.isEmpty() && !result.isInterrupted)
        printLine(stdout, QStringLiteral("nothing to remove"));
    for (const QString& fault : faults)
        printError(fault);
    return faults.isEmpty();
}

// Who looks at a terminal would wonder.
void tellOfTheWait()
{
    if (stderrIsTerminal())
        printError(QStringLiteral("waiting for pictures that are just being made"));
}

} // namespace

int careForCache(Options::Action action)
{
    makePlainApplication();
    const QString fault = cacheAsAWholeFault();
    if (!fault.isEmpty()) {
        printError(fault);
        return kFailed;
    }
    const Interruption interruption;
    const CareCallbacks callbacks{[&interruption] { return interruption.isRequested(); }, tellOfTheWait};
    const CareResult result = action == Options::Action::PruneCache ? pruneCache(callbacks) : clearCache(callbacks);
    const bool isDone = report(result, action);
    if (result.isInterrupted) {
        printError(QStringLiteral("interrupted"));
        return interruption.status();
    }
    return isDone ? kDone : kFailed;
}

} // namespace zr
