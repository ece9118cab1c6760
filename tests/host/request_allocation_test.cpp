// Whole requests in which one allocation of the product's code fails, each in turn: whatever comes out, the process
// lives, memory is not lost, and the next request for the file succeeds.

#include "core/data_location.h"
#include "core/log_file.h"
#include "host/request.h"
#include "request/thumbnail_extractor.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>

#include <cstdio>
#include <new>
#include <vector>

namespace zr::test
{
namespace
{

// The samples with the shortest files of their suffixes.
std::vector<samples::SampleFile> smallSamples()
{
    QMap<QString, samples::SampleFile> smallest;
    for (const auto& sample : samples::sampleFiles()) {
        const QString suffix = QFileInfo(sample.name).suffix();
        const auto known = smallest.constFind(suffix);
        if (known == smallest.constEnd() || sample.make().size() < known->make().size())
            smallest.insert(suffix, sample);
    }
    return {smallest.begin(), smallest.end()};
}

std::string sampleName(const ::testing::TestParamInfo<samples::SampleFile>& test)
{
    return QFileInfo(test.param.name).suffix().toStdString();
}

class RequestAllocationTest : public DataFolderTest, public ::testing::WithParamInterface<samples::SampleFile>
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(thumbnailImageFolder()));
        m_path = writeFile(m_folder.filePath(GetParam().name), GetParam().make());
        const QFileInfo file(m_path);
        m_png = thumbnailImageFolder() + file.fileName() + file.suffix() + ".png";
        // Twice, since the first request fills what stays for the life of the process.
        m_picture = picture();
        ASSERT_EQ(picture(), m_picture);
        ASSERT_FALSE(m_picture.isNull());
    }

    // As both hosts do it: the picture is asked for after a failure, too. What the failure threw goes on.
    QImage picture()
    {
        QFile::remove(m_png);
        ThumbnailExtractor extractor;
        try {
            extractor.load(m_path);
        } catch (const std::bad_alloc&) {
            extractor.extract();
            throw;
        }
        return extractor.extract();
    }

    // Models keep an OpenGL context each, which takes its time.
    bool isModel() const { return QStringList({"stl", "obj", "slc"}).contains(QFileInfo(m_path).suffix()); }

    QTemporaryDir m_folder;
    QString m_path;
    QString m_png;
    QImage m_picture;
};

TEST_P(RequestAllocationTest, EachMayFailInTheExtractor)
{
    int made = 0, lost = 0;
    {
        const CountedAllocations all(0);
        picture();
        made = all.made();
        lost = all.alive();
    }
    int thrown = 0;
    for (int number = 1; number <= made; ++number) {
        bool failed = false;
        int alive = 0;
        {
            const CountedAllocations allocations(number);
            try {
                picture();
            } catch (const std::bad_alloc&) {
                failed = true;
                LogFile::end(); // where extract() itself failed
            }
            alive = allocations.alive();
        }
        thrown += failed ? 1 : 0;
        EXPECT_LE(alive, lost) << "allocation " << number << " of " << made << (failed ? " threw" : " did not throw");
        if (!isModel() || number % 16 == 0) {
            ASSERT_EQ(picture(), m_picture) << "after allocation " << number << " of " << made;
        }
    }
    EXPECT_GT(thrown, 0);
    EXPECT_EQ(picture(), m_picture);
    std::printf("%d allocations, %d ended the request with std::bad_alloc, %d stay alive\n", made, thrown, lost);
}

TEST_P(RequestAllocationTest, EachMayFailInTheHost)
{
    int made = 0;
    {
        QFile::remove(m_png);
        const CountedAllocations all(0);
        requestThumbnail(m_path, QString());
        made = all.made();
    }
    for (int number = 1; number <= made; number += isModel() ? 7 : 1) {
        QFile::remove(m_png);
        RequestResult result;
        {
            const CountedAllocations allocations(number);
            EXPECT_NO_THROW(result = requestThumbnail(m_path, QString())) << number << " of " << made;
        }
        EXPECT_TRUE(result.succeeded() || !result.reason.isEmpty()) << number << " of " << made;
        if (!isModel() || number % 16 == 0) {
            ASSERT_EQ(requestThumbnail(m_path, QString()).picture, m_picture) << "after " << number;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, RequestAllocationTest, ::testing::ValuesIn(smallSamples()), sampleName);

} // namespace
} // namespace zr::test
