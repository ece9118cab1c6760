#pragma once

#include <QString>

namespace zr
{

/// The file that holds this code, the DLL or the host's executable, as the system spells it; empty when it does not
/// say.
QString modulePath();

/// Its folder, without a trailing "/", in the form that Qt's library paths get.
QString moduleFolder();

} // namespace zr
