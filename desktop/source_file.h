// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/descriptor.h"

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

namespace zr::desktop
{

/// The file that a thumbnail is made of.
class SourceFile
{
public:
    /// Opens `input`, a path or a file: URI, for reading. Returns why that is not possible; empty when it is open.
    QByteArray open(const QByteArray& input);

    int descriptor() const { return m_descriptor.number(); }
    const QByteArray& path() const { return m_path; }
    QString suffix() const;
    bool isEmpty() const { return m_status.st_size == 0; }

    /// Whether that is the status of the same file.
    bool isSame(const struct stat& status) const
    {
        return status.st_dev == m_status.st_dev && status.st_ino == m_status.st_ino;
    }

private:
    QByteArray m_path;
    Descriptor m_descriptor;
    struct stat m_status {
    };
};

/// The path that a file: URI of this machine names. Anything else is a path itself. Empty for the URI of another
/// machine.
QByteArray localPath(const QByteArray& input);

} // namespace zr::desktop
