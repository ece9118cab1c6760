// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace zr
{

/// Holds one count of the module's lock count, the sum of live objects, references to the class factory and server
/// locks. While it is not zero, COM keeps the DLL loaded.
class ModuleLock
{
public:
    ModuleLock() { add(); }
    ~ModuleLock() { remove(); }
    Q_DISABLE_COPY(ModuleLock)

    static void add();
    static void remove();
    static bool isHeld();
};

/// Keeps the DLL loaded until the process ends, whatever DllCanUnloadNow answers: once Qt's application object exists,
/// the process calls into Qt's libraries by itself, and the DLL's imports are what keeps those in memory.
void keepModuleLoaded();

} // namespace zr
