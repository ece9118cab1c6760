// SPDX-License-Identifier: MIT
// Source files that change, vanish or fail while they are read; names that are not files.

#include "core/data_location.h"
#include "tests/reliability/fault_hooks.h"
#include "tests/reliability/request_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

#include <cerrno>
#include <chrono>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

namespace zr::test
{
namespace
{

// Slice files are read by their previews' size, models in blocks of 64 KiB.
constexpr int kReadsTried = 2;

class SourceFaultTest : public RequestTest, public ::testing::WithParamInterface<samples::SampleFile>
{
protected:
    void SetUp() override
    {
        RequestTest::SetUp();
        m_path = sourceOf(GetParam().name, GetParam().make());
        m_picture = knownPicture();
        ASSERT_FALSE(m_picture.isNull());
    }

    // Drawn once for all tests.
    QImage knownPicture() const
    {
        static QHash<QString, QImage> pictures;
        QImage& picture = pictures[GetParam().name];
        if (picture.isNull())
            picture = pictureOf(m_path);
        return picture;
    }

    // A fault of every single one of the first reads, in a request each; `check` sees what became of it.
    void atEachRead(const std::function<void(Fault&)>& describe,
                    const std::function<void(const RequestOutcome&)>& check)
    {
        for (int read = 0; read < kReadsTried; ++read) {
            sourceOf(GetParam().name, GetParam().make());
            QDir(thumbnailImageFolder()).removeRecursively();
            Fault fault{SystemCall::Read, m_path.toLocal8Bit()};
            fault.skipped = read;
            fault.count = 1;
            describe(fault);
            const InjectedFault injected(fault);
            const RequestOutcome outcome = request(m_path);
            if (injected.hits() == 0) {
                EXPECT_GT(read, 0) << "no read at all";
                break; // the file needs no more reads
            }
            check(outcome);
        }
        sourceOf(GetParam().name, GetParam().make());
        // What was recorded meanwhile may look fresh until the file changes.
        moveTimeStamp(m_path, 1000);
        const RequestOutcome after = request(m_path);
        EXPECT_TRUE(after.loaded);
        EXPECT_EQ(after.picture, m_picture);
    }

    static void expectPictureOrReason(const RequestOutcome& outcome)
    {
        EXPECT_NE(outcome.loaded, outcome.picture.isNull());
        if (!outcome.loaded) {
            EXPECT_EQ(outcome.log.mid(outcome.log.size() - 2), QStringList({"65  throw ", "73 getImage False"}));
        }
    }

    QString m_path;
    QImage m_picture;
};

std::string sampleName(const ::testing::TestParamInfo<samples::SampleFile>& row)
{
    return QString(row.param.name).replace(QRegularExpression("\\W"), "_").toStdString();
}

TEST_P(SourceFaultTest, GrowingFile)
{
    atEachRead(
        [this](Fault& fault) {
            fault.before = [this] {
                QFile file(m_path);
                ASSERT_TRUE(file.open(QIODevice::Append));
                file.write(QByteArray(100000, 'x'));
            };
        },
        expectPictureOrReason);
}

TEST_P(SourceFaultTest, ShrinkingFile)
{
    for (const qint64 left : {0, 3000}) {
        atEachRead([this, left](Fault& fault) { fault.before = [this, left] { QFile::resize(m_path, left); }; },
                   expectPictureOrReason);
    }
}

// The open file is still the old one.
TEST_P(SourceFaultTest, ReplacedFile)
{
    atEachRead(
        [this](Fault& fault) {
            fault.before = [this] {
                QFile::remove(m_path);
                sourceOf(GetParam().name, "something else");
            };
        },
        [this](const RequestOutcome& outcome) {
            EXPECT_TRUE(outcome.loaded);
            EXPECT_EQ(outcome.picture, m_picture);
        });
}

TEST_P(SourceFaultTest, DeletedFile)
{
    atEachRead([this](Fault& fault) { fault.before = [this] { QFile::remove(m_path); }; },
               [this](const RequestOutcome& outcome) {
                   EXPECT_TRUE(outcome.loaded);
                   EXPECT_EQ(outcome.picture, m_picture);
               });
}

TEST_P(SourceFaultTest, ReadError)
{
    atEachRead([](Fault& fault) { fault.error = EIO; }, expectPictureOrReason);
}

TEST_P(SourceFaultTest, InterruptedRead)
{
    atEachRead([](Fault& fault) { fault.error = EINTR; },
               [this](const RequestOutcome& outcome) {
                   EXPECT_TRUE(outcome.loaded);
                   EXPECT_EQ(outcome.picture, m_picture);
               });
}

// As over a network: few bytes at a time, with delays.
TEST_P(SourceFaultTest, SlowFile)
{
    static constexpr int kSlowReads = 20;
    static constexpr int kMilliseconds = 10;
    Fault fault{SystemCall::Read, m_path.toLocal8Bit()};
    fault.maxBytes = 1000;
    int reads = 0;
    fault.before = [&reads] {
        if (reads++ < kSlowReads)
            std::this_thread::sleep_for(std::chrono::milliseconds(kMilliseconds));
    };
    const InjectedFault injected(fault);
    QElapsedTimer timer;
    timer.start();
    const RequestOutcome outcome = request(m_path);
    EXPECT_TRUE(outcome.loaded);
    EXPECT_EQ(outcome.picture, m_picture);
    EXPECT_GT(injected.hits(), 1);
    EXPECT_GE(timer.elapsed(), std::min(injected.hits(), kSlowReads) * kMilliseconds);
}

INSTANTIATE_TEST_SUITE_P(Source, SourceFaultTest, ::testing::ValuesIn(samples::sampleFiles()), sampleName);

struct NoFile {
    const char* name;
    std::function<void(const char*)> make;
};

std::ostream& operator<<(std::ostream& out, const NoFile& row)
{
    return out << row.name;
}

const NoFile kNoFiles[] = {
    {"Nothing", [](const char*) {}},
    {"Folder", [](const char* path) { EXPECT_EQ(mkdir(path, 0755), 0); }},
    {"Pipe", [](const char* path) { EXPECT_EQ(mkfifo(path, 0644), 0); }},
    {"EndlessDevice", [](const char* path) { EXPECT_EQ(symlink("/dev/zero", path), 0); }},
    {"Loop", [](const char* path) { EXPECT_EQ(symlink(path, path), 0); }},
    {"DanglingLink", [](const char* path) { EXPECT_EQ(symlink("/nowhere/at/all", path), 0); }},
};

class NoFileTest : public RequestTest, public ::testing::WithParamInterface<NoFile>
{
};

TEST_P(NoFileTest, IsLeftAlone)
{
    for (const char* name : {"a.vrx", "a.photons", "a.stl", "a.obj", "a.slc"}) {
        const QString path = m_folder.filePath(name);
        GetParam().make(QFile::encodeName(path).constData());
        const RequestOutcome outcome = request(path);
        EXPECT_FALSE(outcome.loaded);
        EXPECT_TRUE(outcome.picture.isNull());
        EXPECT_EQ(outcome.log, QStringList());
    }
}

INSTANTIATE_TEST_SUITE_P(Source, NoFileTest, ::testing::ValuesIn(kNoFiles),
                         [](const auto& row) { return std::string(row.param.name); });

class SourceTest : public RequestTest
{
};

TEST_F(SourceTest, ClockSetBackMakesANewPictureOnce)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    for (const int seconds : {-1, -86400, -86400 * 365}) {
        moveTimeStamp(path, seconds);
        EXPECT_EQ(request(path).log, kStaleEntry) << seconds;
        EXPECT_EQ(request(path).log, QStringList()) << seconds;
    }
}

void setTimeStamp(const QString& path, time_t seconds)
{
    const utimbuf times{seconds, seconds};
    ASSERT_EQ(utime(QFile::encodeName(path).constData(), &times), 0);
}

TEST_F(SourceTest, FutureTimeStampIsLikeAnyOther)
{
    const QString path = source("a.vrx");
    setTimeStamp(path, time_t{4} << 30);
    expectRequestWorks(path);
    EXPECT_EQ(request(path).log, QStringList());
}

// The database cannot store such a number exactly.
TEST_F(SourceTest, TimeStampBeforeTheEpochMakesANewPictureEachTime)
{
    const QString path = source("a.vrx");
    setTimeStamp(path, -1000000);
    expectRequestWorks(path);
    expectRequestWorks(path);
    EXPECT_EQ(request(path).log, kStaleEntry);
}

TEST_F(SourceTest, LinkToAFileIsLikeTheFile)
{
    const QString target = source("target.vrx");
    const QString path = m_folder.filePath("link.vrx");
    ASSERT_TRUE(QFile::link(target, path));
    expectRequestWorks(path);
}

} // namespace
} // namespace zr::test
