// SPDX-License-Identifier: MIT
#pragma once

#include "tests/readers/mesh/reference/reference_text_model.h"

namespace zr::test
{

/// An OBJ file as other programs write it, read statement by statement with nothing but Qt. Its points are those that
/// faces use.
ReferenceModel referenceStandardObj(const QByteArray& file);

} // namespace zr::test
