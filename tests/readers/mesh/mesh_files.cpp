// SPDX-License-Identifier: MIT
#include "tests/readers/mesh/mesh_files.h"

#include <gtest/gtest.h>

#include <QtEndian>

namespace zr::test
{
namespace
{

constexpr quint64 kManyBytes = quint64{1} << 40U;

int queriesDone = 0;
int firstShortQuery = 0;

template <typename Number>
void append(QByteArray& bytes, Number number)
{
    number = qToLittleEndian(number);
    bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
}

} // namespace

QByteArray binaryStl(const std::vector<Triangle>& triangles, quint32 announced)
{
    QByteArray file(80, 'h');
    append(file, announced);
    for (const Triangle& triangle : triangles) {
        // A normal that is wrong on purpose.
        for (const float n : {7.0F, 8.0F, 9.0F})
            append(file, n);
        for (const Vertex& vertex : triangle) {
            for (const float coordinate : vertex)
                append(file, coordinate);
        }
        append(file, quint16{0xABCD});
    }
    return file;
}

QByteArray binaryStl(const std::vector<Triangle>& triangles)
{
    return binaryStl(triangles, static_cast<quint32>(triangles.size()));
}

QByteArray asciiFacet(const Triangle& triangle)
{
    QByteArray text = "  facet normal 7 8 9\n    outer loop\n";
    for (const Vertex& vertex : triangle) {
        text += "      vertex";
        for (const float coordinate : vertex)
            text += ' ' + QByteArray::number(double{coordinate}, 'g', 9);
        text += '\n';
    }
    return text + "    endloop\n  endfacet\n";
}

QByteArray asciiStl(const std::vector<Triangle>& triangles)
{
    QByteArray text = "solid model\n";
    for (const Triangle& triangle : triangles)
        text += asciiFacet(triangle);
    return text + "endsolid model\n";
}

const std::vector<Triangle>& twoTriangles()
{
    static const std::vector<Triangle> triangles = {{{{0.5F, 1, -2}, {10, 2.25F, 3}, {4, 20, 5}}},
                                                    {{{-1, -3, 6}, {7, 8, 9.5F}, {1e-3F, 11, -12}}}};
    return triangles;
}

SourceFile::SourceFile(const QByteArray& content, const char* name)
    : m_file(m_folder.filePath(QString::fromLatin1(name)))
{
    EXPECT_TRUE(m_file.open(QIODevice::WriteOnly));
    EXPECT_EQ(m_file.write(content), content.size());
    m_file.close();
    EXPECT_TRUE(m_file.open(QIODevice::ReadOnly));
}

MemoryFigures muchMemory()
{
    return {kManyBytes, 10};
}

MemoryFigures memoryFor999Bytes()
{
    return {1500, 10};
}

MemoryFigures noFreeMemory()
{
    return {0, 10};
}

MemoryFigures shortMemory()
{
    return {kManyBytes, 90};
}

MemoryFigures nearlyShortMemory()
{
    return {kManyBytes, 89};
}

MemoryProbe memoryShortAtQuery(int query)
{
    queriesDone = 0;
    firstShortQuery = query;
    return []() { return MemoryFigures{kManyBytes, ++queriesDone >= firstShortQuery ? 95U : 10U}; };
}

int memoryQueries()
{
    return queriesDone;
}

} // namespace zr::test
