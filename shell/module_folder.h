#pragma once

#include <QString>

namespace zr
{

/// The folder of the module that holds this code, the DLL or the host's executable, without a trailing "/".
QString moduleFolder();

} // namespace zr
