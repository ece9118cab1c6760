// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>

#include <ostream>

// GoogleTest finds these by argument-dependent lookup, so they live in the global namespace like Qt's own types.

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* out)
{
    *out << "[\n";
    for (const QString& text : texts)
        *out << "  \"" << text.toStdString() << "\"\n";
    *out << ']';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* out)
{
    *out << bytes.size() << " bytes " << bytes.left(64).toHex(' ').toStdString();
}

inline void PrintTo(const QImage& image, std::ostream* out)
{
    *out << image.width() << " x " << image.height() << " image, format " << image.format();
}
