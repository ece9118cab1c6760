// SPDX-License-Identifier: MIT
#include "core/file_reader_base.h"

#include "core/log_file.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QTemporaryFile>

#include <memory>
#include <new>

namespace zr::test
{
namespace
{

// A reader whose outcome the test chooses.
class ProbeReader final : public FileReaderBase
{
public:
    using FileReaderBase::FileReaderBase;

    void readFile() override
    {
        ASSERT_TRUE(m_file.open(QIODevice::ReadOnly));
        m_image = partial;
        if (!key.isEmpty())
            throw key;
        if (failure.key)
            fail(failure);
    }
    QImage previewImage() override
    {
        if (!previewKey.isEmpty())
            throw previewKey;
        return picture;
    }
    bool fileIsOpen() const { return m_file.isOpen(); }
    const QImage& image() const { return m_image; }

    QString key;
    QString previewKey;
    ReadFailure failure{{0, "", FailureLine::Rest::None, ""}, nullptr};
    QImage picture;
    QImage partial; // the picture so far when readFile() fails
};

class FileReaderBaseTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        restartLog();
        ASSERT_TRUE(m_source.open());
    }

    QTemporaryFile m_source;
};

TEST_F(FileReaderBaseTest, PictureOfPreviewImageIsReturned)
{
    ProbeReader reader(m_source.fileName());
    reader.picture = QImage(3, 2, QImage::Format_RGB888);
    reader.picture.fill(Qt::red);
    EXPECT_EQ(reader.getImage(), reader.picture);
    EXPECT_EQ(reader.image(), reader.picture);
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(FileReaderBaseTest, NullPictureWithoutAnErrorLogsNothing)
{
    ProbeReader reader(m_source.fileName());
    EXPECT_TRUE(reader.getImage().isNull());
    EXPECT_EQ(logMessages(), QStringList());
}

struct HandledKey {
    const char* key;
    bool openAfterwards;
};

class HandledKeyTest : public FileReaderBaseTest, public ::testing::WithParamInterface<HandledKey>
{
};

TEST_P(HandledKeyTest, MakesANullPictureAndOneLine)
{
    ProbeReader reader(m_source.fileName());
    reader.key = GetParam().key;
    reader.picture = QImage(1, 1, QImage::Format_RGB888);
    EXPECT_TRUE(reader.getImage().isNull());
    EXPECT_EQ(reader.fileIsOpen(), GetParam().openAfterwards);
    EXPECT_EQ(logMessages(), QStringList({QStringLiteral("29 ") + GetParam().key}));
}

INSTANTIATE_TEST_SUITE_P(Keys, HandledKeyTest,
                         ::testing::Values(HandledKey{"openFileErr", true}, HandledKey{"fileReadLess", false},
                                           HandledKey{"filePrevErr", false}),
                         [](const auto& test) { return std::string(test.param.key); });

TEST_F(FileReaderBaseTest, FailureLeavesTheReadersPictureAlone)
{
    ProbeReader reader(m_source.fileName());
    reader.key = "fileReadLess";
    reader.partial = QImage(2, 1, QImage::Format_RGB888);
    reader.partial.fill(Qt::red);
    reader.picture = QImage(1, 1, QImage::Format_RGB888);
    EXPECT_TRUE(reader.getImage().isNull());
    EXPECT_EQ(reader.image(), reader.partial);
}

TEST_F(FileReaderBaseTest, GetImageIsPartOfTheContract)
{
    class Ready final : public FileReaderBase
    {
    public:
        using FileReaderBase::FileReaderBase;
        void readFile() override {}
        QImage previewImage() override { return {}; }
        QImage getImage() override { return QImage(5, 4, QImage::Format_RGB888); }
    };
    const std::unique_ptr<FileReaderBase> reader = std::make_unique<Ready>(m_source.fileName());
    EXPECT_EQ(reader->getImage().size(), QSize(5, 4));
}

TEST_F(FileReaderBaseTest, KeyOfPreviewImageIsHandledToo)
{
    ProbeReader reader(m_source.fileName());
    reader.previewKey = "filePrevErr";
    EXPECT_TRUE(reader.getImage().isNull());
    EXPECT_FALSE(reader.fileIsOpen());
    EXPECT_EQ(logMessages(), QStringList({"29 filePrevErr"}));
}

TEST_F(FileReaderBaseTest, KeyWithoutAHandlerRaisesBadFunctionCall)
{
    for (const char* key : {"memOut", "modelSizeIsErr", "openfileerr"}) {
        restartLog();
        ProbeReader reader(m_source.fileName());
        reader.key = key;
        EXPECT_THROW(reader.getImage(), std::bad_function_call);
        EXPECT_EQ(logMessages().last(), QStringLiteral("29 ") + key);
    }
}

TEST_F(FileReaderBaseTest, FailureLogsItsTextThenThrowThenTheKey)
{
    const QString path = m_source.fileName();
    const std::pair<FailureLine::Rest, QString> cases[] = {
        {FailureLine::Rest::None, "40 message "},
        {FailureLine::Rest::PathOnNextLine, "40 message \n" + path},
        {FailureLine::Rest::PathAppended, "40 message " + path},
    };
    for (const auto& [place, firstLine] : cases) {
        restartLog();
        ProbeReader reader(path);
        reader.failure = {{40, "message ", place, ""}, "fileReadLess"};
        EXPECT_TRUE(reader.getImage().isNull());
        EXPECT_EQ(logMessages(), QStringList({firstLine, "41  throw ", "29 fileReadLess"}));
    }
}

TEST_F(FileReaderBaseTest, StandardExceptionsPassThrough)
{
    class OutOfMemory final : public FileReaderBase
    {
    public:
        using FileReaderBase::FileReaderBase;
        void readFile() override { throw std::bad_alloc(); }
        QImage previewImage() override { return {}; }
    };
    OutOfMemory reader(m_source.fileName());
    EXPECT_THROW(reader.getImage(), std::bad_alloc);
    EXPECT_EQ(logMessages(), QStringList());
}

#ifdef Q_OS_LINUX
TEST_F(FileReaderBaseTest, DestructorClosesAnOpenFile)
{
    const auto openFiles = [] { return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files).size(); };
    const int before = openFiles();
    {
        ProbeReader reader(m_source.fileName());
        reader.getImage();
        EXPECT_TRUE(reader.fileIsOpen());
        EXPECT_EQ(openFiles(), before + 1);
    }
    EXPECT_EQ(openFiles(), before);
}
#endif

} // namespace
} // namespace zr::test
