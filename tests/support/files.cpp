// SPDX-License-Identifier: MIT
#include "tests/support/files.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace zr::test
{

QString writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(bytes), bytes.size());
    return path;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void moveTimeStamp(const QString& path, qint64 seconds)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite)) << path.toStdString();
    const QDateTime moved = QFileInfo(path).lastModified().addSecs(seconds);
    ASSERT_TRUE(file.setFileTime(moved, QFileDevice::FileModificationTime));
}

} // namespace zr::test
