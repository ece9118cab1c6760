// SPDX-License-Identifier: MIT
#include "readers/mesh/slc_mesh.h"

#include "core/log_contract.h"
#include "core/log_file.h"
#include "core/reasons.h"
#include "readers/mesh/byte_blocks.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace zr
{
namespace
{

constexpr int kLineStart = 23;
constexpr int kLineEnd = 133;

constexpr ThrownKey kFileTooLarge{30, key::kModelTooLarge, reason::kFileTooLarge};
constexpr ThrownKey kShortTable{74, key::kReadShort, reason::kHeaderCut};
constexpr ThrownKey kAddErr{107, key::kSlcAdd, reason::kMemoryShort};
constexpr ThrownKey kSizeErr{124, key::kSlcSize, reason::kModelSizeWrong};
constexpr ThrownKey kHeadErr{130, key::kSlcHead, reason::kSlcHeaderWrong};
constexpr FailureLine kMemOut{198, "mem out err", FailureLine::Rest::None, reason::kMemoryShort, key::kSlcMemoryOut};

constexpr char kHeadEnd[] = "\r\n\x1a";
constexpr qint64 kHeadEndBytes = 3;
constexpr qint64 kReservedBytes = 256;

/// The text at the beginning is searched for its end in reads of this size, up to a read that ends after
/// kLastSearchPosition.
constexpr qint64 kSearchBytes = 1024;
constexpr qint64 kLastSearchPosition = 2048;

/// The sampling table must begin before this offset.
constexpr qint64 kTableLimit = 2307;
constexpr qint64 kTableEntryBytes = 16;

constexpr qint64 kLayerHeadBytes = 8;
constexpr qint64 kBoundaryHeadBytes = 8;
constexpr quint32 kNoMoreLayers = 0xFFFFFFFF;
constexpr float kDefaultThickness = 0.1F;
constexpr quint32 kMinPoints = 2;

/// A point is two floats.
constexpr qint64 kPointBytes = 8;

/// A chunk ends with the point or normal that makes kChunkBytes full, be it in the middle of a triangle.
constexpr int kFloatsPerChunk = (kChunkBytes / 4 + kFloatsPerPoint - 1) / kFloatsPerPoint * kFloatsPerPoint;

/// Without normals it ends with a wall.
constexpr int kFloatsPerBareWall = 2 * kFloatsPerBareTriangle;
constexpr int kFloatsPerBareChunk = kChunkBytes / 4 / kFloatsPerBareWall * kFloatsPerBareWall;

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "floats are taken from the file as they are");

float readFloat(const char* bytes)
{
    float number = 0;
    std::memcpy(&number, bytes, sizeof(number));
    return number;
}

// A point of the file, at no height.
Vec4 readPoint(const char* bytes)
{
    return Vec4{readFloat(bytes), readFloat(bytes + sizeof(float)), 0.0F, 0.0F};
}

// How many points follow the head of a boundary. Their number of bytes is computed with 32 bits in the format, so that
// a count of 2^31 or more announces more points than there are.
qint64 storedPoints(quint32 announced)
{
    const quint32 numbers = announced * 2;
    return qint64{numbers} * 4 / kPointBytes;
}

} // namespace

FailureLines SlcMesh::failures()
{
    return {kFileTooLarge, kHeadErr, kShortTable, kAddErr, kMemOut, kSizeErr};
}

void SlcMesh::parse(QFile& file)
{
    start();
    m_bounds = Bounds();
    logLine(kLineStart, QString());
    requireMemoryFor(static_cast<quint64>(file.size()), kFileTooLarge);
    readHead(file);
    readLayers(file);
    file.close();
    logLine(kLineEnd, QString());
}

void SlcMesh::readHead(QFile& file)
{
    std::array<char, kSearchBytes + 1> text{};
    for (qint64 bytes = 0; (bytes = file.read(text.data(), kSearchBytes)) > 0;) {
        text[static_cast<std::size_t>(bytes)] = '\0';
        if (const char* const end = std::strstr(text.data(), kHeadEnd)) {
            file.seek(file.pos() - bytes + (end - text.data()) + kHeadEndBytes + kReservedBytes);
            break;
        }
        if (file.pos() > kLastSearchPosition)
            break;
    }

    quint8 entries = 0;
    file.read(reinterpret_cast<char*>(&entries), sizeof(entries));
    if (entries == 0 || file.pos() >= kTableLimit)
        throwKey(kHeadErr);
    const QByteArray table = file.read(entries * kTableEntryBytes);
    if (table.size() < entries * kTableEntryBytes)
        throwKey(kShortTable);
    m_samplingTable.clear();
    for (const char* entry = table.constBegin(); entry != table.constEnd(); entry += kTableEntryBytes)
        m_samplingTable.push_back({readFloat(entry), readFloat(entry + sizeof(float))});
}

void SlcMesh::readLayers(QFile& file)
{
    m_writer.emplace(m_chunks, storesNormals() || m_positionsOnly ? kFloatsPerChunk : kFloatsPerBareChunk);
    ByteBlocks bytes(file);
    while (const char* const head = bytes.take(kLayerHeadBytes)) {
        const float z = readFloat(head);
        const auto boundaries = qFromLittleEndian<quint32>(head + sizeof(float));
        if (boundaries == kNoMoreLayers)
            break;
        const Layer layer = layerAt(z);
        // No boundary follows one that is cut, however many are announced.
        for (quint32 i = 0; i < boundaries && readBoundary(bytes, layer); ++i) {
        }
    }
    setBounds(m_bounds);
    if (m_writer->finish())
        requireUsableExtent(kSizeErr);
}

SlcMesh::Layer SlcMesh::layerAt(float z) const
{
    float thickness = kDefaultThickness;
    for (const SamplingEntry& entry : m_samplingTable) {
        if (z >= entry.minimumZ)
            thickness = entry.thickness;
        else if (entry.minimumZ > z)
            break;
    }
    return {z, z + thickness};
}

// False at the end of the file.
bool SlcMesh::readBoundary(ByteBlocks& bytes, Layer layer)
{
    const char* const head = bytes.take(kBoundaryHeadBytes);
    if (!head)
        return false;
    const auto announced = qFromLittleEndian<quint32>(head);
    const qint64 points = storedPoints(announced);
    if (points * kPointBytes > bytes.remaining()) {
        bytes.skipAll();
        return false;
    }
    if (announced < kMinPoints)
        return points == 0 || bytes.take(kPointBytes);
    m_floatsToCome = bytes.remaining() / kPointBytes * 2 * floatsPerTriangle();
    return addWalls(bytes, points, layer);
}

bool SlcMesh::addWalls(ByteBlocks& bytes, qint64 points, Layer layer)
{
    Vec4 previous{};
    for (qint64 i = 0; i < points; ++i) {
        const char* const stored = bytes.take(kPointBytes);
        if (!stored)
            return false;
        const Vec4 point = readPoint(stored);
        if (i == 1) {
            m_bounds.include(withZ(previous, layer.bottom));
            m_bounds.include(withZ(previous, layer.top));
        }
        if (i > 0 && addWall(previous, point, layer)) {
            m_writer.reset();
            throwKey(kAddErr);
        }
        previous = point;
    }
    return true;
}

// The caller has counted the upper end of the layer, and `from`, towards the bounds.
//
// The two triangles overlap below the crossing of the wall's diagonals and leave the small one under its upper edge
// open.
bool SlcMesh::addWall(Vec4 from, Vec4 to, Layer layer)
{
    const Vec4 a = withZ(to, layer.bottom), b = withZ(from, layer.bottom);
    const Vec4 c = withZ(to, layer.top), d = withZ(from, layer.top);
    // At the end of a chunk, or without normals, triple by triple.
    float* const room = m_positionsOnly ? nullptr : nextFloats(2 * floatsPerTriangle());
    if (!room)
        return addTriangle(c, b, a) || addTriangle(d, b, a);
    const Vec4 first = edgeProduct(c, b, a);
    const Vec4 second = edgeProduct(d, b, a);
    // The products are the same unless numbers overflow, and a square root costs more than the comparison.
    const Vec4 normal = normalized(first);
    const Vec4 secondNormal = sameXyz(first, second) ? normal : normalized(second);
    m_bounds.include(a);
    m_bounds.include(normal);
    m_bounds.include(secondNormal);
    if (storesNormals()) {
        writeTriangle(room, c, b, a, normal);
        writeTriangle(room + kFloatsPerTriangle, d, b, a, secondNormal);
    } else {
        writeBareTriangle(room, c, b, a);
        writeBareTriangle(room + kFloatsPerBareTriangle, d, b, a);
    }
    endChunkIfFull();
    return false;
}

bool SlcMesh::addTriangle(Vec4 a, Vec4 b, Vec4 c)
{
    if (m_positionsOnly)
        return addVertex(a) || addVertex(b) || addVertex(c);
    const Vec4 normal = triangleNormal(a, b, c);
    return addVertex(a) || addVertex(normal) || addVertex(b) || addVertex(normal) || addVertex(c) || addVertex(normal);
}

// Normals come here, too, and count towards the bounds like points.
bool SlcMesh::addVertex(Vec4 vertex)
{
    storeVec3(nextFloats(kFloatsPerPoint), vertex);
    m_bounds.include(vertex);
    endChunkIfFull();
    return false;
}

void SlcMesh::endChunkIfFull()
{
    if (m_writer->endFullChunk() && memoryIsShort()) {
        logLine(kMemOut);
        throwKey(kMemOut.number + 1, key::kSlcMemoryOut);
    }
}

} // namespace zr
