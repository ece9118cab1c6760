// SPDX-License-Identifier: MIT
#include "tests/readers/mesh/reference/reference_standard_obj.h"

#include <QRegularExpression>

namespace zr::test
{
namespace
{

using Point = std::array<float, 3>;

// The line up to a comment or a zero byte, without carriage returns; `isWhole` when nothing was cut off.
QByteArray textOf(QByteArray line, bool& isWhole)
{
    line.replace('\r', "");
    int end = line.indexOf('#');
    const int zero = line.indexOf('\0');
    if (zero >= 0 && (end < 0 || zero < end))
        end = zero;
    isWhole = end < 0;
    return line.left(isWhole ? line.size() : end);
}

QList<QByteArray> tokensOf(QByteArray text)
{
    QList<QByteArray> tokens = text.replace('\t', ' ').split(' ');
    tokens.removeAll(QByteArray());
    return tokens;
}

bool isKeyword(const QList<QByteArray>& tokens, char keyword)
{
    return !tokens.isEmpty() && tokens[0].toLower() == QByteArray(1, keyword);
}

// Whether the statement with these tokens goes on after a backslash.
bool mayGoOn(const QList<QByteArray>& tokens)
{
    return isKeyword(tokens, 'f') || (isKeyword(tokens, 'v') && tokens.size() < 4);
}

// All statements of the file, split into their tokens.
QList<QList<QByteArray>> statementsOf(QByteArray file)
{
    if (file.startsWith("\xEF\xBB\xBF"))
        file.remove(0, 3);
    QList<QList<QByteArray>> statements;
    QList<QByteArray> tokens;
    const QList<QByteArray> lines = file.split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        bool isWhole = false;
        QByteArray text = textOf(lines[i], isWhole);
        const bool hasBackslash = isWhole && text.endsWith('\\') && i + 1 < lines.size();
        if (hasBackslash)
            text.chop(1);
        tokens += tokensOf(text);
        if (hasBackslash && mayGoOn(tokens))
            continue;
        statements += tokens;
        tokens.clear();
    }
    return statements;
}

Point pointOf(const QList<QByteArray>& tokens)
{
    Point point{};
    for (int i = 1; i < tokens.size() && i <= 3; ++i)
        point[static_cast<std::size_t>(i) - 1] = QString::fromUtf8(' ' + tokens[i]).toFloat();
    return point;
}

// The place of a corner's position among `count`; -1 when there is none.
qint64 placeOf(const QByteArray& corner, std::size_t count)
{
    static const QRegularExpression form(QStringLiteral("^([+-]?)([0-9]+)(/.*)?$"),
                                         QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(corner));
    bool isNumber = false;
    const quint64 number = match.captured(2).toULongLong(&isNumber);
    if (!isNumber || number == 0 || number > count)
        return -1;
    return static_cast<qint64>(match.captured(1) == QLatin1String("-") ? count - number : number - 1);
}

void addFace(const QList<QByteArray>& tokens, const std::vector<Point>& positions, ReferenceModel& model)
{
    std::vector<Point> corners;
    for (int i = 1; i < tokens.size(); ++i) {
        const qint64 place = placeOf(tokens[i], positions.size());
        if (place < 0)
            return;
        corners.push_back(positions[static_cast<std::size_t>(place)]);
    }
    for (std::size_t i = 2; i < corners.size(); ++i)
        model.corners.insert(model.corners.end(), {corners[0], corners[i - 1], corners[i]});
}

} // namespace

ReferenceModel referenceStandardObj(const QByteArray& file)
{
    ReferenceModel model;
    std::vector<Point> positions;
    const QList<QList<QByteArray>> statements = statementsOf(file);
    for (const QList<QByteArray>& tokens : statements) {
        if (isKeyword(tokens, 'v'))
            positions.push_back(pointOf(tokens));
        else if (isKeyword(tokens, 'f'))
            addFace(tokens, positions, model);
    }
    model.points = model.corners;
    return model;
}

} // namespace zr::test
