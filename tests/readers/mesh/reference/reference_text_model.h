// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>
#include <QVector>

#include <array>
#include <utility>
#include <vector>

namespace zr::test
{

/// Text models read line by line with nothing but Qt: what the loaders' own parsing must agree with to the bit.
struct ReferenceModel {
    std::vector<std::array<float, 3>> corners; ///< three for each triangle
    std::vector<std::array<float, 3>> points;  ///< what counts towards the bounds
};

/// A line, its terminator included, split into tokens by QString and QRegularExpression.
QStringList referenceTokens(const QByteArray& line);

ReferenceModel referenceAsciiStl(const QByteArray& file);
ReferenceModel referenceObj(const QByteArray& file);

/// The corners in chunks of six floats for each vertex.
std::vector<std::array<float, 3>> cornersOf(const QList<QVector<float>*>& chunks);

/// The min and the max corner of the box around the points, in which a NaN does not count.
std::pair<std::array<float, 3>, std::array<float, 3>> boundsOf(const std::vector<std::array<float, 3>>& points);

/// Like memcmp, so that -0 differs from 0 and each NaN equals itself.
bool sameBits(const std::vector<std::array<float, 3>>& a, const std::vector<std::array<float, 3>>& b);

} // namespace zr::test
