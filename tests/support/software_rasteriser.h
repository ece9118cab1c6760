// SPDX-License-Identifier: MIT
#pragma once

#include "render/triangle_chunks.h"

#include <QImage>

namespace zr::test
{

/// The projection: STL and OBJ files in perspective, SLC files orthographically.
enum class Camera { Perspective, Orthographic };

/// The content of a vertex record of the chunks; without normals the triangle's own is computed.
enum class VertexRecord { PositionAndNormal, PositionOnly };

/// The picture that the product's renderer should make of these chunks and this bounding box (three floats each for
/// `min` and `max`), computed in double precision without OpenGL: 400 x 400 pixels, ARGB32_Premultiplied, background
/// white with alpha 0. The box must enclose the vertices. A triangle with a corner that is not finite is left out.
///
/// It is independent: it uses no number and no matrix of the product, so that an error there shows.
QImage rasterise(const TriangleChunks& chunks, const float* min, const float* max, Camera camera,
                 VertexRecord record = VertexRecord::PositionAndNormal);

/// Expects the picture to show the same mesh as the expected one: silhouettes differ at edge pixels only, colours by at
/// most 2 of 255, except that a few pixels at the edges between faces may show the neighbouring face. Where a picture
/// has alpha 0 its colour does not matter, so that pictures read from a PNG file can be compared.
void expectSamePicture(const QImage& actual, const QImage& expected);

/// The number of pixels that show the mesh.
int meshPixelCount(const QImage& picture);

} // namespace zr::test
