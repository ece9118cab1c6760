// SPDX-License-Identifier: MIT
// make-bench-models DIR: writes the models that compare-f3d uses, named FORMAT-TRIANGLES.SUFFIX.

#include "bench/mesh_models.h"

#include <QDir>
#include <QFile>

#include <cstdio>

namespace
{

using namespace zr::bench;

struct Model {
    const char* name;
    int (*write)(const QString& path, int triangles);
    int triangles;
};

int writePlainObj(const QString& path, int triangles)
{
    return writeObj(path, triangles, ObjFaces::Plain);
}

int writeSmallest(const QString& path, int)
{
    return writeOneTriangle(path);
}

constexpr Model kModels[] = {
    {"binary-1.stl", writeSmallest, 1},          {"binary-10k.stl", writeBinaryStl, 10000},
    {"binary-100k.stl", writeBinaryStl, 100000}, {"binary-1M.stl", writeBinaryStl, 1000000},
    {"binary-3M.stl", writeBinaryStl, 3000000},  {"ascii-1M.stl", writeAsciiStl, 1000000},
    {"plain-10k.obj", writePlainObj, 10000},     {"plain-100k.obj", writePlainObj, 100000},
    {"plain-1M.obj", writePlainObj, 1000000},
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: make-bench-models DIR\n", stderr);
        return 2;
    }
    const QDir folder(QFile::decodeName(argv[1]));
    for (const Model& model : kModels) {
        if (model.write(folder.filePath(model.name), model.triangles) == 0) {
            std::fprintf(stderr, "make-bench-models: cannot write %s\n", model.name);
            return 1;
        }
    }
    return 0;
}
