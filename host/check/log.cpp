// SPDX-License-Identifier: MIT
#include "host/check/log.h"

#include "core/data_location.h"
#include "host/check/data.h"

#include <QFile>
#include <QFileInfo>

namespace zr
{
namespace
{

const QString kLog = QStringLiteral("log");

constexpr int kShownLines = 10;
constexpr qint64 kShownBytes = 8192;

QStringList lastLines(const QString& path)
{
    QFile log(path);
    if (!log.open(QIODevice::ReadOnly))
        return {};
    log.seek(qMax<qint64>(0, log.size() - kShownBytes));
    const QStringList lines =
        QString::fromLocal8Bit(log.read(kShownBytes)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.mid(qMax(0, lines.size() - kShownLines));
}

} // namespace

Findings checkLog()
{
    const QString path = defaultLogPath();
    const QString fault = fileFault(path);
    if (!fault.isEmpty())
        return {{Verdict::Fail, kLog, fault + QStringLiteral("; until then nothing tells why a thumbnail is missing")}};
    if (!QFileInfo::exists(path))
        return {{Verdict::Ok, kLog, QStringLiteral("none yet")}};
    return {{Verdict::Ok, kLog, QStringLiteral("the last lines of ") + path, lastLines(path)}};
}

} // namespace zr
