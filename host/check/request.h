// SPDX-License-Identifier: MIT
#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether a request for a thumbnail succeeds: one for a slice file, then with `drawsModels` one for a model, made in
/// the same way as a user's. Removes what they leave. Comes after checkQt().
Findings checkRequests(bool drawsModels);

} // namespace zr
