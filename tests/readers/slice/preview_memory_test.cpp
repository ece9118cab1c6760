// A size field alone must not cost memory. Linux tells how much a process has had.

#include "readers/slice/fdg_file_thumbnail.h"
#include "readers/slice/gf_file_thumbnail.h"
#include "readers/slice/kestravo_file_thumbnail.h"
#include "readers/slice/photons_file_thumbnail.h"
#include "readers/slice/vrx_file_thumbnail.h"
#include "tests/readers/slice/slice_reader_test.h"
#include "tests/readers/slice/test_previews.h"
#include "tools/samples/fdg_bytes.h"
#include "tools/samples/gf_bytes.h"
#include "tools/samples/kestravo_bytes.h"
#include "tools/samples/photons_bytes.h"
#include "tools/samples/vrx_bytes.h"

namespace zr::test
{
namespace
{

using SliceMemoryTest = SliceReaderTest;

// The process' largest resident size so far, in KiB.
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
template <typename Reader>
int growthKib(const QString& validFile, const QString& hostileFile)
{
    Opened<Reader> first(validFile);
    EXPECT_FALSE(first.getImage().isNull());
    const int before = peakKib();
    Opened<Reader> second(hostileFile);
    EXPECT_TRUE(second.getImage().isNull());
    return peakKib() - before;
}

constexpr int kAllowedGrowthKib = 8 * 1024;

struct PreviewFiles {
    QByteArray valid, hugeDataSize;
};

template <typename Parts>
PreviewFiles previewFiles(PartsToBytes<Parts> toBytes)
{
    return {changedFile<Parts>(toBytes, smallPreview(), [](Parts&) {}),
            changedFile<Parts>(toBytes, smallPreview(), [](Parts& parts) { parts.preview.dataSize = 0x7FFFFFFF; })};
}

TEST_F(SliceMemoryTest, HugeDataSizeOfASmallFileCostsNoMemory)
{
    const auto vrx = previewFiles(samples::vrxBytes);
    EXPECT_LE(growthKib<VrxFileThumbnail>(write(vrx.valid, "valid"), write(vrx.hugeDataSize)), kAllowedGrowthKib);
    const auto fdg = previewFiles(samples::fdgBytes);
    EXPECT_LE(growthKib<FdgFileThumbnail>(write(fdg.valid, "valid"), write(fdg.hugeDataSize)), kAllowedGrowthKib);
    const auto gf = previewFiles(samples::gfBytes);
    EXPECT_LE(growthKib<GfFileThumbnail>(write(gf.valid, "valid"), write(gf.hugeDataSize)), kAllowedGrowthKib);
    const auto kestravo = previewFiles(samples::kestravoBytes);
    EXPECT_LE(growthKib<KestravoFileThumbnail>(write(kestravo.valid, "valid"), write(kestravo.hugeDataSize)),
              kAllowedGrowthKib);
}

TEST_F(SliceMemoryTest, HugeLengthsOfASmallPhotonsFileCostNoMemory)
{
    samples::PhotonsParts parts;
    const QString valid = write(samples::photonsBytes(parts), "valid");
    parts.versionLength = 0xFFFFFFFF;
    EXPECT_LE(growthKib<PhotonsFileThumbnail>(valid, write(samples::photonsBytes(parts))), kAllowedGrowthKib);
    parts.versionLength.reset();
    parts.width = 0x7FFFFFFF / 2;
    parts.height = 1;
    EXPECT_LE(growthKib<PhotonsFileThumbnail>(valid, write(samples::photonsBytes(parts))), kAllowedGrowthKib);
}

} // namespace
} // namespace zr::test
