#include "host/failure_reason.h"

#include "core/data_location.h"
#include "core/log_file.h"
#include "host/log_tail.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QTemporaryDir>

namespace zr::test
{
namespace
{

class FailureReasonTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        m_path = writeFile(m_folder.filePath("a.stl"), "x");
    }

    QTemporaryDir m_folder;
    QString m_path;
};

TEST_F(FailureReasonTest, FileItselfComesFirst)
{
    EXPECT_EQ(failureReason(m_folder.filePath("missing"), {}), "no such file");
    EXPECT_TRUE(failureReason(m_folder.path(), {}).contains("folder"));
}

TEST_F(FailureReasonTest, LogIsPutIntoWords)
{
    const QStringList before = {"63 app after", "84  throw "};
    const QStringList after = {"29 fileReadLess", "65  throw ", "73 getImage False"};
    const std::pair<QStringList, const char*> cases[] = {
        {{"29 DlpHead_t read less\n/a b/c.vrx", "30  throw "}, "DlpHead_t read less"},
        {{"20 file open errr ", "21  throw "}, "file open errr"},
        {{"60  throw "}, "this kind of file is not supported"},
        {{"143  throw ", "45 modelSizeIsErr"}, "the model has no extent, or is larger than 10000 units"},
        {{"97  throw ", "184 ---------------renderListZero-----------------", "190 renderListZero"},
         "there is nothing to show: the model is empty, damaged or out of range"},
        {{"69  throw "}, "the picture could not be saved in the cache"},
        {{"110 database no open", "69  throw "}, "the cache database cannot be opened"},
    };
    for (const auto& [lines, reason] : cases)
        EXPECT_EQ(failureReason(m_path, before + lines + after), reason);
}

TEST_F(FailureReasonTest, SilentLogNamesItself)
{
    EXPECT_EQ(failureReason(m_path, {}), "no picture came back; see " + defaultLogPath());
}

TEST_F(FailureReasonTest, TailHoldsTheMessagesOfTheLastRequestForThePath)
{
    restartLog();
    logLine(37, "in 2 " + m_path);
    logLine(1, "before the tail");
    const LogTail tail;
    logLine(37, "in 2 " + m_path);
    logLine(2, "earlier attempt");
    logLine(37, "in 2 " + m_path);
    logLine(3, "two\nlines");
    logLine(4, " throw ");
    EXPECT_EQ(tail.messagesOf(m_path), QStringList({"3 two\nlines", "4  throw "}));
}

TEST_F(FailureReasonTest, TailOfADeletedLogIsTheWholeNewOne)
{
    restartLog();
    for (int i = 0; i < 10; ++i)
        logLine(1, "long");
    const LogTail tail;
    restartLog();
    logLine(37, "in 2 " + m_path);
    logLine(2, "new");
    EXPECT_EQ(tail.messagesOf(m_path), QStringList({"2 new"}));
}

} // namespace
} // namespace zr::test
