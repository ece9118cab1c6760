// SPDX-License-Identifier: MIT
#pragma once

#include "fuzz/input_file.h"
#include "readers/mesh/mesh.h"

#include <cstdint>
#include <cstdlib>

namespace zr::fuzz
{

/// The input as bytes, not copied.
inline QByteArray rawInput(const std::uint8_t* data, std::size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size));
}

/// A machine whose memory never runs out, so that an input does the same everywhere.
inline MemoryFigures endlessMemory()
{
    return {quint64{1} << 40U, 10};
}

/// A machine on which no model can be loaded, and one whose memory runs out on the way.
inline MemoryFigures noMemory()
{
    return {0, 10};
}

inline MemoryFigures scarceMemory()
{
    return {quint64{1} << 40U, 90};
}

/// Parses the file with the mesh; false when that threw an error key.
template <typename MeshType>
bool parses(MeshType& mesh, QFile& file)
{
    try {
        mesh.parse(file);
        return true;
    } catch (const QString&) {
        return false;
    }
}

/// Parses the input as a file, and checks that the chunks hold whole records of `recordFloats` floats.
template <typename MeshType>
bool parses(MeshType& mesh, const QByteArray& input, int recordFloats)
{
    QFile file(inputFile(input));
    if (!file.open(QIODevice::ReadOnly))
        std::abort();
    const bool parsed = parses(mesh, file);
    for (const MeshChunk* chunk : mesh.chunks()) {
        if (chunk->isEmpty() || chunk->size() % recordFloats != 0)
            std::abort();
    }
    if (parsed && file.isOpen())
        std::abort();
    return parsed;
}

/// Parses the input on machines with too little memory. It either fails or needed no memory. `settings` are the mesh's.
template <typename MeshType, typename... Settings>
void parseWithoutMemory(const QByteArray& input, int recordFloats, Settings... settings)
{
    for (const MemoryProbe probe : {noMemory, scarceMemory}) {
        MeshType mesh(ChunkLayout::PositionsAndNormals, settings..., probe);
        parses(mesh, input, recordFloats);
    }
}

} // namespace zr::fuzz
