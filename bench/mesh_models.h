// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace zr::bench
{

// Models of a given size for the benchmarks: a torus with bumps, whose coordinates have as many digits as a real
// model's. Each function writes one file and returns the number of its triangles, the even number next to the wanted
// one that fills a square grid; 0 when the file could not be written.

int writeBinaryStl(const QString& path, int triangles);
int writeAsciiStl(const QString& path, int triangles);

/// One triangle across the corner of a box, as a binary STL.
int writeOneTriangle(const QString& path);

enum class ObjFaces { Plain, Slashed };
int writeObj(const QString& path, int triangles, ObjFaces faces);

/// Contours of the torus, one layer above the other; two triangles for each segment.
int writeSlc(const QString& path, int triangles);

} // namespace zr::bench
