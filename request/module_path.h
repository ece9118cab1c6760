// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// The path of the file with this code, the DLL or the host's executable, as the system spells it; empty when unknown.
QString modulePath();

/// Its folder, without a trailing "/", in the form that Qt's library paths get.
QString moduleFolder();

} // namespace zr
