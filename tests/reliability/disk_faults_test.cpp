// SPDX-License-Identifier: MIT
// A disk that is full, read-only or broken, and folders that come and go.

#include "core/data_location.h"
#include "tests/reliability/fault_hooks.h"
#include "tests/reliability/request_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/photons_bytes.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <random>

namespace zr::test
{
namespace
{

constexpr char kData[] = "/KESTRAVO_Thumbnail";
constexpr char kLog[] = "/thumbnail.log";
constexpr char kDatabase[] = "/thumbnail.db";
constexpr char kPictures[] = "/thumbnailImage/";

struct DiskFault {
    const char* name;
    Fault fault;
    bool succeeds;
    QStringList log;
    bool withoutDatabase = false; ///< the request also has to make the database
};

std::ostream& operator<<(std::ostream& out, const DiskFault& row)
{
    return out << row.name;
}

Fault fault(SystemCall call, const char* pathPart, int error, qint64 room = -1)
{
    Fault fault{call, pathPart, error};
    fault.room = room;
    return fault;
}

const QStringList kNewNotSaved = kNewEntry + kNotSaved;
// Logged by each use of the database: the job's and extract's.
const QStringList kNoTable = {"106 database create faild"};
const QStringList kNotOpen = {"110 database no open"};

const DiskFault kDiskFaults[] = {
    {"PngDiskFull", fault(SystemCall::Write, kPictures, ENOSPC), false, kNewNotSaved},
    {"PngDiskFullInTheMiddle", fault(SystemCall::Write, kPictures, ENOSPC, 700), false, kNewNotSaved},
    {"PngFolderReadOnly", fault(SystemCall::OpenToWrite, kPictures, EROFS), false, kNewNotSaved},
    {"PngFolderTakesNoNewFiles", fault(SystemCall::OpenToWrite, "/thumbnailImage/.", EACCES), true, kNewEntry},
    {"PngKeepsItsTemporaryName", fault(SystemCall::Rename, kPictures, EPERM), true, kNewEntry},
    {"RowDiskFull", fault(SystemCall::Write, kDatabase, ENOSPC), false, kNewNotSaved},
    {"RowDiskFullInTheMiddle", fault(SystemCall::Write, kDatabase, ENOSPC, 6000), false, kNewNotSaved},
    {"RowNotOnTheDisk", fault(SystemCall::Sync, kDatabase, EIO), false, kNewNotSaved},
    {"TableDiskFull", fault(SystemCall::Write, kDatabase, ENOSPC), false, kNoTable + kNewNotSaved + kNoTable, true},
    {"DatabaseReadOnly", fault(SystemCall::OpenToWrite, kDatabase, EROFS), false, kNewNotSaved},
    {"DatabaseUnreadable", fault(SystemCall::Read, kDatabase, EIO), false, kNotOpen + kNewNotSaved + kNotOpen},
    {"LogDiskFull", fault(SystemCall::Write, kLog, ENOSPC), true, {}},
    {"LogReadOnly", fault(SystemCall::OpenToWrite, kLog, EROFS), true, {}},
    {"DataFolderReadOnly", fault(SystemCall::OpenToWrite, kData, EROFS), false, {}},
    {"DiskFull", fault(SystemCall::Write, kData, ENOSPC), false, {}},
};

class DiskFaultTest : public RequestTest, public ::testing::WithParamInterface<DiskFault>
{
};

TEST_P(DiskFaultTest, IsReportedAndTheNextRequestWorks)
{
    const DiskFault& row = GetParam();
    const QString path = source("a.vrx");
    if (row.withoutDatabase) {
        ASSERT_TRUE(QFile::remove(defaultDatabasePath()));
    }
    {
        const InjectedFault injected(row.fault);
        const RequestOutcome outcome = request(path);
        EXPECT_GT(injected.hits(), 0);
        EXPECT_EQ(outcome.loaded, row.succeeds);
        EXPECT_EQ(outcome.picture, row.succeeds ? pictureOf(path) : QImage());
        EXPECT_EQ(outcome.log, row.log);
    }
    expectRequestWorks(path);
    EXPECT_EQ(cachedFiles(), QStringList({"a.vrxvrx.png", "earlier.vrxvrx.png"}));
}

INSTANTIATE_TEST_SUITE_P(Disk, DiskFaultTest, ::testing::ValuesIn(kDiskFaults),
                         [](const auto& row) { return std::string(row.param.name); });

class DiskTest : public RequestTest
{
protected:
    // A picture that does not compress, so that its PNG is written in several pieces.
    QString largeSource() const
    {
        QImage noise(200, 200, QImage::Format_RGB32);
        std::minstd_rand random(1);
        for (int y = 0; y < noise.height(); ++y)
            for (int x = 0; x < noise.width(); ++x)
                noise.setPixel(x, y, static_cast<QRgb>(random()));
        return sourceOf("large.photons", samples::photonsBytes(samples::photonsPicture(noise)));
    }

    static void removeDataFolder() { QDir(dataFolder()).removeRecursively(); }

    // As for a new user: the first request makes the folder.
    static void expectSecondRequestWorks(const QString& path)
    {
        EXPECT_FALSE(request(path).loaded);
        expectRequestWorks(path);
    }
};

TEST_F(DiskTest, OldPictureSurvivesAFullDisk)
{
    for (const qint64 room : {0, 700, 20000}) {
        const QString path = largeSource();
        expectRequestWorks(path);
        moveTimeStamp(path, 1000);
        const QByteArray before = readFile(pngOf(path));
        ASSERT_GT(before.size(), 20000);
        const QString row = rowOf(path);
        {
            const InjectedFault injected(fault(SystemCall::Write, kPictures, ENOSPC, room));
            const RequestOutcome outcome = request(path);
            EXPECT_FALSE(outcome.loaded);
            EXPECT_EQ(outcome.log, kStaleEntry + kNotSaved);
            EXPECT_EQ(readFile(pngOf(path)), before);
            EXPECT_EQ(rowOf(path), row);
        }
        EXPECT_EQ(request(path).log, kStaleEntry);
        expectRequestWorks(path);
    }
}

// A truncated file would be taken for a fresh picture from then on.
TEST_F(DiskTest, DeletedPictureStaysMissingOnAFullDisk)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    ASSERT_TRUE(QFile::remove(pngOf(path)));
    {
        const InjectedFault injected(fault(SystemCall::Write, kPictures, ENOSPC, 700));
        EXPECT_FALSE(request(path).loaded);
        EXPECT_FALSE(QFileInfo::exists(pngOf(path)));
    }
    expectRequestWorks(path);
}

TEST_F(DiskTest, UnreadablePictureIsReturnedAgainLater)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    {
        const InjectedFault injected(fault(SystemCall::Read, kPictures, EIO));
        const RequestOutcome outcome = request(path);
        EXPECT_TRUE(outcome.loaded);
        EXPECT_TRUE(outcome.picture.isNull());
    }
    expectRequestWorks(path);
}

TEST_F(DiskTest, DataFolderThatCannotBeCreatedFails)
{
    const QString path = source("a.vrx");
    removeDataFolder();
    {
        const InjectedFault injected(fault(SystemCall::MakeFolder, kData, EROFS));
        EXPECT_FALSE(request(path).loaded);
        EXPECT_GT(injected.hits(), 0);
        EXPECT_FALSE(QFileInfo::exists(dataFolder()));
    }
    expectSecondRequestWorks(path);
}

TEST_F(DiskTest, PngFolderThatCannotBeCreatedFails)
{
    const QString path = source("a.vrx");
    ASSERT_TRUE(QDir(thumbnailImageFolder()).removeRecursively());
    {
        const InjectedFault injected(fault(SystemCall::MakeFolder, "/thumbnailImage", ENOSPC));
        EXPECT_EQ(request(path).log, kNewNotSaved);
        EXPECT_GT(injected.hits(), 0);
    }
    expectRequestWorks(path);
}

TEST_F(DiskTest, FileInPlaceOfTheDataFolderFails)
{
    const QString path = source("a.vrx");
    removeDataFolder();
    writeFile(dataFolder(), "in the way");
    EXPECT_FALSE(request(path).loaded);
    ASSERT_TRUE(QFile::remove(dataFolder()));
    expectSecondRequestWorks(path);
}

struct Moment {
    const char* name;
    SystemCall call;
    const char* pathPart;
};

// The log is removed with the folder, so there are no lines to check.
TEST_F(DiskTest, DataFolderRemovedBetweenTwoStepsFails)
{
    for (const Moment& moment : {Moment{"while the source is read", SystemCall::Read, "/a.vrx"},
                                 {"before the picture is saved", SystemCall::OpenToWrite, kPictures},
                                 {"while the picture is saved", SystemCall::Write, kPictures},
                                 {"after the picture is saved", SystemCall::OpenToWrite, "/thumbnail.db-journal"}}) {
        const QString path = source("a.vrx");
        request(path);
        expectRequestWorks(path);
        moveTimeStamp(path, 1000);
        Fault removal{moment.call, moment.pathPart};
        removal.count = 1;
        removal.before = removeDataFolder;
        {
            const InjectedFault injected(removal);
            EXPECT_FALSE(request(path).loaded) << moment.name;
            EXPECT_EQ(injected.hits(), 1) << moment.name;
        }
        expectSecondRequestWorks(path);
    }
}

} // namespace
} // namespace zr::test
