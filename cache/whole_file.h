// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace zr
{

/// The result of writeWhole().
enum class WholeFile {
    Written,
    Failed,     ///< a full disk, for example; the older file is as it was
    NotPossible ///< the folder takes no new files, or the older file cannot be replaced; it is as it was
};

/// Writes the bytes to the file `path`, replacing an older one. Readers never see a partial file: they find the old one
/// or the new one, even when this process is killed. The bytes go to a temporary file in the same folder, which then
/// replaces `path`. `reason` gets the system's words for a failure.
WholeFile writeWhole(const QString& path, const QByteArray& bytes, QString* reason = nullptr);

/// Writes all bytes to the file, which must be open without a buffer. False, with the system's error, when only part of
/// them fits.
bool writeAll(QFile& file, const QByteArray& bytes);

} // namespace zr
