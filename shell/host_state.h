// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <cfenv>

#include <windows.h>

namespace zr
{

/// The parts of a thread's state that a request changes: the constructor gives the request its own, and the destructor
/// restores the host's.
///
/// - The floating-point environment: a host may round in its own way or have set traps for divisions by zero and the
///   like, which damaged models cause.
/// - The current OpenGL context: drawing a model makes others current.
class HostState
{
public:
    HostState();
    ~HostState();
    Q_DISABLE_COPY(HostState)

private:
    std::fenv_t m_x87 = {};
    unsigned m_mxcsr;
    HDC m_drawable = nullptr;
    HGLRC m_context = nullptr;
};

} // namespace zr
