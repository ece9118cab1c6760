#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace zr
{

/// What came of writeWhole().
enum class WholeFile {
    Written,
    Failed,     ///< a full disk, for example; the older file is as it was
    NotPossible ///< the folder takes no new files, or the older file cannot be replaced; it is as it was
};

/// Writes the bytes to the file `path`, in place of an older one, so that no reader ever sees a part of them: other
/// processes, and later ones when this one is killed, find the old file or the new one, whole. They go to a file of
/// their own in the same folder, which then takes the place of `path`. `reason` gets the system's words for a failure.
WholeFile writeWhole(const QString& path, const QByteArray& bytes, QString* reason = nullptr);

/// Writes all of the bytes to the file, which is to be open without a buffer. False, with the system's error, when only
/// a part of them finds room.
bool writeAll(QFile& file, const QByteArray& bytes);

} // namespace zr
