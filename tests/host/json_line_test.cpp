// SPDX-License-Identifier: MIT
#include "host/json_line.h"

#include "tests/support/qt_printers.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

const QChar kReplaced(QChar::ReplacementCharacter);

// The object of a line, which has one end, at its end.
QJsonObject parsed(const QString& line)
{
    EXPECT_EQ(line.count('\n'), 1) << line.toStdString();
    EXPECT_TRUE(line.endsWith('\n')) << line.toStdString();
    EXPECT_FALSE(line.contains('\r')) << line.toStdString();
    EXPECT_TRUE(line.isValidUtf16());
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
    return document.object();
}

FileResult result(const QString& picture)
{
    FileResult result;
    result.picture = picture;
    result.size = {400, 300};
    return result;
}

QString base64(const QString& name)
{
    return QString::fromLatin1(QFile::encodeName(name).toBase64());
}

TEST(JsonLineTest, ResultHasAllKeys)
{
    FileResult made = result("/p/a.stl.png");
    made.milliseconds = 12.3456789;
    EXPECT_EQ(parsed(resultLine("m/a.stl", made)), QJsonObject({{"file", "m/a.stl"},
                                                                {"picture", "/p/a.stl.png"},
                                                                {"width", 400},
                                                                {"height", 300},
                                                                {"cached", false},
                                                                {"milliseconds", 12.346}}));
    made.isCached = true;
    made.milliseconds = 0;
    made.note = "nothing can be seen in its thumbnail";
    EXPECT_EQ(parsed(resultLine("m/a.stl", made)), QJsonObject({{"file", "m/a.stl"},
                                                                {"picture", "/p/a.stl.png"},
                                                                {"width", 400},
                                                                {"height", 300},
                                                                {"cached", true},
                                                                {"milliseconds", 0},
                                                                {"note", "nothing can be seen in its thumbnail"}}));
}

// As of a sheet without the cache, whose pictures are nowhere else.
TEST(JsonLineTest, NoPictureIsNull)
{
    const QJsonObject object = parsed(resultLine("a.stl", result(QString())));
    EXPECT_TRUE(object.contains("picture"));
    EXPECT_TRUE(object.value("picture").isNull());
    EXPECT_FALSE(object.contains("pictureBytes"));
}

TEST(JsonLineTest, FailureHasKeyAndReason)
{
    EXPECT_EQ(parsed(failureLine("a.stl", {"noSuchFile", "no such file"})),
              QJsonObject({{"file", "a.stl"}, {"error", "noSuchFile"}, {"reason", "no such file"}}));
}

TEST(JsonLineTest, TextSurvives)
{
    const QString texts[] = {
        "plain.stl",
        "",
        "\"quotes\" and 'apostrophes'",
        "back\\slash\\n",
        "two\nlines\r\n",
        "tab\t, bell\a, escape\x1b[31m, delete\x7f",
        QString("next line ") + QChar(0x85) + QChar(0x2028) + QChar(0x2029),
        QString("a") + QChar(0xFEFF) + "mark", // Qt drops one at the start when it reads
        QString("to the left ") + QChar(0x202E),
        QString::fromUtf8("t\xc3\xbcr \xe4\xb8\xad\xe6\x96\x87 \xf0\x9f\x8e\xb2"),
        QString(QChar(0xFFFD)) + QChar(0xFFFE) + QChar(0xFFFF),
        "</script>{\"file\":1}",
    };
    for (const QString& text : texts) {
        SCOPED_TRACE(text.toStdString());
        FileResult odd = result("/p/" + text + ".png");
        odd.note = text + '.';
        const QJsonObject made = parsed(resultLine(text, odd));
        EXPECT_EQ(made.value("file").toString(), text);
        EXPECT_EQ(made.value("picture").toString(), odd.picture);
        EXPECT_EQ(made.value("note").toString(), odd.note);
        EXPECT_FALSE(made.contains("fileBytes") || made.contains("pictureBytes"));
        const QJsonObject failed = parsed(failureLine(text, {"readerErr", text}));
        EXPECT_EQ(failed.value("file").toString(), text);
        EXPECT_EQ(failed.value("reason").toString(), text);
        EXPECT_FALSE(failed.contains("fileBytes"));
    }
}

TEST(JsonLineTest, NamesThatAreNotTextHaveTheirBytes)
{
    const QString dice = QString::fromUtf8("\xf0\x9f\x8e\xb2");
    const QChar low(0xDC80);
    const QChar high(0xD83C);
    const std::pair<QString, QString> cases[] = {
        {QString(low), QString(kReplaced)},
        {QString("a") + low + low + ".stl", QString("a") + kReplaced + kReplaced + ".stl"},
        {QString("a") + high, QString("a") + kReplaced},
        {QString("a") + high + high + dice.at(1), QString("a") + kReplaced + dice},
        {dice + low + '\n', dice + kReplaced + '\n'},
        {QString(low) + high + 'x', QString(kReplaced) + kReplaced + 'x'},
    };
    for (const auto& [name, shown] : cases) {
        const QJsonObject made = parsed(resultLine(name, result(name + ".png")));
        EXPECT_EQ(made.value("file").toString(), shown);
        EXPECT_EQ(made.value("fileBytes").toString(), base64(name));
        EXPECT_EQ(made.value("picture").toString(), shown + ".png");
        EXPECT_EQ(made.value("pictureBytes").toString(), base64(name + ".png"));
        const QJsonObject failed = parsed(failureLine(name, {"readerErr", "it is damaged"}));
        EXPECT_EQ(failed.value("file").toString(), shown);
        EXPECT_EQ(failed.value("fileBytes").toString(), base64(name));
    }
    const QJsonObject onlyOne = parsed(resultLine("a.stl", result(QString(low))));
    EXPECT_FALSE(onlyOne.contains("fileBytes"));
    EXPECT_TRUE(onlyOne.contains("pictureBytes"));
}

} // namespace
} // namespace zr::test
