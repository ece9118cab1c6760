// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace zr
{

/// The keys of a group, with their values as they are written.
using KeyFileGroup = QMap<QByteArray, QByteArray>;

/// At most so many of the file's bytes, from its beginning; nothing when it is no regular file or cannot be read. Never
/// blocks, whatever is in the file's place (Linux).
std::optional<QByteArray> readBeginning(const QString& path, qint64 maxBytes);

/// The group of a file in the format of desktop entries; nothing when the file cannot be read or used, or lacks the
/// group. As for the desktops, one line that belongs to nothing makes all of it useless. Of a file that is longer than
/// any of its kind, the beginning counts (Linux).
std::optional<KeyFileGroup> readKeyFile(const QString& path, const QByteArray& group);

/// A value of a key file as a text, and as a list of texts (Linux).
QString keyFileText(const QByteArray& value);
QStringList keyFileList(const QByteArray& value);

} // namespace zr
