// SPDX-License-Identifier: MIT
#include "host/json_line.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace zr
{
namespace
{

QString withReplacements(QString text)
{
    for (int i = 0; i < text.size(); ++i) {
        const bool isPair = text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair)
            ++i;
        else if (text.at(i).isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

void insertName(QJsonObject& object, const QString& key, const QString& name)
{
    object.insert(key, withReplacements(name));
    if (!name.isValidUtf16())
        object.insert(key + QLatin1String("Bytes"), QString::fromLatin1(QFile::encodeName(name).toBase64()));
}

QString asLine(const QJsonObject& object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + QLatin1Char('\n');
}

} // namespace

QString resultLine(const QString& file, const FileResult& result)
{
    QJsonObject object{
        {QStringLiteral("width"), result.size.width()},
        {QStringLiteral("height"), result.size.height()},
        {QStringLiteral("cached"), result.isCached},
        {QStringLiteral("milliseconds"), std::round(result.milliseconds * 1000) / 1000},
    };
    insertName(object, QStringLiteral("file"), file);
    if (result.picture.isEmpty())
        object.insert(QStringLiteral("picture"), QJsonValue());
    else
        insertName(object, QStringLiteral("picture"), result.picture);
    if (!result.note.isEmpty())
        object.insert(QStringLiteral("note"), result.note);
    return asLine(object);
}

QString failureLine(const QString& file, const Failure& failure)
{
    QJsonObject object{
        {QStringLiteral("error"), failure.key},
        {QStringLiteral("reason"), failure.reason},
    };
    insertName(object, QStringLiteral("file"), file);
    return asLine(object);
}

} // namespace zr
