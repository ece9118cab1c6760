// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace zr::test
{

/// The number in the environment variable, else that of the short run. tools/reliability sets those of long runs.
inline int setting(const char* variable, int shortRun)
{
    bool isSet = false;
    const int value = qEnvironmentVariableIntValue(variable, &isSet);
    return isSet ? value : shortRun;
}

} // namespace zr::test
