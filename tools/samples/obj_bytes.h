// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/model_shapes.h"
#include "tools/samples/sample_files.h"

#include <QByteArray>

namespace zr::samples
{

/// The model with its triangles counted from 1, as the format's usual readers do.
QByteArray objBytes(const IndexedModel& model);

std::vector<SampleFile> objSamples();

} // namespace zr::samples
