#pragma once

#include <cfenv>

#include <windows.h>

namespace zr
{

/// What a request changes of the thread that it runs on: the object gives the request a state of its own and puts the
/// host's back when it goes.
///
/// - The floating-point environment: a host may round in its own way or have set traps for divisions by zero and the
///   like, which damaged models bring about.
/// - The OpenGL context that is current: drawing a model makes others current.
class HostState
{
public:
    HostState();
    ~HostState();
    HostState(const HostState&) = delete;
    HostState& operator=(const HostState&) = delete;

private:
    std::fenv_t m_x87 = {};
    unsigned m_mxcsr;
    HDC m_drawable = nullptr;
    HGLRC m_context = nullptr;
};

} // namespace zr
