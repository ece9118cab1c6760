// SPDX-License-Identifier: MIT
#include "tools/samples/obj_bytes.h"

#include "tools/samples/model_shapes.h"

namespace zr::samples
{

QByteArray objBytes(const IndexedModel& model)
{
    QByteArray text = "# sample\no sample\n";
    for (const ModelPoint& point : model.points) {
        text += 'v';
        for (const float number : point)
            text += ' ' + QByteArray::number(double{number}, 'f', 6);
        text += '\n';
    }
    for (const auto& triangle : model.triangles) {
        text += 'f';
        for (const int index : triangle)
            text += ' ' + QByteArray::number(index + 1);
        text += '\n';
    }
    return text;
}

std::vector<SampleFile> objSamples()
{
    return {{"duck.obj", [] { return objBytes(duck()); }}};
}

} // namespace zr::samples
