// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace zr
{

/// The name of an output that stands for stdout.
constexpr char kStdoutName[] = "-";

/// Writes the picture as a PNG to the file `path`, or to stdout. Returns why it could not be written completely, for
/// the user; empty when it was. A file of that name is replaced in one step and unchanged after a failure. Devices,
/// pipes, links and files in a folder that takes no new ones are written in place.
QString writeOutput(const QImage& picture, const QString& path);

} // namespace zr
