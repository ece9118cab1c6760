// SPDX-License-Identifier: MIT
// How long the two renderers take for the same models, from finished chunks to a picture: the software renderer with
// its default settings, which draws what OpenGL draws, and with smooth edges. Needs a display. The table at the end
// shows how many times as fast as OpenGL each is; the exit status says whether the plain one is always faster.

#include "bench/best_time_reporter.h"
#include "bench/mesh_models.h"
#include "readers/mesh/stl_mesh.h"
#include "render/offscreen_renderer.h"
#include "render/software_renderer.h"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>

namespace
{

using namespace zr;
using namespace zr::bench;

constexpr int kSizes[] = {50, 10000, 100000, 1000000};
constexpr int kSmoothSidePx = 256;

/// A model as each of the renderers takes it.
struct Case {
    std::string name;
    std::unique_ptr<StlMesh> full;
    std::unique_ptr<StlMesh> bare;

    std::string openGl() const { return name + "/opengl"; }
    std::string software() const { return name + "/software"; }
    std::string smooth() const { return name + "/smooth"; }
};

std::unique_ptr<StlMesh> loaded(const QString& path, ChunkLayout layout)
{
    auto mesh = std::make_unique<StlMesh>(layout);
    QFile file(path);
    if (!mesh->parse(file))
        std::abort();
    return mesh;
}

std::deque<Case> makeCases()
{
    const QTemporaryDir folder;
    std::deque<Case> cases;
    for (const int triangles : kSizes) {
        const QString path = folder.filePath("model.stl");
        if (writeBinaryStl(path, triangles) == 0)
            std::abort();
        cases.push_back({std::to_string(triangles), loaded(path, ChunkLayout::PositionsAndNormals),
                         loaded(path, ChunkLayout::WholeTriangles)});
    }
    return cases;
}

void draw(MeshRenderer& renderer, const StlMesh& mesh)
{
    const auto [min, max] = mesh.boundingBox();
    if (renderer.render(mesh.chunks(), min.data(), max.data()).isNull())
        std::abort();
}

template <typename Draw>
void registerDrawing(const std::string& name, Draw drawing)
{
    constexpr int kRepetitions = 5;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [drawing](benchmark::State& state) {
                                     for ([[maybe_unused]] const auto _ : state)
                                         drawing();
                                 })
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(kRepetitions)
        ->MinTime(0.1);
}

void registerCase(const Case& test, OffscreenRenderer& openGl)
{
    registerDrawing(test.openGl(), [&] { draw(openGl, *test.full); });
    registerDrawing(test.software(), [&test] {
        SoftwareRenderer renderer(true);
        draw(renderer, *test.bare);
    });
    registerDrawing(test.smooth(), [&test] {
        SoftwareRenderer renderer(true, SoftwareSettings::smooth(kSmoothSidePx));
        draw(renderer, *test.bare);
    });
}

bool printTable(const std::deque<Case>& cases, const BestTimeReporter& reporter)
{
    bool isFaster = true;
    std::printf("\n%-10s %10s %12s %7s %18s %7s\n", "triangles", "opengl ms", "software ms", "ratio",
                "smooth, 256 px, ms", "ratio");
    for (const Case& test : cases) {
        const double openGl = reporter.bestSeconds(test.openGl());
        const double software = reporter.bestSeconds(test.software());
        const double smooth = reporter.bestSeconds(test.smooth());
        if (openGl == 0.0 || software == 0.0 || smooth == 0.0)
            continue;
        std::printf("%-10s %10.2f %12.2f %7.1f %18.2f %7.1f\n", test.name.c_str(), openGl * 1e3, software * 1e3,
                    openGl / software, smooth * 1e3, openGl / smooth);
        isFaster = isFaster && software < openGl;
    }
    return isFaster;
}

} // namespace

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    const std::deque<Case> cases = makeCases();
    // Made once: a process's first context takes longer than the drawing.
    OffscreenRenderer openGl(true);
    for (const Case& test : cases)
        registerCase(test, openGl);
    BestTimeReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return printTable(cases, reporter) ? EXIT_SUCCESS : EXIT_FAILURE;
}
