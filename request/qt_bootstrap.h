// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

/// Adds this module's folder to Qt's library paths and makes the process's application object when there is none.
/// To be called at the start of every request; logs both steps.
void startQt();

} // namespace zr
