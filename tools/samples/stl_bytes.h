// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/model_shapes.h"
#include "tools/samples/sample_files.h"

#include <QByteArray>

namespace zr::samples
{

QByteArray binaryStlBytes(const std::vector<ModelTriangle>& triangles);
QByteArray asciiStlBytes(const std::vector<ModelTriangle>& triangles);

std::vector<SampleFile> stlSamples();

} // namespace zr::samples
