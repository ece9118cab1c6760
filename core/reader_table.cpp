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
};

// The first row whose suffix matches wins.
// clang-format off
constexpr ReaderRow kReaderTable[] = {
    // Models.
    {"stl", make<StlFileThumbnail>},
    {"obj", make<ObjFileThumbnail>},
    {"slc", make<SlcFileThumbnail>},
    // Slice files.
    {"vrx", make<VrxFileThumbnail>},
    {"vrxdlp", make<VrxFileThumbnail>},
    {"gf", make<GfFileThumbnail>},
    {"fdg", make<FdgFileThumbnail>},
    {"photons", make<PhotonsFileThumbnail>},
    {"svgx", make<SvgxFileThumbnail>},
    {"kestravo", make<KestravoFileThumbnail>},
};
// clang-format on

} // namespace

QStringList supportedSuffixes()
{
    QStringList suffixes;
    for (const ReaderRow& row : kReaderTable)
        suffixes.append(QLatin1String(row.suffix));
    return suffixes;
}

std::unique_ptr<FileReaderBase> makeReader(const QString& suffix, const QString& filePath)
{
    for (const ReaderRow& row : kReaderTable) {
        if (suffix.compare(QLatin1String(row.suffix), Qt::CaseInsensitive) == 0)
            return row.make(filePath);
    }
    return nullptr;
}

} // namespace zr
