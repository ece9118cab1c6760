// SPDX-License-Identifier: MIT
#include "host/check/installation.h"

namespace zr
{

Findings checkInstallation()
{
    return {};
}

} // namespace zr
