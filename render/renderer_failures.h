#pragma once

#include "core/failure_line.h"
#include "core/reasons.h"

namespace zr
{

// The log's lines by which a renderer's failure is known. What fails while it is made ends with
// kRendererConstructionFailed.

constexpr FailureLine kNothingToDraw{184, "---------------renderListZero-----------------", FailureLine::Rest::None,
                                     reason::kNothingToDraw};
constexpr FailureLine kContextNotValid{200, "opengl version is not valid", FailureLine::Rest::None, reason::kNoOpenGl};
constexpr FailureLine kSurfaceNotValid{208, "opengl surface is not valid", FailureLine::Rest::None, reason::kNoOpenGl};
constexpr FailureLine kRendererConstructionFailed{115, "Builder function failed\t", FailureLine::Rest::Anything,
                                                  reason::kOpenGlFailed};
constexpr FailureLine kBufferNotBound{363, "render vbo bind err", FailureLine::Rest::None, reason::kOpenGlFailed};

/// All of them. Without a mesh nothing could have been drawn anyway, so that comes first.
inline FailureLines rendererFailures()
{
    return {kNothingToDraw, kContextNotValid, kSurfaceNotValid, kRendererConstructionFailed, kBufferNotBound};
}

} // namespace zr
