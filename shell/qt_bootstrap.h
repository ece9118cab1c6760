#pragma once

namespace zr
{

/// Lets Qt find its plug-ins beside this module and makes the process's application object when there is none.
/// To be called at the start of every request; logs both steps. False, before the second one, when Qt cannot start
/// here.
bool startQt();

} // namespace zr
