#pragma once

#include <QtGlobal>

namespace zr::test
{

/// The number that the environment variable sets, else the short run's. tools/reliability sets the long runs' numbers.
inline int setting(const char* variable, int shortRun)
{
    bool isSet = false;
    const int value = qEnvironmentVariableIntValue(variable, &isSet);
    return isSet ? value : shortRun;
}

} // namespace zr::test
