// SPDX-License-Identifier: MIT
#pragma once

#include <QRegularExpression>
#include <QString>

#include <gtest/gtest.h>

namespace zr::test
{

/// Expects the reason to contain no programmers' terms: names from the code, error keys, log texts.
inline void expectPlainWords(const QString& reason)
{
    static const QRegularExpression internals(
        QStringLiteral("_|[a-z][A-Z]|[eE]rrr?\\b|\\bless\\b|\\bthrow\\b|::|\\bfaild\\b"));
    const QString text = QString(reason).replace(QLatin1String("OpenGL"), QLatin1String("OPENGL"));
    EXPECT_FALSE(reason.isEmpty());
    EXPECT_FALSE(text.contains(internals)) << reason.toStdString();
    EXPECT_FALSE(text.contains(QLatin1Char('\n'))) << reason.toStdString();
}

} // namespace zr::test
