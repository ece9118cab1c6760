// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace zr::test
{

/// Expects the picture that the Linux host makes of the sample file of this name. The variable ZRTHUMB_NATIVE_PICTURES
/// says where those are.
void expectNativePicture(const QString& name, const QImage& picture);

} // namespace zr::test
