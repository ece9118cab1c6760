// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/model_shapes.h"
#include "tools/samples/sample_files.h"

#include <QByteArray>

namespace zr::samples
{

/// The parts of an slc file.
struct SlcParts {
    QByteArray head = "-SLCVER 2.0 -UNIT MM -TYPE PART -PACKAGE sample";
    QByteArray reserved = QByteArray(256, ' ');

    /// Minimum z and layer thickness.
    struct Entry {
        float minimumZ;
        float thickness;
    };
    std::vector<Entry> samplingTable = {{0, kTowerLayer}};
    std::vector<ContourLayer> layers;
    bool endMark = true;
};

QByteArray slcBytes(const SlcParts& parts);

/// One boundary. `announced` is the number of points in its head, by default the real one.
QByteArray slcBoundary(const std::vector<ContourPoint>& points);
QByteArray slcBoundary(const std::vector<ContourPoint>& points, quint32 announced);

/// A layer of boundaries made by slcBoundary(); `announced` is their number in its head.
QByteArray slcLayer(float z, const QByteArray& boundaries, quint32 announced);

/// The file up to its first layer.
QByteArray slcHead(const SlcParts& parts);

/// The end mark after the last layer.
QByteArray slcEnd();

std::vector<SampleFile> slcSamples();

} // namespace zr::samples
