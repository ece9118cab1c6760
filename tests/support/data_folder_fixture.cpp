// SPDX-License-Identifier: MIT
#include "tests/support/data_folder_fixture.h"

#include "core/data_location.h"
#include "core/log_file.h"

#include <QDir>
#include <QRegularExpression>

namespace zr::test
{

void DataFolderTest::SetUp()
{
    LogFile::end();
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
}

void DataFolderTest::TearDown()
{
    LogFile::end();
    QDir(dataFolder()).removeRecursively();
}

void DataFolderTest::createDataFolder()
{
    ASSERT_TRUE(QDir().mkpath(dataFolder()));
}

QStringList logMessages()
{
    QFile log(defaultLogPath());
    if (!log.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromLocal8Bit(log.readAll());
    if (text.isEmpty())
        return {};
    EXPECT_TRUE(text.endsWith(QLatin1Char('\n')));
    text.chop(1);

    static const QRegularExpression stamp(QStringLiteral("^\\d{2}\\.\\d{2}\\.\\d{4} - \\d{2}:\\d{2}:\\d{2} "));
    QStringList messages;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const auto match = stamp.match(line);
        if (match.hasMatch())
            messages.append(line.mid(match.capturedLength()));
        else if (messages.isEmpty())
            ADD_FAILURE() << "the log starts with a line without a time stamp: " << line.toStdString();
        else
            messages.last() += QLatin1Char('\n') + line;
    }
    return messages;
}

QStringList failureLines(int number, const QString& text)
{
    return {QStringLiteral("%1 %2").arg(number).arg(text), QStringLiteral("%1  throw ").arg(number + 1)};
}

void restartLog()
{
    LogFile::end();
    QDir().mkpath(dataFolder());
    QFile::remove(defaultLogPath());
    LogFile::instance()->init(QString());
}

} // namespace zr::test
