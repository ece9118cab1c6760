// SPDX-License-Identifier: MIT
#include "render/shader_source.h"

namespace zr
{
namespace
{

constexpr int kLastGlslWithPrecisionBlock = 400;

void replaceVersionLine(const GlslInfo& glsl, QString& text)
{
    const QString versionLine = QStringLiteral("#version 130");
    if (glsl.glslVersion.isEmpty()) {
        text.replace(versionLine, QString());
        return;
    }
    if (!glsl.modernSyntax && glsl.gpuShader4) {
        text.replace(versionLine,
                     QStringLiteral("#version %1\n#extension GL_EXT_gpu_shader4:require\n").arg(glsl.glslVersion));
        return;
    }
    text.replace(versionLine, QStringLiteral("#version %1").arg(glsl.glslVersion));
    // The geometry pipeline's vertex text has no blank after GL_ES and keeps its block; desktop OpenGL skips it.
    if (glsl.glslVersion.toInt() > kLastGlslWithPrecisionBlock)
        text.replace(QStringLiteral("#ifdef GL_ES \nprecision mediump float;\n#endif\n"), QString());
}

void useOldVertexSyntax(const GlslInfo& glsl, QString& text)
{
    text.replace(QStringLiteral("in "), QStringLiteral("attribute "));
    text.replace(QStringLiteral("out "), QStringLiteral("varying "));
    if (!glsl.gpuShader4)
        text.replace(QStringLiteral("gl_VertexID"), QStringLiteral("0.0"));
}

void useOldFragmentSyntax(QString& text)
{
    text.replace(QStringLiteral("in "), QStringLiteral("varying "));
    text.replace(QStringLiteral("out highp vec4 fragColor"), QStringLiteral("//out highp vec4 fragColor"));
    text.replace(QStringLiteral("out vec4 fragColor"), QStringLiteral("//out vec4 fragColor"));
    text.replace(QStringLiteral("fragColor"), QStringLiteral("gl_FragColor"));
}

} // namespace

QString adaptShaderSource(const GlslInfo& glsl, QString text, bool isVertex)
{
    replaceVersionLine(glsl, text);
    if (!glsl.modernSyntax) {
        if (isVertex)
            useOldVertexSyntax(glsl, text);
        else
            useOldFragmentSyntax(text);
    }
    return text;
}

QString prepareShaderSource(const GlslInfo& glsl, const char* text, bool isVertex)
{
    const QByteArray bytes = adaptShaderSource(glsl, QString::fromLatin1(text), isVertex).toLatin1();
    return QString::fromLatin1(bytes.constData());
}

} // namespace zr
