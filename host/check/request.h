#pragma once

#include "host/check/check.h"

namespace zr
{

/// Whether a request for a thumbnail succeeds: one for a slice file, then with `drawsModels` one for a model, on the
/// way that a user's request goes. Takes back what they leave. Comes after checkQt().
Findings checkRequests(bool drawsModels);

} // namespace zr
