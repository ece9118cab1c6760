#include "readers/mesh/slc_file_thumbnail.h"

namespace zr
{
namespace
{

constexpr int kLineBegun = 11;
constexpr int kLineRendererMade = 13;
constexpr int kLineMeshMade = 15;
constexpr int kLinePartsFailed = 17;
constexpr int kLineNotOpened = 40;
constexpr int kLineFailed = 45;

} // namespace

SlcFileThumbnail::SlcFileThumbnail(const QString& filePath) : MeshFileThumbnail(filePath, {kLineNotOpened, kLineFailed})
{
    makeParts(false, {kLineBegun, kLineRendererMade, kLineMeshMade, kLinePartsFailed});
}

QImage SlcFileThumbnail::previewImage()
{
    return tryRenderMesh();
}

} // namespace zr
