// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QSet>
#include <QString>

namespace zr
{

/// The PNGs that several files share: files of the same name in different folders get the same one, which shows the
/// file whose picture was made last. For callers that must not take one file's picture for another's.
class SharedPictures
{
public:
    /// Reads the cache once, now. Without a readable cache, nothing is shared.
    SharedPictures();

    /// To be called before a request for `path`: when its PNG may show another file, marks its row as stale, so that
    /// the request makes a new picture. Other files' rows, and PNGs, are not touched.
    void prepare(const QString& path) const;

    /// Records that a request for `path` has just ended with the picture `pngPath`.
    void handedOut(const QString& path, const QString& pngPath);

private:
    bool isShared(const QString& path, const QString& pngPath) const;

    // Case-folded, since some file systems ignore case.
    QSet<QString> m_sharedPngs;
    QHash<QString, QString> m_lastFiles; ///< by PNG
};

} // namespace zr
