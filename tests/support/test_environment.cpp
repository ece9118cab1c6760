// SPDX-License-Identifier: MIT
#include "tests/support/test_environment.h"

#include <QTemporaryDir>

namespace zr::test
{

void prepareTestEnvironment()
{
#ifndef Q_OS_WIN
    static const QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
}

} // namespace zr::test
