// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace zr
{

/// Whether all of the picture is transparent.
bool isInvisible(const QImage& picture);

/// The likely reason for such a picture, by the file's suffix, one line for the user.
QString invisibilityReason(const QString& path);

} // namespace zr
