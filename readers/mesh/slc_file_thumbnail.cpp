#include "readers/mesh/slc_file_thumbnail.h"

#include "core/reasons.h"

namespace zr
{
namespace
{

constexpr int kLineBegun = 11;
constexpr int kLineRendererMade = 13;
constexpr int kLineMeshMade = 15;
constexpr int kLineFailed = 45;

constexpr FailureLine kPartsFailed{17, "", FailureLine::Rest::None, reason::kOpenGlFailed};
constexpr ThrownKey kNotOpened{40, "fileCanNotOpen", reason::kCannotBeOpened};

} // namespace

FailureLines SlcFileThumbnail::failures()
{
    return withParts({kNotOpened, kPartsFailed});
}

SlcFileThumbnail::SlcFileThumbnail(const QString& filePath) : MeshFileThumbnail(filePath, {kNotOpened, kLineFailed})
{
    makeParts(false, {kLineBegun, kLineRendererMade, kLineMeshMade, kPartsFailed});
}

QImage SlcFileThumbnail::previewImage()
{
    return tryRenderMesh();
}

} // namespace zr
