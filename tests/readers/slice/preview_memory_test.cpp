// SPDX-License-Identifier: MIT
// A size field alone must not cost memory. Linux counts how much a process has had.

#include "readers/slice/photons_file_thumbnail.h"
#include "tests/readers/slice/slice_formats.h"
#include "tools/samples/photons_bytes.h"

namespace zr::test
{
namespace
{

using SliceMemoryTest = SliceReaderTest;

// The process' maximum resident size so far, in KiB.
int peakKib()
{
    QFile status(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toInt();
    }
    ADD_FAILURE() << "no VmHWM line";
    return 0;
}

// How much more memory a failing reader has had than one that has read a valid file.
int growthKib(MakeReader makeReader, const QString& validFile, const QString& hostileFile)
{
    EXPECT_FALSE(makeReader(validFile)->getImage().isNull());
    const int before = peakKib();
    EXPECT_TRUE(makeReader(hostileFile)->getImage().isNull());
    return peakKib() - before;
}

constexpr int kAllowedGrowthKib = 8 * 1024;

TEST_F(SliceMemoryTest, HugeDataSizeOfASmallFileCostsNoMemory)
{
    for (const PreviewFormat& format : previewFormats()) {
        samples::PreviewParts hostile = format.coding.small;
        hostile.dataSize = 0x7FFFFFFF;
        const int growth = growthKib(format.makeReader, write(format.valid(), "valid"), write(format.fileOf(hostile)));
        EXPECT_LE(growth, kAllowedGrowthKib) << format.name;
    }
}

TEST_F(SliceMemoryTest, HugeLengthsOfASmallPhotonsFileCostNoMemory)
{
    samples::PhotonsParts parts;
    const QString valid = write(samples::photonsBytes(parts), "valid");
    parts.versionLength = 0xFFFFFFFF;
    EXPECT_LE(growthKib(make<PhotonsFileThumbnail>, valid, write(samples::photonsBytes(parts))), kAllowedGrowthKib);
    parts.versionLength.reset();
    parts.width = 0x7FFFFFFF / 2;
    parts.height = 1;
    EXPECT_LE(growthKib(make<PhotonsFileThumbnail>, valid, write(samples::photonsBytes(parts))), kAllowedGrowthKib);
}

} // namespace
} // namespace zr::test
