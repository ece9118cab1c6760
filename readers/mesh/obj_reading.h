// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

/// How an OBJ file is understood: in the server's own way, which is fixed for ever, or as all other programs write it.
enum class ObjReading { Server, Standard };

/// The reading of this process: the server's, unless the program has chosen otherwise.
ObjReading objReading();

/// From now on readers of OBJ files use this reading. To be called before the first request.
void readObjAs(ObjReading reading);

} // namespace zr
