#pragma once

namespace zr
{

/// Whether Qt will find a platform plug-in. Without one it ends the process, which is the file browser, as soon as an
/// application object is made: a DLL that was copied without its folders must not do that.
bool platformPluginExists();

} // namespace zr
