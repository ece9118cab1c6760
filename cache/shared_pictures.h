// SPDX-License-Identifier: MIT
#pragma once

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
    /// the request makes a new picture. Other files' rows, and PNGs, are not touched. `isRepeated` tells that requests
    /// for other files of its name come before or after this one.
    void prepare(const QString& path, bool isRepeated) const;

private:
    // Case-folded, since some file systems ignore case.
    QSet<QString> m_sharedPngs;
};

} // namespace zr
