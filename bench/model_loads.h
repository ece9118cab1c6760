// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <vector>

namespace zr::bench
{

/// A model format as the benchmarks use it, with the limits that its loader has to keep.
struct ModelFormat {
    const char* name;
    int (*write)(const QString& path, int triangles); ///< see mesh_models.h
    qint64 (*load)(const QString& path);              ///< loads the file and returns the bytes of its chunks
    bool countsMemset;                                ///< filling the chunks' memory is part of the reference
    double allowedRatio;                              ///< time of a load relative to the reference; 0 for no limit
    double allowedExtraMiB;                           ///< peak memory of a load beyond its chunks
    void (*loadWithPeer)(const QString& path);        ///< with another library, or null
    double leastPeerRatio;                            ///< the peer's time relative to that of a load
};

const std::vector<ModelFormat>& modelFormats();

struct LoadMemory {
    qint64 chunkBytes;
    qint64 peakBytes; ///< by which a process grows while it loads
};

/// Loads the file in a process of its own. To be called while this process is still small.
LoadMemory measureLoad(const ModelFormat& format, const QString& path);

} // namespace zr::bench
