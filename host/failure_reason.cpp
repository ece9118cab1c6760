#include "host/failure_reason.h"

#include "core/data_location.h"
#include "host/platform.h"

#include <QFileInfo>
#include <QLatin1String>

namespace zr
{
namespace
{

// What the log says in its own short words, in the users'. The first row that is found in any message wins, so the
// cause of a failure stands before what follows from it.
struct Explanation {
    const char* message; ///< the message, or its beginning where it ends with "*"
    const char* sentence;
};

constexpr Explanation kExplanations[] = {
    {"60  throw ", "this kind of file is not supported"},
    {"110 database no open", "the cache database cannot be opened"},
    {"106 database create faild", "the cache database cannot be used"},
    {"45 fileCanNotOpen", "the file cannot be opened"},
    {"43 fileCanNotOpen", "the file cannot be opened"},
    {"45 fileIsCanNoRender", "the file is too large for the free memory"},
    {"45 memOut", "the machine is short of memory"},
    {"45 memOutErr", "the machine is short of memory"},
    {"45 modelSizeIsErr", "the model has no extent, or is larger than 10000 units"},
    {"45 fileIsErr", "the model has no extent, or is larger than 10000 units"},
    {"45 fileHeadErr", "the file's header is damaged"},
    {"45 fileReadLess", "the file ends too early"},
    {"170  throw size*", "the model has no extent, or is larger than 10000 units"},
    {"184 *", "there is nothing to show: the model is empty, damaged or out of range"},
    {"115 Builder*", "OpenGL could not be set up"},
    {"69  throw ", "the picture could not be saved in the cache"},
};

bool matches(const QString& message, QLatin1String pattern)
{
    if (pattern.endsWith(QLatin1Char('*')))
        return message.startsWith(pattern.chopped(1));
    return message == pattern;
}

QString explain(const QStringList& messages)
{
    for (const Explanation& row : kExplanations) {
        for (const QString& message : messages) {
            if (matches(message, QLatin1String(row.message)))
                return QString::fromLatin1(row.sentence);
        }
    }
    return {};
}

// A reader's own words: the line before its first " throw " line, without the path that follows them.
QString readersWords(const QStringList& messages)
{
    for (int i = 1; i < messages.size(); ++i) {
        const QString& before = messages.at(i - 1);
        if (messages.at(i).endsWith(QLatin1String("  throw ")) && !before.endsWith(QLatin1String("  throw "))) {
            const QString words = before.section(QLatin1Char(' '), 1).section(QLatin1Char('\n'), 0, 0).trimmed();
            if (!words.isEmpty() && words != QLatin1String("app after"))
                return words;
        }
    }
    return {};
}

bool mentionsMissingOpenGl(const QStringList& messages)
{
    return messages.contains(QStringLiteral("200 opengl version is not valid")) ||
           messages.contains(QStringLiteral("208 opengl surface is not valid"));
}

} // namespace

QString failureReason(const QString& path, const QStringList& messages)
{
    const QFileInfo file(path);
    if (!file.exists())
        return QStringLiteral("no such file");
    if (file.isDir())
        return QStringLiteral("it is a folder (--recursive makes thumbnails of the files below it)");
    if (!file.isFile())
        return QStringLiteral("it is not a regular file");
    if (mentionsMissingOpenGl(messages) && openGlLacksDisplay())
        return QString::fromLatin1(kOpenGlNeedsDisplay);
    const QString sentence = explain(messages);
    if (!sentence.isEmpty())
        return sentence;
    const QString words = readersWords(messages);
    if (!words.isEmpty())
        return words;
    return QStringLiteral("no picture came back; see ") + defaultLogPath();
}

} // namespace zr
