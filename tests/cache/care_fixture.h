// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/data_folder_fixture.h"

#include <QStringList>
#include <QTemporaryDir>
#include <QVariant>

namespace zr::test
{

/// A test with a cache of rows and PNGs that no request has made.
class CareTest : public DataFolderTest
{
protected:
    void SetUp() override;

    /// A source file of that name, outside of the cache.
    QString source(const QString& name) const;

    /// A PNG of some bytes in the cache, last changed that many seconds ago.
    static QString picture(const QString& name, qint64 ageSeconds = 100, int bytes = 10);

    /// The path that a PNG of the cache has, or would have.
    static QString pngPath(const QString& name);

    /// Records `thumPath` as the PNG of the source file.
    static void addRow(const QString& filePath, const QString& thumPath);

    /// Runs the statement with each of these values on the database, in one transaction.
    static void execute(const QString& statement, const QList<QVariantList>& values = {{}});

    /// The sources of all rows, in order.
    static QStringList rows();

    /// The names of all that is in the folder of the pictures.
    static QStringList pictures();

    QTemporaryDir m_folder;
};

} // namespace zr::test
