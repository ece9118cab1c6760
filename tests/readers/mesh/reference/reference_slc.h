// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <array>
#include <vector>

namespace zr::test
{

/// An SLC file read step by step: what the loader's own reading must agree with.
struct ReferenceSlc {
    using Point = std::array<float, 3>;

    bool hasTable = false; ///< false: the file fails before its layers
    /// In drawing order, normals included; three points and three normals make a triangle.
    std::vector<Point> triples;
    Point min;
    Point max;
};

ReferenceSlc referenceSlc(const QByteArray& file);

/// The triples of chunks.
std::vector<ReferenceSlc::Point> triplesOf(const QList<QVector<float>*>& chunks);

} // namespace zr::test
