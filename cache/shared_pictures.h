#pragma once

#include <QHash>
#include <QSet>
#include <QString>

namespace zr
{

/// The PNGs that stand for more than one file: those of equal names in different folders get the same one, which shows
/// the file whose picture was made last. Who must not take one file's picture for another's lets it be made anew.
class SharedPictures
{
public:
    /// Reads the cache as it is now. Without a cache, or with one that cannot be read, nothing is shared.
    SharedPictures();

    /// To be called before a request for `path`: when its PNG may show another file, its row is made to look stale, so
    /// that the request makes its own picture. Rows of other files, and PNGs, are not touched.
    void prepare(const QString& path) const;

    /// Tells that a request for `path` has just ended with the picture `pngPath`.
    void handedOut(const QString& path, const QString& pngPath);

private:
    bool isShared(const QString& path, const QString& pngPath) const;

    // Without the difference between capitals and small letters, which is none in the names of some file systems.
    QSet<QString> m_sharedPngs;
    QHash<QString, QString> m_lastFiles; ///< by PNG
};

} // namespace zr
