// SPDX-License-Identifier: MIT
#include "core/large_pages.h"

#include <QtGlobal>

namespace zr
{

// The heap commits memory as it is; there is nothing to advise.
void expectSequentialFill(void* begin, std::size_t bytes)
{
    Q_UNUSED(begin)
    Q_UNUSED(bytes)
}

} // namespace zr
