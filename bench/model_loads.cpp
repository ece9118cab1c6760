// SPDX-License-Identifier: MIT
#include "bench/model_loads.h"

#include "bench/mesh_models.h"
#include "readers/mesh/obj_mesh.h"
#include "readers/mesh/slc_mesh.h"
#include "readers/mesh/stl_mesh.h"

#include <QFile>

#include <tiny_obj_loader.h>

#include <cstdio>
#include <cstdlib>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zr::bench
{
namespace
{

// `settings` are those of the mesh.
template <typename MeshType, typename... Settings>
qint64 load(const QString& path, Settings... settings)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        std::abort();
    MeshType mesh(ChunkLayout::PositionsAndNormals, settings...);
    mesh.parse(file);
    qint64 bytes = 0;
    for (const QVector<float>* chunk : mesh.chunks())
        bytes += chunk->size() * static_cast<qint64>(sizeof(float));
    return bytes;
}

qint64 loadStandardObj(const QString& path)
{
    return load<ObjMesh>(path, ObjReading::Standard);
}

void loadWithTinyObj(const QString& path)
{
    tinyobj::ObjReader reader;
    if (!reader.ParseFromFile(path.toStdString()))
        std::abort();
}

qint64 peakResidentBytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss * 1024;
}

// tinyobjloader takes 48 times as long as reading the file; the fastest loaders known take 8 times as long.
constexpr double kObjPeerRatio = 6.0;

// 8 MiB and the positions, 12 bytes each: half a million for the largest model.
constexpr double kObjExtraMiB = 8.0 + 500000 * 12.0 / (1 << 20);

int writePlainObj(const QString& path, int triangles)
{
    return writeObj(path, triangles, ObjFaces::Plain);
}

int writeSlashedObj(const QString& path, int triangles)
{
    return writeObj(path, triangles, ObjFaces::Slashed);
}

} // namespace

const std::vector<ModelFormat>& modelFormats()
{
    static const std::vector<ModelFormat> formats = {
        {"binary stl", writeBinaryStl, load<StlMesh>, true, 3.0, 150.0, nullptr, 0.0},
        {"ascii stl", writeAsciiStl, load<StlMesh>, false, 8.0, 8.0, nullptr, 0.0},
        {"obj", writePlainObj, load<ObjMesh>, false, 0.0, kObjExtraMiB, loadWithTinyObj, kObjPeerRatio},
        {"obj v-vt-vn", writeSlashedObj, load<ObjMesh>, false, 0.0, kObjExtraMiB, loadWithTinyObj, kObjPeerRatio},
        {"obj standard", writePlainObj, loadStandardObj, false, 0.0, kObjExtraMiB, loadWithTinyObj, kObjPeerRatio},
        {"obj standard v-vt-vn", writeSlashedObj, loadStandardObj, false, 0.0, kObjExtraMiB, loadWithTinyObj,
         kObjPeerRatio},
        {"slc", writeSlc, load<SlcMesh>, true, 3.0, 8.0, nullptr, 0.0},
    };
    return formats;
}

LoadMemory measureLoad(const ModelFormat& format, const QString& path)
{
    int ends[2] = {};
    if (pipe(ends) != 0)
        std::abort();
    const pid_t child = fork();
    if (child == 0) {
        const qint64 before = peakResidentBytes();
        const qint64 chunkBytes = format.load(path);
        const LoadMemory memory = {chunkBytes, peakResidentBytes() - before};
        _exit(write(ends[1], &memory, sizeof(memory)) == sizeof(memory) ? 0 : 1);
    }
    LoadMemory memory = {};
    int status = 1;
    if (child < 0 || read(ends[0], &memory, sizeof(memory)) != sizeof(memory) || waitpid(child, &status, 0) != child ||
        status != 0)
        std::abort();
    close(ends[0]);
    close(ends[1]);
    return memory;
}

} // namespace zr::bench
