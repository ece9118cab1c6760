// SPDX-License-Identifier: MIT
#pragma once

#include "core/failure_line.h"
#include "core/log_contract.h"
#include "core/log_file.h"
#include "core/reasons.h"
#include "render/triangle_chunks.h"

namespace zr
{

// The lines by which a renderer's failure is found in the log. A construction that fails ends with kRendererNotMade.

constexpr FailureLine kNothingToDraw{line::kNothingToDraw, "---------------renderListZero-----------------",
                                     FailureLine::Rest::None, reason::kNothingToDraw, key::kNothingToRender};
constexpr FailureLine kContextNotValid{line::kContextNotValid, "opengl version is not valid", FailureLine::Rest::None,
                                       reason::kNoOpenGl, key::kNoContext};
constexpr FailureLine kSurfaceNotValid{line::kSurfaceNotValid, "opengl surface is not valid", FailureLine::Rest::None,
                                       reason::kNoOpenGl, key::kNoContext};
constexpr FailureLine kRendererNotMade{line::kRendererNotMade, "Builder function failed\t", FailureLine::Rest::Anything,
                                       reason::kOpenGlFailed, key::kContext};
constexpr FailureLine kBufferNotBound{line::kBufferNotBound, "render vbo bind err", FailureLine::Rest::None,
                                      reason::kOpenGlFailed, key::kBufferBind};

/// All of them. Without a mesh nothing could have been drawn anyway, so that comes first.
inline FailureLines rendererFailures()
{
    return {kNothingToDraw, kContextNotValid, kSurfaceNotValid, kRendererNotMade, kBufferNotBound};
}

/// Throws an error key, which is logged before, when there are no triangles.
inline void requireTriangles(const TriangleChunks& chunks)
{
    if (!chunks.isEmpty())
        return;
    logLine(kNothingToDraw);
    throw QString::fromLatin1(key::kNothingToRender);
}

} // namespace zr
