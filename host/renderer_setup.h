// SPDX-License-Identifier: MIT
#pragma once

#include "host/options.h"

namespace zr
{

/// Chooses what draws models, and with it the platform that Qt starts with, if it needs one. To be called before the
/// first request and before any thread starts, after the message handler is set.
void setUpRenderer(const Options& options);

/// Makes the application object that a reader in this process needs, if any. Linux only.
void startQtForReader();

} // namespace zr
