// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace zr
{

/// Memory that begins at a multiple of this can be backed with large pages from its beginning on.
constexpr std::size_t kLargePageBytes = std::size_t{2} << 20U;

/// Prepares for `bytes` bytes from `begin` on being filled from front to back, so that the platform may back them with
/// large pages: the first touch of small ones otherwise costs more than computing what goes into them.
/// Changes no content; does nothing where the platform has no such call.
void expectSequentialFill(void* begin, std::size_t bytes);

} // namespace zr
