// SPDX-License-Identifier: MIT
#pragma once

#include "readers/mesh/memory_probe.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <array>
#include <vector>

namespace zr::test
{

using Vertex = std::array<float, 3>;
using Triangle = std::array<Vertex, 3>;

/// A binary STL file of these triangles; `announced` is the count in its header.
QByteArray binaryStl(const std::vector<Triangle>& triangles, quint32 announced);
QByteArray binaryStl(const std::vector<Triangle>& triangles);

/// One facet of a text STL file, without the lines around it.
QByteArray asciiFacet(const Triangle& triangle);
QByteArray asciiStl(const std::vector<Triangle>& triangles);

/// Two triangles that differ in all of their coordinates.
const std::vector<Triangle>& twoTriangles();

/// A file with this content, for as long as the object lives.
class SourceFile
{
public:
    explicit SourceFile(const QByteArray& content, const char* name = "model");

    QString path() const { return m_file.fileName(); }
    /// Open for reading.
    QFile& file() { return m_file; }

private:
    QTemporaryDir m_folder;
    QFile m_file;
};

// A machine whose memory never runs out, and some that lack it; for the loaders' constructors.
MemoryFigures muchMemory();

/// 1500 bytes free, so that files of 1000 bytes are too large.
MemoryFigures memoryFor999Bytes();

MemoryFigures noFreeMemory();

/// Nothing wrong with the size, but 90 percent in use.
MemoryFigures shortMemory();

/// 89 percent.
MemoryFigures nearlyShortMemory();

/// Becomes short with the given query, counted from 1; restarts the count.
MemoryProbe memoryShortAtQuery(int query);

/// How often the probe of memoryShortAtQuery() was asked.
int memoryQueries();

} // namespace zr::test
