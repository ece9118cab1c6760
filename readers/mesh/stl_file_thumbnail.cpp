#include "readers/mesh/stl_file_thumbnail.h"

#include <atomic>
#include <exception>
#include <new>

namespace zr
{
namespace
{

constexpr int kLineInitErr = 16;
constexpr int kLineNotOpened = 38;
constexpr int kLineFailed = 43;

/// What a finished reader leaves behind. The list makes it plain to leak checkers that it is still wanted.
struct Remains {
    StlMesh* mesh;
    OffscreenRenderer* renderer;
    const Remains* next;
};

std::atomic<const Remains*> allRemains{nullptr};

void keep(StlMesh* mesh, OffscreenRenderer* renderer)
{
    auto* const remains = new (std::nothrow) Remains{mesh, renderer, allRemains.load()};
    while (remains && !allRemains.compare_exchange_weak(remains->next, remains)) {
    }
}

} // namespace

StlFileThumbnail::StlFileThumbnail(const QString& filePath) : MeshFileThumbnail(filePath, {kLineNotOpened, kLineFailed})
{
    try {
        makeRenderer(true);
        makeMesh();
    } catch (const std::exception&) {
        logLine(kLineInitErr, QStringLiteral("err init"));
        m_valid = false;
    }
}

// Unlike those of the other readers, an STL file's mesh and OpenGL context outlive it: the thread's current context
// thus stays a live one after the request.
StlFileThumbnail::~StlFileThumbnail()
{
    if (m_mesh || m_renderer)
        keep(m_mesh.release(), m_renderer.release());
}

QImage StlFileThumbnail::previewImage()
{
    if (!m_valid)
        return QImage();
    try {
        return renderMesh();
    } catch (const QString&) {
        return QImage();
    }
}

} // namespace zr
