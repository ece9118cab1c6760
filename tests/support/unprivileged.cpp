// SPDX-License-Identifier: MIT
#include "tests/support/unprivileged.h"

#include <QDirIterator>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr uid_t kNobody = 65534;

void giveAway(const QString& folder)
{
    QStringList paths{folder};
    QDirIterator walk(folder, QDir::AllEntries | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (walk.hasNext())
        paths.append(walk.next());
    for (const QString& path : qAsConst(paths))
        EXPECT_EQ(chown(QFile::encodeName(path).constData(), kNobody, kNobody), 0) << path.toStdString();
}

} // namespace

Unprivileged::Unprivileged(const QStringList& folders)
{
    if (geteuid() != 0)
        return;
    for (const QString& folder : folders)
        giveAway(folder);
    m_wasRoot = setresuid(kNobody, kNobody, 0) == 0;
    EXPECT_TRUE(m_wasRoot);
}

Unprivileged::~Unprivileged()
{
    if (m_wasRoot) {
        EXPECT_EQ(setresuid(0, 0, 0), 0);
    }
}

void setMode(const QString& path, mode_t mode)
{
    EXPECT_EQ(chmod(QFile::encodeName(path).constData(), mode), 0) << path.toStdString();
}

} // namespace zr::test
