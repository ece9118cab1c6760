#pragma once

#include <QStringList>

namespace zr
{

/// Takes back what the requests for samples leave in the data folder, and nothing else: pictures, rows, and what was
/// not there before and nobody else has used since. Lines stay in a log that was there.
class CheckTraces
{
public:
    /// Notes what is there before the first request.
    CheckTraces();

    /// Takes the picture and the row of the sample `path` back. Returns what stays and why, a line for the user each.
    QStringList takeBack(const QString& path);

    /// Takes the files and folders back that only the requests for samples needed, after all takeBack().
    void takeBackNewFiles() const;

private:
    bool isOnlyUser() const;

    QStringList m_missingFolders; ///< innermost first
    QStringList m_pictures;
    bool m_hadDatabase;
    bool m_hadLog;
    QStringList m_samples;
};

} // namespace zr
