#pragma once

#include <QByteArray>

#include <array>
#include <vector>

namespace zr::test
{

/// An SLC file read step by step: what the loader's own reading must agree with.
struct PlainSlc {
    using Point = std::array<float, 3>;

    bool hasTable = false; ///< false: the file fails before its layers
    /// In drawing order, normals included; three points and three normals make a triangle.
    std::vector<Point> triples;
    Point min;
    Point max;
};

PlainSlc plainSlc(const QByteArray& file);

/// The triples of chunks.
std::vector<PlainSlc::Point> triplesOf(const QList<QVector<float>*>& chunks);

} // namespace zr::test
