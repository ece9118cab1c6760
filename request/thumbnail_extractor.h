// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace zr
{

/// The log's line that begins a request has the number line::kLoad and this text, followed by the path.
constexpr char kLoadText[] = "in 2 ";

/// Serves one client object: load() makes sure that the cache has the file's picture, extract() hands it out.
/// The COM object and the command line host are both thin on top of this class. Used on one thread.
class ThumbnailExtractor
{
public:
    /// Starts Qt when this is the process's first request, and runs one thumbnail job. True when the cache holds the
    /// picture. Errors other than a QString pass through; the file then counts as not loaded.
    bool load(const QString& path);

    /// The cached picture of the loaded file as it is, or a null image. Ends the log instance of the request.
    QImage extract() const;

    /// The path of the last successful load(), else empty.
    const QString& filePath() const { return m_filePath; }

private:
    QString m_filePath;
};

} // namespace zr
