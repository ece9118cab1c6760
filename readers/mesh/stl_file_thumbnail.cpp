// SPDX-License-Identifier: MIT
#include "readers/mesh/stl_file_thumbnail.h"

#include "core/log_contract.h"
#include "core/reasons.h"

#include <atomic>
#include <exception>
#include <new>

namespace zr
{
namespace
{

constexpr int kLineFailed = 43;

constexpr FailureLine kInitErr{16, "err init", FailureLine::Rest::None, reason::kMemoryShort};
constexpr ThrownKey kNotOpened{38, key::kModelNotOpened, reason::kCannotBeOpened};

/// What a finished reader leaves. The list shows leak checkers that it is still wanted.
struct Remains {
    StlMesh* mesh;
    MeshRenderer* renderer;
    const Remains* next;
};

std::atomic<const Remains*> allRemains{nullptr};

void keep(StlMesh* mesh, MeshRenderer* renderer)
{
    auto* const remains = new (std::nothrow) Remains{mesh, renderer, allRemains.load()};
    while (remains && !allRemains.compare_exchange_weak(remains->next, remains)) {
    }
}

} // namespace

FailureLines StlFileThumbnail::failures()
{
    return withParts({kNotOpened, kInitErr});
}

StlFileThumbnail::StlFileThumbnail(const QString& filePath) : MeshFileThumbnail(filePath, {kNotOpened, kLineFailed})
{
    try {
        makeRenderer(true);
        makeMesh();
    } catch (const std::exception&) {
        logLine(kInitErr);
        m_valid = false;
    }
}

// Unlike those of the other readers, an STL file's mesh and OpenGL context outlive it: the thread's current context
// thus stays a live one after the request.
StlFileThumbnail::~StlFileThumbnail()
{
    if (m_renderer ? m_renderer->hasContext() : m_mesh != nullptr)
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
