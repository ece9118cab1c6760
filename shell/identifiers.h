// SPDX-License-Identifier: MIT
#pragma once

#include <guiddef.h>

namespace zr
{

/// The class that the server offers; also in request/server_class.h, the registry script and the type library.
constexpr GUID kExtractorClassId = {0xE45A903D, 0x53AE, 0x4A14, {0x90, 0x6E, 0x02, 0x60, 0xD1, 0x3F, 0xF7, 0x7F}};

} // namespace zr
