// SPDX-License-Identifier: MIT
#include "tests/readers/mesh/reference/reference_slc.h"

#include <QDataStream>
#include <QIODevice>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zr::test
{
namespace
{

using Point = ReferenceSlc::Point;

class Reader
{
public:
    explicit Reader(const QByteArray& file) : m_file(file) {}

    ReferenceSlc read()
    {
        m_slc.min.fill(std::numeric_limits<float>::max());
        m_slc.max.fill(std::numeric_limits<float>::lowest());
        findTable();
        readTable();
        if (m_slc.hasTable)
            readLayers();
        return m_slc;
    }

private:
    // As many of the bytes as there are.
    QByteArray take(qint64 bytes)
    {
        const QByteArray taken = m_file.mid(static_cast<int>(std::min<qint64>(m_position, m_file.size())),
                                            static_cast<int>(std::min<qint64>(bytes, m_file.size())));
        m_position += taken.size();
        return taken;
    }

    static float floatAt(const QByteArray& bytes, int offset)
    {
        QDataStream stream(bytes.mid(offset, 4));
        stream.setByteOrder(QDataStream::LittleEndian);
        stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
        float number = 0;
        stream >> number;
        return number;
    }

    static quint32 countAt(const QByteArray& bytes, int offset)
    {
        QDataStream stream(bytes.mid(offset, 4));
        stream.setByteOrder(QDataStream::LittleEndian);
        quint32 number = 0;
        stream >> number;
        return number;
    }

    void findTable()
    {
        for (QByteArray text = take(1024); !text.isEmpty(); text = take(1024)) {
            const int zero = text.indexOf('\0');
            const int end = text.left(zero < 0 ? text.size() : zero).indexOf("\r\n\x1a");
            if (end >= 0) {
                m_position = m_position - text.size() + end + 3 + 256;
                return;
            }
            if (m_position > 2048)
                return;
        }
    }

    void readTable()
    {
        const QByteArray size = take(1);
        const int entries = size.isEmpty() ? 0 : static_cast<unsigned char>(size[0]);
        if (entries == 0 || m_position >= 2307)
            return;
        m_table = take(qint64{entries} * 16);
        m_slc.hasTable = m_table.size() == entries * 16;
    }

    void readLayers()
    {
        while (true) {
            const QByteArray head = take(8);
            if (head.size() < 8 || countAt(head, 4) == 0xFFFFFFFF)
                return;
            for (quint32 i = 0; i < countAt(head, 4) && m_position < m_file.size(); ++i)
                readBoundary(floatAt(head, 0));
        }
    }

    void readBoundary(float z)
    {
        const QByteArray head = take(8);
        if (head.size() < 8)
            return;
        const qint64 bytes = (qint64{countAt(head, 0)} * 2 & 0xFFFFFFFF) * 4;
        const QByteArray points = take(bytes);
        if (points.size() < bytes)
            return;
        const float top = z + thicknessAt(z);
        for (int i = 8; i + 8 <= points.size(); i += 8) {
            const float x0 = floatAt(points, i - 8), y0 = floatAt(points, i - 4);
            const float x1 = floatAt(points, i), y1 = floatAt(points, i + 4);
            const Point a{x1, y1, z}, b{x0, y0, z}, c{x1, y1, top}, d{x0, y0, top};
            addTriangle(c, b, a);
            addTriangle(d, b, a);
        }
    }

    float thicknessAt(float z) const
    {
        float thickness = 0.1F;
        for (int entry = 0; entry < m_table.size(); entry += 16) {
            if (z >= floatAt(m_table, entry))
                thickness = floatAt(m_table, entry + 4);
            else if (floatAt(m_table, entry) > z)
                break;
        }
        return thickness;
    }

    void addTriangle(const Point& a, const Point& b, const Point& c)
    {
        const Point u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
        const Point v{c[0] - b[0], c[1] - b[1], c[2] - b[2]};
        Point n{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
        // Not std::hypot(), to which an infinite side is worth more than one that is not a number.
        const double length = std::sqrt(double{n[0]} * n[0] + double{n[1]} * n[1] + double{n[2]} * n[2]);
        for (float& component : n)
            component = length == 0 ? 0 : static_cast<float>(component / length);
        for (const Point& triple : {a, n, b, n, c, n})
            add(triple);
    }

    void add(const Point& triple)
    {
        m_slc.triples.push_back(triple);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (triple[axis] > m_slc.max[axis])
                m_slc.max[axis] = triple[axis];
            if (triple[axis] < m_slc.min[axis])
                m_slc.min[axis] = triple[axis];
        }
    }

    QByteArray m_file;
    QByteArray m_table;
    qint64 m_position = 0;
    ReferenceSlc m_slc;
};

} // namespace

ReferenceSlc referenceSlc(const QByteArray& file)
{
    return Reader(file).read();
}

std::vector<Point> triplesOf(const QList<QVector<float>*>& chunks)
{
    std::vector<Point> triples;
    for (const QVector<float>* chunk : chunks) {
        for (int i = 0; i + 3 <= chunk->size(); i += 3)
            triples.push_back({chunk->at(i), chunk->at(i + 1), chunk->at(i + 2)});
    }
    return triples;
}

} // namespace zr::test
