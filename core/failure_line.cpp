// SPDX-License-Identifier: MIT
#include "core/failure_line.h"

namespace zr
{

QString textOf(const FailureLine& line, const QString& path)
{
    QString text = QString::fromLatin1(line.text);
    if (line.rest == FailureLine::Rest::PathOnNextLine)
        text += QLatin1Char('\n');
    if (line.rest == FailureLine::Rest::PathOnNextLine || line.rest == FailureLine::Rest::PathAppended)
        text += path;
    return text;
}

bool isLine(const QString& message, const FailureLine& line, const QString& path)
{
    const QString expected = QString::number(line.number) + QLatin1Char(' ') + textOf(line, path);
    return line.rest == FailureLine::Rest::Anything ? message.startsWith(expected) : message == expected;
}

} // namespace zr
