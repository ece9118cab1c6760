// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace zr
{

/// Removes what the requests for samples leave in the data folder, and nothing else: pictures, rows, and what did not
/// exist before and nobody else has used since. Lines stay in a log that existed before.
class CheckTraces
{
public:
    /// Records what exists before the first request.
    CheckTraces();

    /// Removes the picture and the row of the sample `path`. Returns what stays and why, one line for the user each.
    QStringList takeBack(const QString& path);

    /// Removes the files and folders that only the requests for samples needed. To be called after all takeBack().
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
