// SPDX-License-Identifier: MIT
#include "shell/host_state.h"

#include <xmmintrin.h>

namespace zr
{
namespace
{

// What a thread of Windows x64 starts with: all exceptions masked, round to nearest, no flushing of denormals.
constexpr unsigned kDefaultMxcsr = 0x1F80;

// A function of the system's OpenGL; null while that is not loaded, and then no context is current either.
template <typename Function>
Function* glFunction(const char* name)
{
    auto* const library = GetModuleHandleW(L"opengl32.dll");
    return library ? reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name))) : nullptr;
}

HGLRC currentContext()
{
    auto* const get = glFunction<decltype(wglGetCurrentContext)>("wglGetCurrentContext");
    return get ? get() : nullptr;
}

HDC currentDrawable()
{
    auto* const get = glFunction<decltype(wglGetCurrentDC)>("wglGetCurrentDC");
    return get ? get() : nullptr;
}

} // namespace

HostState::HostState() : m_mxcsr(_mm_getcsr()), m_drawable(currentDrawable()), m_context(currentContext())
{
    std::feholdexcept(&m_x87);
    std::fesetround(FE_TONEAREST);
    _mm_setcsr(kDefaultMxcsr);
}

HostState::~HostState()
{
    if (currentContext() != m_context || currentDrawable() != m_drawable)
        glFunction<decltype(wglMakeCurrent)>("wglMakeCurrent")(m_drawable, m_context);
    // The C library's functions for the environment do not restore SSE's register.
    std::fesetenv(&m_x87);
    _mm_setcsr(m_mxcsr);
}

} // namespace zr
