// SPDX-License-Identifier: MIT
// Whole requests in which one allocation of the product's code fails: whatever comes out, the process lives, memory is
// not lost, and the next request for the file succeeds.

#include "core/data_location.h"
#include "core/log_file.h"
#include "host/request.h"
#include "request/thumbnail_extractor.h"
#include "tests/reliability/setting.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <new>
#include <set>
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

// Which allocations are to fail, by their numbers and one in a request each: the first one of each site that was not
// met before, in the long run all.
class Choice
{
public:
    std::vector<int> among(const std::vector<std::size_t>& sites)
    {
        std::vector<int> numbers;
        for (std::size_t i = 0; i < sites.size(); ++i) {
            if (m_met.insert(sites[i]).second || takesAll())
                numbers.push_back(static_cast<int>(i) + 1);
        }
        return numbers;
    }

    static bool takesAll() { return setting("ZRTHUMB_EVERY_ALLOCATION", 0) != 0; }

private:
    std::set<std::size_t> m_met;
};

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

    void expectRequestWorksAfter(std::size_t failures)
    {
        constexpr std::size_t kFailuresOfModel = 8;
        if (!isModel() || failures % kFailuresOfModel == 1) {
            EXPECT_EQ(picture(), m_picture);
        }
    }

    QTemporaryDir m_folder;
    QString m_path;
    QString m_png;
    QImage m_picture;
};

TEST_P(RequestAllocationTest, EachMayFailInTheExtractor)
{
    static Choice choice;
    std::vector<std::size_t> sites;
    int lost = 0;
    {
        const CountedAllocations all(0);
        picture();
        lost = all.alive();
        sites = all.sites();
    }
    ASSERT_FALSE(sites.empty());
    std::size_t failures = 0;
    int thrown = 0;
    for (const int number : choice.among(sites)) {
        SCOPED_TRACE(number);
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
            EXPECT_GE(allocations.made(), number);
            alive = allocations.alive();
        }
        thrown += failed ? 1 : 0;
        EXPECT_LE(alive, lost) << (failed ? "threw" : "did not throw");
        expectRequestWorksAfter(++failures);
    }
    EXPECT_TRUE(thrown > 0 || failures == 0);
    EXPECT_EQ(picture(), m_picture);
    std::printf("%zu of %zu allocations failed, %d ended the request with std::bad_alloc, %d blocks stay\n", failures,
                sites.size(), thrown, lost);
}

TEST_P(RequestAllocationTest, EachMayFailInTheHost)
{
    static Choice choice;
    std::vector<std::size_t> sites;
    {
        QFile::remove(m_png);
        const CountedAllocations all(0);
        requestThumbnail(m_path, QString());
        sites = all.sites();
    }
    ASSERT_FALSE(sites.empty());
    std::vector<int> numbers = choice.among(sites);
    // What is left of a model's are its reader's, and the host takes all of those alike.
    if (isModel() && !Choice::takesAll())
        numbers.resize(std::min<std::size_t>(numbers.size(), 1));
    std::size_t failures = 0;
    for (const int number : numbers) {
        SCOPED_TRACE(number);
        QFile::remove(m_png);
        RequestResult result;
        {
            const CountedAllocations allocations(number);
            EXPECT_NO_THROW(result = requestThumbnail(m_path, QString()));
            EXPECT_GE(allocations.made(), number);
        }
        EXPECT_TRUE(result.succeeded() || !result.failure.reason.isEmpty());
        expectRequestWorksAfter(++failures);
    }
    EXPECT_EQ(picture(), m_picture);
}

INSTANTIATE_TEST_SUITE_P(Formats, RequestAllocationTest, ::testing::ValuesIn(smallSamples()), sampleName);

} // namespace
} // namespace zr::test
