// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace zr
{

/// Whether all of the picture is transparent.
bool isInvisible(const QImage& picture);

/// The likely reason for such a picture, by the file's suffix and how OBJ files are read, one line for the user.
/// `aboutFaces` is what the program can say of faces in forms that the server's reading does not understand.
QString invisibilityReason(const QString& path, const char* aboutFaces = "");

} // namespace zr
