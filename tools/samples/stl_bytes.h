#pragma once

#include "tools/samples/model_shapes.h"

#include <QByteArray>

namespace zr::samples
{

QByteArray binaryStlBytes(const std::vector<ModelTriangle>& triangles);
QByteArray asciiStlBytes(const std::vector<ModelTriangle>& triangles);

} // namespace zr::samples
