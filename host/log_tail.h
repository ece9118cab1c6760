// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace zr
{

/// The path as written in the log, whose 8-bit code page may lack some of its characters.
QString asLogged(const QString& path);

/// What is appended to the log while the object lives. The log is read back from its file, since on Windows it is
/// written by the server's DLL.
class LogTail
{
public:
    LogTail();

    /// The messages that the request for `path` has logged so far, without time stamps; a message that spans lines is
    /// one entry. Other processes' lines may be among them.
    QStringList messagesOf(const QString& path) const;

private:
    qint64 m_start;
};

} // namespace zr
