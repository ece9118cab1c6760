// SPDX-License-Identifier: MIT
// Every sample of a slice format is a valid file: its reader makes a picture of it.

#include "readers/slice/fdg_file_thumbnail.h"
#include "readers/slice/gf_file_thumbnail.h"
#include "readers/slice/kestravo_file_thumbnail.h"
#include "readers/slice/photons_file_thumbnail.h"
#include "readers/slice/svgx_file_thumbnail.h"
#include "readers/slice/vrx_file_thumbnail.h"
#include "tests/readers/slice/slice_reader_test.h"
#include "tools/samples/sample_files.h"

#include <QFileInfo>
#include <QSet>

#include <map>

namespace zr::test
{
namespace
{

using SampleFilesTest = SliceReaderTest;

bool isOneColour(const QImage& picture)
{
    QImage plain(picture.size(), picture.format());
    plain.fill(picture.pixel(0, 0));
    return picture == plain;
}

TEST_F(SampleFilesTest, EachSuffixHasASampleAndEachSampleAPicture)
{
    const std::map<QString, MakeReader> readers = {
        {"vrx", make<VrxFileThumbnail>},
        {"vrxdlp", make<VrxFileThumbnail>},
        {"kestravo", make<KestravoFileThumbnail>},
        {"fdg", make<FdgFileThumbnail>},
        {"gf", make<GfFileThumbnail>},
        {"photons", make<PhotonsFileThumbnail>},
        {"svgx", make<SvgxFileThumbnail>},
    };
    QSet<QString> suffixes;
    for (const auto& sample : samples::sampleFiles()) {
        const QString suffix = QFileInfo(sample.name).suffix();
        const auto reader = readers.find(suffix);
        if (reader == readers.end())
            continue;
        const QImage picture = pictureOf(reader->second, sample.make());
        EXPECT_GE(picture.width(), 400) << sample.name;
        EXPECT_FALSE(isOneColour(picture)) << sample.name;
        suffixes.insert(suffix);
    }
    EXPECT_EQ(static_cast<std::size_t>(suffixes.size()), readers.size());
}

TEST_F(SampleFilesTest, BytesAreTheSameAtEveryCall)
{
    QSet<QString> names;
    for (const auto& sample : samples::sampleFiles()) {
        EXPECT_EQ(sample.make(), sample.make()) << sample.name;
        names.insert(sample.name);
    }
    EXPECT_EQ(static_cast<std::size_t>(names.size()), samples::sampleFiles().size());
}

} // namespace
} // namespace zr::test
