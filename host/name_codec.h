// SPDX-License-Identifier: MIT
#pragma once

namespace zr
{

/// Makes names of files that are not text survive their way through QString, where the locale is UTF-8 or the bare "C":
/// a byte that is not part of any character becomes the lone surrogate U+DC00 + byte, and that byte again where Qt
/// hands the name to the system. Linux only.
void keepNamesThatAreNotText();

} // namespace zr
