#include "readers/mesh/obj_file_thumbnail.h"

namespace zr
{
namespace
{

constexpr int kLineBegun = 12;
constexpr int kLineRendererMade = 14;
constexpr int kLineMeshMade = 16;
constexpr int kLinePartsFailed = 18;
constexpr int kLineNotOpened = 40;
constexpr int kLineFailed = 45;

} // namespace

ObjFileThumbnail::ObjFileThumbnail(const QString& filePath) : MeshFileThumbnail(filePath, {kLineNotOpened, kLineFailed})
{
    makeParts(true, {kLineBegun, kLineRendererMade, kLineMeshMade, kLinePartsFailed});
}

QImage ObjFileThumbnail::previewImage()
{
    return tryRenderMesh();
}

} // namespace zr
