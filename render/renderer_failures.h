// SPDX-License-Identifier: MIT
#pragma once

#include "core/failure_line.h"
#include "core/log_contract.h"
#include "core/reasons.h"

namespace zr
{

// The lines by which a renderer's failure is found in the log. A construction that fails ends with kRendererNotMade.

constexpr FailureLine kNothingToDraw{line::kNothingToDraw, "---------------renderListZero-----------------",
                                     FailureLine::Rest::None, reason::kNothingToDraw};
constexpr FailureLine kContextNotValid{line::kContextNotValid, "opengl version is not valid", FailureLine::Rest::None,
                                       reason::kNoOpenGl};
constexpr FailureLine kSurfaceNotValid{line::kSurfaceNotValid, "opengl surface is not valid", FailureLine::Rest::None,
                                       reason::kNoOpenGl};
constexpr FailureLine kRendererNotMade{line::kRendererNotMade, "Builder function failed\t", FailureLine::Rest::Anything,
                                       reason::kOpenGlFailed};
constexpr FailureLine kBufferNotBound{line::kBufferNotBound, "render vbo bind err", FailureLine::Rest::None,
                                      reason::kOpenGlFailed};

/// All of them. Without a mesh nothing could have been drawn anyway, so that comes first.
inline FailureLines rendererFailures()
{
    return {kNothingToDraw, kContextNotValid, kSurfaceNotValid, kRendererNotMade, kBufferNotBound};
}

} // namespace zr
