// SPDX-License-Identifier: MIT
#include "bench/mesh_models.h"

#include <QFile>
#include <QtEndian>

#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace zr::bench
{
namespace
{

constexpr double kTurn = 6.283185307179586;
constexpr int kWriteBytes = 1 << 20;

using Vertex = std::array<float, 3>;

/// A grid of `side` by `side` squares around the torus.
class Torus
{
public:
    explicit Torus(int triangles) : m_side(static_cast<int>(std::lround(std::sqrt(triangles / 2.0)))) {}

    int side() const { return m_side; }
    int triangles() const { return 2 * m_side * m_side; }

    Vertex vertex(int i, int j) const
    {
        const double u = kTurn * (i % m_side) / m_side;
        const double v = kTurn * (j % m_side) / m_side;
        const double r = 10 + 1.5 * std::sin(7 * u) * std::cos(5 * v);
        const double out = 30 + r * std::cos(v);
        return {static_cast<float>(out * std::cos(u)), static_cast<float>(out * std::sin(u)),
                static_cast<float>(r * std::sin(v) + 12)};
    }

    /// Calls use(a, b, c) for each triangle.
    template <typename Use>
    void forEachTriangle(Use use) const
    {
        for (int i = 0; i < m_side; ++i) {
            for (int j = 0; j < m_side; ++j) {
                const Vertex a = vertex(i, j), b = vertex(i + 1, j), c = vertex(i + 1, j + 1), d = vertex(i, j + 1);
                use(a, b, c);
                use(a, c, d);
            }
        }
    }

private:
    int m_side;
};

Vertex normalOf(const Vertex& a, const Vertex& b, const Vertex& c)
{
    const Vertex u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const Vertex v{c[0] - b[0], c[1] - b[1], c[2] - b[2]};
    const Vertex n{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
    const float length = std::hypot(n[0], n[1], n[2]);
    return {n[0] / length, n[1] / length, n[2] / length};
}

/// A file that is written in large pieces.
class Output
{
public:
    explicit Output(const QString& path) : m_file(path)
    {
        m_ok = m_file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        m_bytes.reserve(2 * kWriteBytes);
    }

    void bytes(const char* data, std::size_t size)
    {
        m_bytes.append(data, static_cast<int>(size));
        if (m_bytes.size() >= kWriteBytes)
            flush();
    }

    __attribute__((format(printf, 2, 3))) void text(const char* format, ...)
    {
        std::array<char, 256> line{};
        std::va_list values;
        va_start(values, format);
        const int length = std::vsnprintf(line.data(), line.size(), format, values);
        va_end(values);
        bytes(line.data(), static_cast<std::size_t>(length));
    }

    template <typename Number>
    void number(Number value)
    {
        value = qToLittleEndian(value);
        bytes(reinterpret_cast<const char*>(&value), sizeof(value));
    }

    void vertex(const Vertex& v)
    {
        for (const float coordinate : v)
            number(coordinate);
    }

    bool finish()
    {
        flush();
        return m_ok;
    }

private:
    void flush()
    {
        m_ok = m_ok && m_file.write(m_bytes) == m_bytes.size();
        m_bytes.resize(0);
    }

    QFile m_file;
    QByteArray m_bytes;
    bool m_ok;
};

void writeBinaryStlHeader(Output& out, int triangles)
{
    out.bytes(QByteArray(80, ' ').constData(), 80);
    out.number(static_cast<quint32>(triangles));
}

void writeBinaryStlTriangle(Output& out, const Vertex& a, const Vertex& b, const Vertex& c)
{
    for (const Vertex& v : {normalOf(a, b, c), a, b, c})
        out.vertex(v);
    out.number(quint16{0});
}

} // namespace

int writeOneTriangle(const QString& path)
{
    Output out(path);
    writeBinaryStlHeader(out, 1);
    writeBinaryStlTriangle(out, {10, 0, 0}, {0, 0, 10}, {0, 10, 0});
    return out.finish() ? 1 : 0;
}

int writeBinaryStl(const QString& path, int triangles)
{
    const Torus torus(triangles);
    Output out(path);
    writeBinaryStlHeader(out, torus.triangles());
    torus.forEachTriangle(
        [&out](const Vertex& a, const Vertex& b, const Vertex& c) { writeBinaryStlTriangle(out, a, b, c); });
    return out.finish() ? torus.triangles() : 0;
}

int writeAsciiStl(const QString& path, int triangles)
{
    const Torus torus(triangles);
    Output out(path);
    out.text("solid torus\n");
    torus.forEachTriangle([&out](const Vertex& a, const Vertex& b, const Vertex& c) {
        const Vertex n = normalOf(a, b, c);
        out.text("facet normal %e %e %e\n  outer loop\n", double{n[0]}, double{n[1]}, double{n[2]});
        for (const Vertex& v : {a, b, c})
            out.text("    vertex %e %e %e\n", double{v[0]}, double{v[1]}, double{v[2]});
        out.text("  endloop\nendfacet\n");
    });
    out.text("endsolid torus\n");
    return out.finish() ? torus.triangles() : 0;
}

namespace
{

void writeFace(Output& out, ObjFaces faces, int a, int b, int c)
{
    if (faces == ObjFaces::Plain)
        out.text("f %d %d %d\n", a, b, c);
    else
        out.text("f %d/%d/%d %d/%d/%d %d/%d/%d\n", a, a, a, b, b, b, c, c, c);
}

} // namespace

int writeObj(const QString& path, int triangles, ObjFaces faces)
{
    const Torus torus(triangles);
    const int side = torus.side();
    Output out(path);
    for (int i = 0; i < side * side; ++i) {
        const Vertex v = torus.vertex(i / side, i % side);
        out.text("v %f %f %f\n", double{v[0]}, double{v[1]}, double{v[2]});
    }
    for (int i = 0; i < side * side && faces == ObjFaces::Slashed; ++i) {
        const Vertex v = torus.vertex(i / side, i % side);
        out.text("vt %f %f\nvn %f %f %f\n", double{v[0]}, double{v[1]}, double{v[0]}, double{v[1]}, double{v[2]});
    }
    const auto index = [side](int i, int j) { return i % side * side + j % side + 1; };
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            writeFace(out, faces, index(i, j), index(i + 1, j), index(i + 1, j + 1));
            writeFace(out, faces, index(i, j), index(i + 1, j + 1), index(i, j + 1));
        }
    }
    return out.finish() ? torus.triangles() : 0;
}

int writeSlc(const QString& path, int triangles)
{
    const Torus torus(triangles);
    const int side = torus.side();
    Output out(path);
    out.text("-SLCVER 2.0 -UNIT MM -TYPE PART\r\n\x1a");
    out.bytes(QByteArray(256, ' ').constData(), 256);
    out.number(quint8{1});
    for (const float field : {0.0F, 0.1F, 0.0F, 0.0F})
        out.number(field);
    for (int layer = 0; layer < side; ++layer) {
        out.number(0.1F * static_cast<float>(layer));
        out.number(quint32{1});
        out.number(static_cast<quint32>(side + 1));
        out.number(quint32{0});
        for (int i = 0; i <= side; ++i) {
            const Vertex v = torus.vertex(i, layer);
            out.number(v[0]);
            out.number(v[1]);
        }
    }
    out.number(0.0F);
    out.number(quint32{0xFFFFFFFF});
    return out.finish() ? torus.triangles() : 0;
}

} // namespace zr::bench
