// SPDX-License-Identifier: MIT
// Files and folders without write or read permission.

#include "core/data_location.h"
#include "tests/reliability/request_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tests/support/unprivileged.h"

#include <QFileInfo>

#include <optional>

namespace zr::test
{
namespace
{

class PermissionsTest : public RequestTest
{
protected:
    void SetUp() override
    {
        RequestTest::SetUp();
        m_user.emplace(QStringList{QFileInfo(dataFolder()).path(), m_folder.path()});
    }

    void TearDown() override
    {
        m_user.reset();
        setMode(thumbnailImageFolder(), 0755);
        setMode(dataFolder(), 0755);
        RequestTest::TearDown();
    }

private:
    std::optional<Unprivileged> m_user;
};

TEST_F(PermissionsTest, WriteProtectedPngIsKept)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    const QByteArray before = readFile(pngOf(path));
    source("a.vrx", 0x001F, 1);
    setMode(pngOf(path), 0444);
    const RequestOutcome outcome = request(path);
    EXPECT_FALSE(outcome.loaded);
    EXPECT_EQ(outcome.log, kStaleEntry + kNotSaved);
    EXPECT_EQ(readFile(pngOf(path)), before);

    setMode(pngOf(path), 0644);
    expectRequestWorks(path);
}

TEST_F(PermissionsTest, PngsInAWriteProtectedFolderCanStillChange)
{
    const QString path = source("a.vrx");
    expectRequestWorks(path);
    setMode(thumbnailImageFolder(), 0555);
    source("a.vrx", 0x001F, 1);
    expectRequestWorks(path);

    const QString other = source("b.vrx");
    EXPECT_EQ(request(other).log, kNewEntry + kNotSaved);
    setMode(thumbnailImageFolder(), 0755);
    expectRequestWorks(other);
}

struct WriteProtection {
    const char* name;
    QString (*path)();
    mode_t mode;
    mode_t usualMode;
};

class WriteProtectionTest : public PermissionsTest, public ::testing::WithParamInterface<WriteProtection>
{
};

TEST_P(WriteProtectionTest, AnswersFromTheCacheOnly)
{
    const WriteProtection& row = GetParam();
    const QString cached = source("a.vrx");
    expectRequestWorks(cached);
    setMode(row.path(), row.mode);
    expectRequestWorks(cached);
    const QString other = source("b.vrx");
    const RequestOutcome outcome = request(other);
    EXPECT_FALSE(outcome.loaded);
    // The log of the earlier requests cannot be removed from a write-protected folder.
    const QStringList lines = kNewEntry + kNotSaved;
    EXPECT_EQ(outcome.log.mid(outcome.log.size() - lines.size()), lines);

    setMode(row.path(), row.usualMode);
    expectRequestWorks(other);
}

// SQLite needs its journal next to the database.
INSTANTIATE_TEST_SUITE_P(Places, WriteProtectionTest,
                         ::testing::Values(WriteProtection{"DataFolder", dataFolder, 0555, 0755},
                                           WriteProtection{"Database", defaultDatabasePath, 0444, 0644}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(PermissionsTest, UnreadableSourceIsReported)
{
    const QString path = source("a.vrx");
    setMode(path, 0);
    const RequestOutcome outcome = request(path);
    EXPECT_FALSE(outcome.loaded);
    EXPECT_EQ(outcome.log, kNewEntry + failureLines(20, "file open errr ") +
                               QStringList({"29 openFileErr", "65  throw ", "73 getImage False"}));

    setMode(path, 0644);
    expectRequestWorks(path);
}

} // namespace
} // namespace zr::test
