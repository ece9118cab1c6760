#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVector>

#include <array>
#include <vector>

namespace zr::test
{

/// Text models read line by line with nothing but Qt: what the loaders' own parsing must agree with to the bit.
struct PlainModel {
    std::vector<std::array<float, 3>> corners; ///< three for each triangle
    std::vector<std::array<float, 3>> points;  ///< what counts towards the bounds
};

/// A line, its terminator included, split into tokens by QString and QRegularExpression.
QStringList plainTokens(const QByteArray& line);

PlainModel plainAsciiStl(const QByteArray& file);
PlainModel plainObj(const QByteArray& file);

/// The corners in chunks of six floats for each vertex.
std::vector<std::array<float, 3>> cornersOf(const QList<QVector<float>*>& chunks);

/// Like memcmp, so that -0 differs from 0 and each NaN equals itself.
bool sameBits(const std::vector<std::array<float, 3>>& a, const std::vector<std::array<float, 3>>& b);

} // namespace zr::test
