#include "readers/mesh/obj_file_thumbnail.h"

#include "core/reasons.h"

namespace zr
{
namespace
{

constexpr int kLineBegun = 12;
constexpr int kLineRendererMade = 14;
constexpr int kLineMeshMade = 16;
constexpr int kLineFailed = 45;

constexpr FailureLine kPartsFailed{18, "", FailureLine::Rest::None, reason::kOpenGlFailed};
constexpr ThrownKey kNotOpened{40, "fileCanNotOpen", reason::kCannotBeOpened};

} // namespace

FailureLines ObjFileThumbnail::failures()
{
    return withParts({kNotOpened, kPartsFailed});
}

ObjFileThumbnail::ObjFileThumbnail(const QString& filePath) : MeshFileThumbnail(filePath, {kNotOpened, kLineFailed})
{
    makeParts(true, {kLineBegun, kLineRendererMade, kLineMeshMade, kPartsFailed});
}

QImage ObjFileThumbnail::previewImage()
{
    return tryRenderMesh();
}

} // namespace zr
