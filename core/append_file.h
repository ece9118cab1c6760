// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace zr
{

/// A file that several processes append to at the same time. append() writes its bytes to the end of the file in one
/// piece: the operating system finds the end and writes in a single step, so no process overwrites another's bytes.
class AppendFile
{
public:
    AppendFile() = default;
    ~AppendFile();
    Q_DISABLE_COPY(AppendFile)

    bool isOpen() const { return m_handle != kClosed; }

    /// Opens the file, which is created when it is missing. False when that fails, and for a pipe. Not to be called
    /// on an open file.
    bool open(const QString& path);

    /// Writes `bytes` to the open file. What does not fit on the disk is lost.
    void append(const QByteArray& bytes);

private:
    static constexpr qintptr kClosed = -1;

    qintptr m_handle = kClosed; ///< of the operating system
};

} // namespace zr
