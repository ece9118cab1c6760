#include "readers/mesh/slc_mesh.h"

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

constexpr ThrownKey kFileTooLarge{30, "fileIsCanNoRender", reason::kFileTooLarge};
constexpr ThrownKey kShortTable{74, "fileReadLess", reason::kHeaderCut};
constexpr ThrownKey kAddErr{107, "fileAddErr", reason::kMemoryShort};
constexpr ThrownKey kSizeErr{124, "fileIsErr", reason::kModelSizeWrong};
constexpr ThrownKey kHeadErr{130, "fileHeadErr", reason::kSlcHeaderWrong};
constexpr FailureLine kMemOut{198, "mem out err", FailureLine::Rest::None, reason::kMemoryShort};

constexpr char kHeadEnd[] = "\r\n\x1a";
constexpr qint64 kHeadEndBytes = 3;
constexpr qint64 kReservedBytes = 256;

/// The text at the beginning is searched for its end in reads of this size, up to a read that ends behind
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
constexpr quint32 kLeastPoints = 2;

/// A point is two floats.
constexpr qint64 kPointBytes = 8;

/// A chunk ends with the point or normal that makes kChunkBytes full, be it in the middle of a triangle.
constexpr int kFloatsPerChunk = (kChunkBytes / 4 + kFloatsPerPoint - 1) / kFloatsPerPoint * kFloatsPerPoint;

constexpr qint64 kFloatsPerWall = 2 * qint64{kFloatsPerTriangle};

/// The chunk grows by so many floats at a time: few enough that zeroing them happens in the processor's cache.
constexpr int kFloatsPerWindow = 128 * kFloatsPerTriangle;

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

SlcMesh::SlcMesh(bool positionsOnly, MemoryProbe probe) : Mesh(positionsOnly, probe) {}

FailureLines SlcMesh::failures()
{
    return {kFileTooLarge, kHeadErr, kShortTable, kAddErr, kMemOut, kSizeErr};
}

void SlcMesh::parse(QFile& file)
{
    clear();
    m_bounds = Bounds();
    setBounds(m_bounds);
    logLine(kLineStart, QString());
    if (exceedsFreeMemory(static_cast<quint64>(file.size())))
        throwKey(kFileTooLarge);
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
    m_chunk = std::make_unique<MeshChunk>();
    m_cursor = m_windowEnd = m_chunk->data();
    ByteBlocks bytes(file);
    while (const char* const head = bytes.take(kLayerHeadBytes)) {
        const float z = readFloat(head);
        const auto boundaries = qFromLittleEndian<quint32>(head + sizeof(float));
        if (boundaries == kNoMoreLayers)
            break;
        const Layer layer = layerAt(z);
        // No boundary follows one that the file has not whole, however many are announced.
        for (quint32 i = 0; i < boundaries && readBoundary(bytes, layer); ++i) {
        }
    }
    setBounds(m_bounds);
    if (m_cursor == m_chunk->constData()) {
        m_chunk.reset();
        return;
    }
    handOverChunk();
    if (!extentIsUsable(largestExtent()))
        throwKey(kSizeErr);
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
    if (announced < kLeastPoints)
        return points == 0 || bytes.take(kPointBytes);
    const qint64 floatsPerWall = 2 * qint64{floatsPerTriangle()};
    m_floatsToCome = bytes.remaining() / kPointBytes * floatsPerWall;
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
            m_chunk.reset();
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
    if (m_windowEnd - m_cursor < kFloatsPerWall)
        openWindow();
    // At the end of a chunk, or without normals.
    if (m_positionsOnly || m_windowEnd - m_cursor < kFloatsPerWall)
        return addTriangle(c, b, a) || addTriangle(d, b, a);
    const Vec4 first = edgeProduct(c, b, a);
    const Vec4 second = edgeProduct(d, b, a);
    // The products are the same unless numbers overflow, and a square root costs more than the comparison.
    const Vec4 normal = normalized(first);
    const Vec4 secondNormal = sameXyz(first, second) ? normal : normalized(second);
    m_bounds.include(a);
    m_bounds.include(normal);
    m_bounds.include(secondNormal);
    writeTriangle(m_cursor, c, b, a, normal);
    writeTriangle(m_cursor + kFloatsPerTriangle, d, b, a, secondNormal);
    m_cursor += kFloatsPerWall;
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
    if (m_cursor == m_windowEnd)
        openWindow();
    storeVec3(m_cursor, vertex);
    m_cursor += kFloatsPerPoint;
    m_bounds.include(vertex);
    endChunkIfFull();
    return false;
}

// Lets the chunk's floats exist some way beyond the cursor, but not beyond the chunk's limit.
void SlcMesh::openWindow()
{
    const auto used = static_cast<int>(m_cursor - m_chunk->constData());
    const int end = std::min(used + kFloatsPerWindow, kFloatsPerChunk);
    if (end > m_chunk->capacity()) {
        const qint64 most = std::min<qint64>(used + m_floatsToCome, kFloatsPerChunk);
        m_chunk->reserve(std::max(end, static_cast<int>(most)));
        expectSequentialFill(m_chunk->data(), static_cast<std::size_t>(m_chunk->capacity()) * sizeof(float));
    }
    m_chunk->resize(end);
    m_cursor = m_chunk->data() + used;
    m_windowEnd = m_chunk->data() + end;
}

void SlcMesh::handOverChunk()
{
    m_chunk->resize(static_cast<int>(m_cursor - m_chunk->constData()));
    m_chunks.append(m_chunk.get());
    m_chunk.release(); // NOLINT(bugprone-unused-return-value): the list owns it now
}

void SlcMesh::endChunkIfFull()
{
    if (m_cursor != m_windowEnd || m_chunk->size() != kFloatsPerChunk)
        return;
    handOverChunk();
    m_chunk = std::make_unique<MeshChunk>();
    m_cursor = m_windowEnd = m_chunk->data();
    if (memoryIsShort()) {
        logLine(kMemOut);
        throwKey(kMemOut.number + 1, "memOutErr");
    }
}

} // namespace zr
