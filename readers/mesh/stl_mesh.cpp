// SPDX-License-Identifier: MIT
#include "readers/mesh/stl_mesh.h"

#include "core/log_contract.h"
#include "core/log_file.h"
#include "core/reasons.h"
#include "readers/mesh/chunk_writer.h"
#include "readers/mesh/triangle.h"

#include <QLocale>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace zr
{
namespace
{

constexpr int kLineBatchRead = 100;

constexpr ThrownKey kOpenErr{15, key::kModelOpen, reason::kCannotBeOpened};
constexpr ThrownKey kCountTooLarge{61, key::kModelTooLarge, reason::kMemoryShort};
constexpr ThrownKey kShortBatch{97, key::kReadShort, reason::kTrianglesCut};
constexpr ThrownKey kBatchMemOut{156, key::kMemoryOut, reason::kMemoryShort};
constexpr FailureLine kBinarySizeErr{170, " throw size  ", FailureLine::Rest::Anything, reason::kModelSizeWrong,
                                     key::kModelSize};

constexpr qint64 kCountOffset = 80;
constexpr qint64 kRecordsOffset = 84;
constexpr qint64 kRecordBytes = 50;
constexpr std::size_t kFirstVertexOffset = 12; ///< after the record's own normal
constexpr std::size_t kVertexBytes = 12;

/// The size of a triangle without normals, by which a file is taken to be too large.
constexpr quint64 kCountedBytes = 36;

/// Records that are read and turned into triangles at a time, so that they stay in the processor's cache.
constexpr int kRecordsPerPiece = 1024;

/// Longer first lines are looked at only up to here.
constexpr int kDetectedLineBytes = 1024;

bool nextLineContains(QFile& file, const char* word)
{
    std::array<char, kDetectedLineBytes> line{};
    return file.readLine(line.data(), kDetectedLineBytes) > 0 && std::strstr(line.data(), word);
}

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "vertices are taken from the file as they are");

template <bool StoresNormals>
void writeRecords(float* out, const char* record, int count, Bounds& bounds)
{
    constexpr int floats = StoresNormals ? kFloatsPerTriangle : kFloatsPerBareTriangle;
    Bounds box = bounds;
    for (; count > 0; --count, record += kRecordBytes, out += floats) {
        const char* const vertices = record + kFirstVertexOffset;
        const Vec4 a = loadVec4(vertices);
        const Vec4 b = loadVec4(vertices + kVertexBytes);
        const Vec4 c = loadLastVec3(vertices + 2 * kVertexBytes);
        box.include(a);
        box.include(b);
        box.include(c);
        if constexpr (StoresNormals)
            writeTriangle(out, a, b, c);
        else
            writeBareTriangle(out, a, b, c);
    }
    bounds = box;
}

} // namespace

FailureLines StlMesh::failures()
{
    FailureLines failures{kOpenErr, kCountTooLarge, kShortBatch, kBatchMemOut, kBinarySizeErr};
    const FailureLines ascii = asciiFailures();
    failures.insert(failures.end(), ascii.begin(), ascii.end());
    return failures;
}

bool StlMesh::parse(QFile& file)
{
    try {
        clear();
        detectAscii(file);
        if (m_isAscii)
            parseAscii(file);
        else
            parseBinary(file);
        return true;
    } catch (const QString&) {
        // The key stays here: an unreadable STL file is a mesh without triangles to the reader.
        file.close();
        clear();
        return false;
    }
}

void StlMesh::detectAscii(QFile& file)
{
    if (!file.isOpen() && !file.open(QIODevice::ReadOnly))
        throwKey(kOpenErr);
    // The header of many binary files begins with "solid" too, so the second line decides.
    if (nextLineContains(file, "solid"))
        m_isAscii = nextLineContains(file, "facet");
}

void StlMesh::startParse()
{
    m_isAscii = false;
    m_triangleCount = 0;
    m_positionsOnly = false;
    start();
}

void StlMesh::parseBinary(QFile& file)
{
    startParse();
    // The count is still 0 here, so only a machine without any free memory fails.
    requireMemoryFor(m_triangleCount * kCountedBytes, kCountTooLarge);
    std::array<char, sizeof(quint32)> count{};
    file.seek(kCountOffset);
    // A file that ends here has what it has of the count, the rest is zero.
    file.read(count.data(), count.size());
    m_triangleCount = qFromLittleEndian<quint32>(count.data());

    file.seek(kRecordsOffset);
    readBatches(file);
    const float extent = maxExtent();
    if (!extentIsUsable(extent)) {
        logLine(kBinarySizeErr, QStringLiteral("%1").arg(double{extent}, 0, 'g', QLocale::FloatingPointShortest));
        throw QString::fromLatin1(key::kModelSize);
    }
    file.close();
}

void StlMesh::readBatches(QFile& file)
{
    ChunkWriter writer(m_chunks, kTrianglesPerChunk * floatsPerTriangle());
    Bounds bounds;
    for (quint64 done = 0; done < m_triangleCount;) {
        const quint64 batch = std::min<quint64>(kTrianglesPerChunk, m_triangleCount - done);
        readBatch(file, static_cast<int>(batch), writer, bounds);
        setBounds(bounds);
        if (memoryIsShort())
            throwKey(kBatchMemOut);
        done += batch;
    }
    writer.finish();
}

// One batch makes one chunk, since both end at kTrianglesPerChunk. It is logged when all of it has been read.
void StlMesh::readBatch(QFile& file, int triangles, ChunkWriter& writer, Bounds& bounds)
{
    // Do not make a chunk for triangles that cannot be there: a broken file can have any count.
    if (file.size() - file.pos() < triangles * kRecordBytes)
        throwKey(kShortBatch);
    std::vector<char> records(static_cast<std::size_t>(std::min(triangles, kRecordsPerPiece) * kRecordBytes));
    for (int left = triangles; left > 0;) {
        const int piece = std::min(left, kRecordsPerPiece);
        if (file.read(records.data(), piece * kRecordBytes) != piece * kRecordBytes)
            throwKey(kShortBatch);
        const int floats = floatsPerTriangle();
        float* const room = writer.next(piece * floats, [=] { return qint64{left} * floats; });
        const auto write = storesNormals() ? writeRecords<true> : writeRecords<false>;
        write(room, records.data(), piece, bounds);
        left -= piece;
    }
    logLine(kLineBatchRead, QString());
}

} // namespace zr
