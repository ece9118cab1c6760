#pragma once

#include "tests/support/data_folder_fixture.h"

#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

namespace zr::test
{

/// A test in which zrthumb runs over slice files, and what it must leave in the data folder whatever happens to it.
class HostProcessesTest : public DataFolderTest
{
protected:
    /// Makes `count` files of all slice formats, each with a name of its own.
    void makeSources(int count);

    /// Makes every file look changed, so that its picture is made anew.
    void touchSources() const;

    /// zrthumb, started over all files in the order given, or in a random one.
    enum class Order { AsMade, Random };
    void start(QProcess& program, Order order) const;

    /// Expects a sound database in which every row names a PNG that loads.
    static void expectSoundCache();

    /// Expects one row for each file, with the file's picture as its PNG.
    void expectCompleteCache() const;

    /// Names of the pictures that were about to be saved by processes that are no more.
    static QStringList unfinishedPictures();

    const QStringList& sources() const { return m_sources; }

private:
    QTemporaryDir m_folder;
    QStringList m_sources;
    QList<QImage> m_pictures; ///< of the sources
};

} // namespace zr::test
