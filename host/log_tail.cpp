// SPDX-License-Identifier: MIT
#include "host/log_tail.h"

#include "core/data_location.h"
#include "core/log_contract.h"
#include "request/thumbnail_extractor.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace zr
{
namespace
{

// A request logs some dozen lines; other processes may add theirs.
constexpr qint64 kMaxTailBytes = 1 << 20;

QString readFrom(qint64 start)
{
    QFile log(defaultLogPath());
    // A pipe may have nobody at its other end.
    if (!QFileInfo(log).isFile() || !log.open(QIODevice::ReadOnly))
        return {};
    // A log that has shrunk was deleted for its size and started again.
    log.seek(start <= log.size() ? start : 0);
    return QString::fromLocal8Bit(log.read(kMaxTailBytes));
}

QStringList splitMessages(const QString& text)
{
    static const QRegularExpression stamp(QStringLiteral("^\\d\\d\\.\\d\\d\\.\\d{4} - \\d\\d:\\d\\d:\\d\\d "));
    QStringList messages;
    const auto lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const auto match = stamp.match(line);
        if (match.hasMatch())
            messages.append(line.mid(match.capturedLength()));
        else if (!messages.isEmpty())
            messages.last() += QLatin1Char('\n') + line;
    }
    return messages;
}

} // namespace

QString asLogged(const QString& path)
{
    return QString::fromLocal8Bit(path.toLocal8Bit());
}

LogTail::LogTail() : m_start(QFileInfo(defaultLogPath()).size()) {}

QStringList LogTail::messagesOf(const QString& path) const
{
    const QStringList messages = splitMessages(readFrom(m_start));
    const auto begin =
        messages.lastIndexOf(QStringLiteral("%1 ").arg(line::kLoad) + QLatin1String(kLoadText) + asLogged(path));
    return messages.mid(begin + 1);
}

} // namespace zr
