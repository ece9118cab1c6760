// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/data_folder_fixture.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

namespace zr::test
{

/// A test in which zrthumb runs over slice files, with checks of what it leaves in the data folder whatever happens.
class HostProcessesTest : public DataFolderTest
{
protected:
    /// Makes `count` files of all slice formats, each with a unique name.
    void makeSources(int count);

    /// Makes every file look changed, so that its picture is made again.
    void touchSources() const;

    /// Starts zrthumb on all files, in the order in which they were made or a random one.
    enum class Order { AsCreated, Random };
    void start(QProcess& program, Order order) const;

    /// Expects a sound database in which every row names a PNG that loads, and returns the number of rows.
    static int expectSoundCache();

    /// Expects one row for each file, with the file's picture as its PNG.
    void expectCompleteCache() const;

    /// Names of the temporary files left by processes that died while saving a picture.
    static QStringList unfinishedPictures();

    const QStringList& sources() const { return m_sources; }

private:
    QTemporaryDir m_folder;
    QStringList m_sources;
    QList<QImage> m_pictures; ///< of the sources
};

} // namespace zr::test
