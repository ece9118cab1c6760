// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

// Qt's application object, of which a process has one at most: each of these makes it only if there is none. It is
// never destroyed, see leave().

/// One that needs no display, for plug-ins, event loops and other processes.
void makePlainApplication();

/// One with which Qt can draw text. A server in a DLL has its own.
void makeDrawingApplication();

} // namespace zr
