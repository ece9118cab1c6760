// SPDX-License-Identifier: MIT
// The reader of the suffix ZR_SUFFIX. An empty input means a missing file. The result is a square picture or none; it
// may only throw because a file claims more memory than there is.

#include "fuzz/input_file.h"
#include "fuzz/preview_limits.h"
#include "readers/reader_table.h"

#include <cstdint>
#include <cstdlib>
#include <new>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int kMinSide = 400;
    const QString suffix = QStringLiteral(ZR_SUFFIX);
    QByteArray input(reinterpret_cast<const char*>(data), static_cast<int>(size));
    zr::fuzz::limitPreview(suffix, input);
    try {
        const auto reader =
            zr::makeReader(suffix, input.isEmpty() ? QStringLiteral("/missing") : zr::fuzz::inputFile(input));
        const QImage picture = reader->getImage();
        const bool isThumbnail = picture.format() == QImage::Format_RGB888 && picture.width() == picture.height() &&
                                 picture.width() >= kMinSide;
        if (!picture.isNull() && !isThumbnail)
            std::abort();
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 0;
}
