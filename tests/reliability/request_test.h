// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/data_folder_fixture.h"

#include <QImage>
#include <QTemporaryDir>

#include <ostream>

namespace zr::test
{

/// The result of one request of the file browser.
struct RequestOutcome {
    bool loaded = false;
    QImage picture;  ///< what extract returns
    QStringList log; ///< the job's lines, without the first ones of every request
};

/// The job's lines for a file that is not in the cache, that has changed, and whose picture cannot be saved.
inline const QStringList kNewEntry = {"84  throw "};
inline const QStringList kStaleEntry = {"106  throw "};
inline const QStringList kNotSaved = {"69  throw ", "73 getImage False"};

/// A test of whole requests in a profile that has seen requests before. A request that hangs ends the program.
class RequestTest : public DataFolderTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// A slice file `name` with a picture of the colour `word`, followed by `extraBytes` bytes.
    QString source(const QString& name, quint16 word = 0xF800, int extraBytes = 0) const;

    /// A file `name` of these bytes.
    QString sourceOf(const QString& name, const QByteArray& bytes) const;

    /// One request. Deletes the log first, so that its log lines are those of this request.
    static RequestOutcome request(const QString& path);

    /// Expects a request to return the picture that the file's reader makes.
    static void expectRequestWorks(const QString& path);

    /// The picture that the file's reader makes, in the format in which a PNG is read.
    static QImage pictureOf(const QString& path);

    /// The cached PNG of the source file of that name.
    static QString pngOf(const QString& path);

    /// The files in the folder of the cached PNGs, including those with a leading dot.
    static QStringList cachedFiles();

    /// The row of the source file, its values joined by "|".
    static QString rowOf(const QString& path);

    QTemporaryDir m_folder;
};

} // namespace zr::test
