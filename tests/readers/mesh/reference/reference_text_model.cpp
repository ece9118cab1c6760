// SPDX-License-Identifier: MIT
#include "tests/readers/mesh/reference/reference_text_model.h"

#include <QBuffer>
#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <limits>

namespace zr::test
{
namespace
{

// Calls use(line) for each line, without the memory of a list.
template <typename Use>
void forEachLine(const QByteArray& file, bool withFirst, Use use)
{
    QBuffer buffer;
    buffer.setData(file);
    buffer.open(QIODevice::ReadOnly);
    if (!withFirst)
        buffer.readLine();
    for (QByteArray line = buffer.readLine(); !line.isEmpty(); line = buffer.readLine())
        use(referenceTokens(line));
}

bool isLine(const QStringList& tokens, const char* keyword)
{
    return tokens.size() >= 4 && tokens[0].compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0;
}

std::array<float, 3> pointOf(const QStringList& tokens)
{
    return {tokens[1].toFloat(), tokens[2].toFloat(), tokens[3].toFloat()};
}

} // namespace

QStringList referenceTokens(const QByteArray& line)
{
    static const QRegularExpression blanks(QStringLiteral("\t* +|\t+ *|\t+ +"));
    return QString(line).split(blanks, Qt::SkipEmptyParts);
}

ReferenceModel referenceAsciiStl(const QByteArray& file)
{
    ReferenceModel model;
    forEachLine(file, false, [&model](const QStringList& tokens) {
        if (isLine(tokens, "vertex"))
            model.corners.push_back(pointOf(tokens));
    });
    model.corners.resize(model.corners.size() / 3 * 3);
    model.points = model.corners;
    return model;
}

ReferenceModel referenceObj(const QByteArray& file)
{
    ReferenceModel model;
    forEachLine(file, true, [&model](const QStringList& tokens) {
        if (isLine(tokens, "v"))
            model.points.push_back(pointOf(tokens));
        if (!isLine(tokens, "f"))
            return;
        for (int i = 1; i <= 3; ++i) {
            const auto index = static_cast<qint32>(static_cast<quint32>(tokens[i].toULongLong()));
            const bool known = index >= 0 && static_cast<std::size_t>(index) < model.points.size();
            model.corners.push_back(known ? model.points[static_cast<std::size_t>(index)] : std::array<float, 3>{});
        }
    });
    return model;
}

std::vector<std::array<float, 3>> cornersOf(const QList<QVector<float>*>& chunks)
{
    std::vector<std::array<float, 3>> corners;
    for (const QVector<float>* chunk : chunks) {
        for (int i = 0; i + 6 <= chunk->size(); i += 6)
            corners.push_back({chunk->at(i), chunk->at(i + 1), chunk->at(i + 2)});
    }
    return corners;
}

std::pair<std::array<float, 3>, std::array<float, 3>> boundsOf(const std::vector<std::array<float, 3>>& points)
{
    std::array<float, 3> min{}, max{};
    min.fill(std::numeric_limits<float>::max());
    max.fill(std::numeric_limits<float>::lowest());
    for (const auto& point : points) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            min[axis] = std::min(min[axis], point[axis]);
            max[axis] = std::max(max[axis], point[axis]);
        }
    }
    return {min, max};
}

bool sameBits(const std::vector<std::array<float, 3>>& a, const std::vector<std::array<float, 3>>& b)
{
    static_assert(sizeof(a[0]) == 3 * sizeof(float));
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(a[0])) == 0);
}

} // namespace zr::test
