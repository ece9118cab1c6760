// SPDX-License-Identifier: MIT
// Users' registries and caches depend on the table of formats.

#include "readers/mesh/obj_file_thumbnail.h"
#include "readers/mesh/slc_file_thumbnail.h"
#include "readers/mesh/stl_file_thumbnail.h"
#include "readers/reader_table.h"
#include "readers/slice/fdg_file_thumbnail.h"
#include "readers/slice/gf_file_thumbnail.h"
#include "readers/slice/kestravo_file_thumbnail.h"
#include "readers/slice/photons_file_thumbnail.h"
#include "readers/slice/svgx_file_thumbnail.h"
#include "readers/slice/vrx_file_thumbnail.h"
#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

// In the order of registration.
TEST(FormatsTest, TheServerIsRegisteredForElevenSuffixes)
{
    EXPECT_EQ(registeredSuffixes(), QStringList({"stl", "slc", "vrxdlp", "vrx", "fdg", "gf", "photon", "photons",
                                                 "svgx", "kestravo", "obj"}));
}

TEST(FormatsTest, AllRegisteredSuffixesExceptPhotonHaveAReader)
{
    QStringList unread = registeredSuffixes();
    for (const QString& suffix : supportedSuffixes())
        EXPECT_EQ(unread.removeAll(suffix), 1) << suffix.toStdString() << " is read but not registered";
    EXPECT_EQ(unread, QStringList("photon"));
}

TEST(FormatsTest, ModelsAreThoseThatAreDrawn)
{
    QStringList models;
    for (const QString& suffix : registeredSuffixes())
        if (isModel(suffix))
            models.append(suffix);
    EXPECT_EQ(models, QStringList({"stl", "slc", "obj"}));
    EXPECT_TRUE(isModel("STL"));
    EXPECT_FALSE(isModel("txt"));
}

struct SuffixReader {
    const char* suffix;
    bool (*isOfType)(const FileReaderBase* reader);
};

QStringList sorted(QStringList suffixes)
{
    suffixes.sort();
    return suffixes;
}

template <typename Reader>
bool isA(const FileReaderBase* reader)
{
    return dynamic_cast<const Reader*>(reader) != nullptr;
}

TEST(FormatsTest, EachSuffixHasItsReader)
{
    const SuffixReader rows[] = {
        {"stl", isA<StlFileThumbnail>},    {"obj", isA<ObjFileThumbnail>},
        {"slc", isA<SlcFileThumbnail>},    {"vrx", isA<VrxFileThumbnail>},
        {"vrxdlp", isA<VrxFileThumbnail>}, {"gf", isA<GfFileThumbnail>},
        {"fdg", isA<FdgFileThumbnail>},    {"photons", isA<PhotonsFileThumbnail>},
        {"svgx", isA<SvgxFileThumbnail>},  {"kestravo", isA<KestravoFileThumbnail>},
    };
    QStringList suffixes;
    for (const SuffixReader& row : rows) {
        const QString suffix = row.suffix;
        EXPECT_TRUE(row.isOfType(makeReader(suffix, "x").get())) << row.suffix;
        EXPECT_TRUE(row.isOfType(makeReader(suffix.toUpper(), "x").get())) << row.suffix;
        EXPECT_FALSE(readerFailures(suffix).empty()) << row.suffix;
        suffixes.append(suffix);
    }
    EXPECT_EQ(sorted(supportedSuffixes()), sorted(suffixes));
    for (const char* suffix : {"", "photon", "txt", "vrx "})
        EXPECT_EQ(makeReader(suffix, "x"), nullptr) << suffix;
}

} // namespace
} // namespace zr::test
