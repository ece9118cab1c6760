// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

/// Makes stderr accept the control sequences that overwrite a line, until endControlSequences(). False when it is not a
/// terminal that supports them.
bool startControlSequences();
void endControlSequences();

/// The current width of the terminal on stderr, in cells.
int terminalColumns();

} // namespace zr
