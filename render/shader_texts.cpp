// SPDX-License-Identifier: MIT
#include "render/shader_texts.h"

namespace zr
{
namespace
{

// The lines are written out one by one so that the blanks at their ends and the tabs can be seen: the adaptation to a
// GLSL level replaces exact pieces of these texts, and Qt's program cache is keyed by every byte of them.

constexpr char kPlainVertexText[] = "#version 130\n"
                                    "#ifdef GL_ES \n"
                                    "precision mediump float;\n"
                                    "#endif\n"
                                    "in vec4 vertex;\n"
                                    "in vec3 normal;\n"
                                    "out vec3 vert;\n"
                                    "out vec3 vertNormal;\n"
                                    "uniform mat4 mvpMatrix;\n"
                                    "uniform mat4 modelMatrix;\n"
                                    "uniform mat3 normalMatrix;\n"
                                    "void main() {\n"
                                    "   vert = vertex.xyz;\n"
                                    "   vertNormal = normalMatrix * normal;\n"
                                    "   gl_Position = mvpMatrix * modelMatrix * vertex;\n"
                                    "}\n";

constexpr char kGeometryVertexText[] = "#version 130\n"
                                       "#ifdef GL_ES\n"
                                       "precision mediump float;\n"
                                       "#endif\n"
                                       "in vec4 vertex;\n"
                                       "out VS_OUT {\n"
                                       "   vec3 vert;\n"
                                       "   vec4 position;\n"
                                       "} vs_out;\n"
                                       "uniform mat4 mvpMatrix;\n"
                                       "uniform mat4 modelMatrix;\n"
                                       "void main() {\n"
                                       "   vs_out.vert = vertex.xyz;\n"
                                       "   gl_Position = mvpMatrix * modelMatrix * vertex;\n"
                                       "   vs_out.position = mvpMatrix * modelMatrix * vertex;\n"
                                       "}\n";

constexpr char kGeometryText[] = "#version 130\n"
                                 "#ifdef GL_ES \n"
                                 "precision mediump float;\n"
                                 "#endif\n"
                                 "layout (triangles) in;\n"
                                 "layout (triangle_strip, max_vertices = 3) out;\n"
                                 "in VS_OUT {\n"
                                 "   vec3 vert;\n"
                                 "   vec4 position;\n"
                                 "} vs_in[];\n"
                                 "out vec3 vert;\n"
                                 "out vec3 vertNormal;\n"
                                 "uniform mat3 normalMatrix;\n"
                                 "void main() {\n"
                                 "\tvert = vs_in[0].vert;\n"
                                 "\tvec3 a = vs_in[1].vert - vs_in[0].vert;\n"
                                 "\tvec3 b = vs_in[2].vert - vs_in[1].vert;\n"
                                 "\tvertNormal = normalMatrix * normalize(cross(a, b));\n"
                                 "\tvert = vs_in[0].vert;\n"
                                 "\tgl_Position = vs_in[0].position;\n"
                                 "\tEmitVertex();\n"
                                 "\tvert = vs_in[1].vert;\n"
                                 "\tgl_Position = vs_in[1].position;\n"
                                 "\tEmitVertex();\n"
                                 "\tvert = vs_in[2].vert;\n"
                                 "\tgl_Position = vs_in[2].position;\n"
                                 "\tEmitVertex();\n"
                                 "\tEndPrimitive();\n"
                                 "}\n";

constexpr char kFragmentText[] = "#version 130\n"
                                 "#ifdef GL_ES \n"
                                 "precision mediump float;\n"
                                 "#endif\n"
                                 "in highp vec3 vert;\n"
                                 "in highp vec3 vertNormal;\n"
                                 "out highp vec4 fragColor;\n"
                                 "highp vec3 specular = vec3(0.0,0.0,0.0);\n"
                                 "uniform highp vec3 lightPos;\n"
                                 "void main() {\n"
                                 "   highp vec3 L = normalize(lightPos - vert);\n"
                                 "   highp float NL = max(dot(normalize(vertNormal), L), 0.0);\n"
                                 "   highp vec3 color = vec3(40.0/255.0, 164.0/255.0, 230.0/255.0);\n"
                                 "   if(dot(vertNormal,L) < 0.0) {\n"
                                 "      specular = vec3(0.0,0.0,0.0);\n"
                                 "   }else {\n"
                                 "       vec3 reflectDirection = reflect(-L,vertNormal);\n"
                                 "       specular = vec3(0.2,0.2,0.2) * pow(max(0.0,dot(reflectDirection,L)),10.0);\n"
                                 "   }\n"
                                 "   highp vec3 col = clamp(color * 0.3 + color * 0.7 * NL, 0.0, 1.0);\n"
                                 "   fragColor = vec4(col + specular, 1.0);\n"
                                 "}\n";

} // namespace

const ShaderTexts& builtInShaderTexts()
{
    static constexpr ShaderTexts texts = {kPlainVertexText, kGeometryVertexText, kGeometryText, kFragmentText};
    return texts;
}

} // namespace zr
