#include "core/reader_table.h"

#include "readers/mesh/obj_file_thumbnail.h"
#include "readers/mesh/slc_file_thumbnail.h"
#include "readers/mesh/stl_file_thumbnail.h"
#include "readers/slice/fdg_file_thumbnail.h"
#include "readers/slice/gf_file_thumbnail.h"
#include "readers/slice/kestravo_file_thumbnail.h"
#include "readers/slice/photons_file_thumbnail.h"
#include "readers/slice/svgx_file_thumbnail.h"
#include "readers/slice/vrx_file_thumbnail.h"

namespace zr
{
namespace
{

template <typename Reader>
std::unique_ptr<FileReaderBase> make(const QString& filePath)
{
    return std::make_unique<Reader>(filePath);
}

struct ReaderRow {
    const char* suffix; ///< Latin-1
    std::unique_ptr<FileReaderBase> (*make)(const QString& filePath);
    FailureLines (*failures)();
};

// The first row whose suffix matches wins.
// clang-format off
constexpr ReaderRow kReaderTable[] = {
    // Models.
    {"stl", make<StlFileThumbnail>, StlFileThumbnail::failures},
    {"obj", make<ObjFileThumbnail>, ObjFileThumbnail::failures},
    {"slc", make<SlcFileThumbnail>, SlcFileThumbnail::failures},
    // Slice files.
    {"vrx", make<VrxFileThumbnail>, VrxFileThumbnail::failures},
    {"vrxdlp", make<VrxFileThumbnail>, VrxFileThumbnail::failures},
    {"gf", make<GfFileThumbnail>, GfFileThumbnail::failures},
    {"fdg", make<FdgFileThumbnail>, FdgFileThumbnail::failures},
    {"photons", make<PhotonsFileThumbnail>, PhotonsFileThumbnail::failures},
    {"svgx", make<SvgxFileThumbnail>, SvgxFileThumbnail::failures},
    {"kestravo", make<KestravoFileThumbnail>, KestravoFileThumbnail::failures},
};
// clang-format on

// Null when no format has that suffix.
const ReaderRow* rowOf(const QString& suffix)
{
    for (const ReaderRow& row : kReaderTable) {
        if (suffix.compare(QLatin1String(row.suffix), Qt::CaseInsensitive) == 0)
            return &row;
    }
    return nullptr;
}

} // namespace

QStringList supportedSuffixes()
{
    QStringList suffixes;
    for (const ReaderRow& row : kReaderTable)
        suffixes.append(QLatin1String(row.suffix));
    return suffixes;
}

FailureLines readerFailures(const QString& suffix)
{
    const ReaderRow* const row = rowOf(suffix);
    return row ? row->failures() : FailureLines();
}

std::unique_ptr<FileReaderBase> makeReader(const QString& suffix, const QString& filePath)
{
    const ReaderRow* const row = rowOf(suffix);
    return row ? row->make(filePath) : nullptr;
}

} // namespace zr
