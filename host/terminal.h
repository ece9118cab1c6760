#pragma once

namespace zr
{

/// Lets stderr take the control sequences by which a line can be written over, until endControlSequences(). False when
/// it is no terminal that does.
bool startControlSequences();
void endControlSequences();

/// Cells of a line of the terminal on stderr, at this moment.
int terminalColumns();

} // namespace zr
