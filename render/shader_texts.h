// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

/// The GLSL texts of one renderer, 7-bit ASCII, each written for GLSL 1.30; see adaptShaderSource for other levels.
struct ShaderTexts {
    const char* plainVertex;    ///< plain pipeline: position and normal per vertex
    const char* geometryVertex; ///< geometry-shader pipeline: position only
    const char* geometry;       ///< geometry-shader pipeline: one flat normal per triangle
    const char* fragment;       ///< both pipelines
};

/// The texts that give the product's pictures their look.
const ShaderTexts& builtInShaderTexts();

} // namespace zr
