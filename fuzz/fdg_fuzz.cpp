#include "fuzz/slice_reader_fuzz.h"
#include "readers/slice/fdg_file_thumbnail.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace zr::fuzz;
    QByteArray input = inputBytes(data, size);
    limitPreviewSize(input, fieldAt(input, 44), 216);
    return readPicture<zr::FdgFileThumbnail>(input);
}
