#pragma once

#include "tests/support/data_folder_fixture.h"

#include <QImage>
#include <QTemporaryDir>

#include <ostream>

namespace zr::test
{

/// What one request of the file browser comes to.
struct RequestOutcome {
    bool loaded = false;
    QImage picture;  ///< what extract hands out
    QStringList log; ///< the job's lines, without those that every request begins with
};

/// The job's lines for a file that the cache does not know, that has changed, and whose picture cannot be kept.
inline const QStringList kNewEntry = {"84  throw "};
inline const QStringList kStaleEntry = {"106  throw "};
inline const QStringList kNotSaved = {"69  throw ", "73 getImage False"};

/// A test of whole requests in a profile that has seen requests before. A request that hangs ends the program.
class RequestTest : public DataFolderTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// A slice file `name`, whose picture is told apart by its `word` (colour), with `extraBytes` behind it.
    QString source(const QString& name, quint16 word = 0xF800, int extraBytes = 0) const;

    /// The file of `bytes` under that name.
    QString sourceOf(const QString& name, const QByteArray& bytes) const;

    /// One request; its log lines are those since the log was deleted at its beginning.
    static RequestOutcome request(const QString& path);

    /// Expects a request to hand out the picture that the file's reader makes.
    static void expectRequestWorks(const QString& path);

    /// The picture that the file's reader makes, as a PNG gives it back.
    static QImage pictureOf(const QString& path);

    /// The cached PNG of the source file of that name.
    static QString pngOf(const QString& path);

    /// The files in the folder of the cached PNGs, those with a leading dot too.
    static QStringList cachedFiles();

    /// The row of the source file, its values joined by "|".
    static QString rowOf(const QString& path);

    QTemporaryDir m_folder;
};

} // namespace zr::test
