// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr
{

/// What the OpenGL of this machine understands, found by the renderer's probe. The defaults are the minimum that
/// the renderer works with.
struct GlslInfo {
    bool modernSyntax = true;                         ///< GLSL 1.30 or later ("in" and "out"), hence a core profile
    bool gpuShader4 = false;                          ///< GL_EXT_gpu_shader4 can be required
    int versionCode = 0x20;                           ///< OpenGL version: major * 16 + minor
    QString glslVersion = QString::fromLatin1("110"); ///< what comes after "#version"; empty for no version line
};

/// Rewrites a text of GLSL 1.30 for the level described by `glsl`. The geometry text counts as a vertex text.
/// The rewriting is by exact pieces of text, so it fits the built-in texts only.
QString adaptShaderSource(const GlslInfo& glsl, QString text, bool isVertex);

/// The adapted text as the compiler gets it: Latin-1, up to the first zero byte. May be called from any thread.
QString prepareShaderSource(const GlslInfo& glsl, const char* text, bool isVertex);

} // namespace zr
