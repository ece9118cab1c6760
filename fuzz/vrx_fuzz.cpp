#include "fuzz/slice_reader_fuzz.h"
#include "readers/slice/vrx_file_thumbnail.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zr::fuzz;
    QByteArray input = inputBytes(data, size);
    constexpr qint64 kFixedPlaceMagic = 0x12FD0107;
    if (fieldAt(input, 0) == kFixedPlaceMagic) {
        limitPreviewSize(input, 328, 0);
        limitPreviewSize(input, 336, 0);
    } else {
        limitPreviewSize(input, fieldAt(input, 60), 112);
    }
    return readPicture<zr::VrxFileThumbnail>(input);
}
