#pragma once

#include "core/file_reader_base.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <QTemporaryDir>

#include <functional>

namespace zr::test
{

/// A reader whose file the test can look at.
template <typename Reader>
class Opened final : public Reader
{
public:
    using Reader::Reader;
    QFile& file() { return Reader::m_file; }
    const QImage& image() const { return Reader::m_image; }
    void setImage(const QImage& image) { Reader::m_image = image; }
};

/// A way in which a file is broken, and what the reader makes of it.
struct FailureCase {
    enum class Path { None, OnNextLine, Appended };

    const char* name;
    std::function<QByteArray()> bytes;
    const char* text;
    const char* key;
    int number;
    Path path = Path::OnNextLine;
};

inline std::string caseName(const ::testing::TestParamInfo<FailureCase>& test)
{
    return test.param.name;
}

/// Tests of one slice reader: the file under test is written into a folder of its own.
class SliceReaderTest : public DataFolderTest
{
protected:
    void SetUp() override;

    /// Writes the source file and returns its path.
    QString write(const QByteArray& bytes, const char* name = kSourceName);
    QString path() const { return m_folder.filePath(kSourceName); }

    /// The picture that the reader makes of the bytes; the log must stay empty, and the file must be closed.
    template <typename Reader>
    QImage pictureOf(const QByteArray& bytes)
    {
        restartLog();
        Opened<Reader> reader(write(bytes));
        QImage picture = reader.getImage();
        EXPECT_FALSE(reader.file().isOpen());
        EXPECT_EQ(logMessages(), QStringList());
        return picture;
    }

    /// The failure gives its lines, its key and no picture; the file is closed by the key's handler, not before.
    template <typename Reader>
    void expectFailure(const FailureCase& failure)
    {
        write(failure.bytes());
        const bool opens = QByteArray(failure.key) != "openFileErr";
        {
            Opened<Reader> reader(path());
            reader.setImage(QImage(1, 1, QImage::Format_RGB888)); // a picture of an earlier reading
            restartLog();
            EXPECT_EQ(thrownKey([&reader] { reader.readFile(); }), failure.key);
            EXPECT_EQ(reader.file().isOpen(), opens);
            EXPECT_TRUE(reader.image().isNull());
            EXPECT_EQ(logMessages(), expectedLines(failure));
        }
        Opened<Reader> reader(path());
        restartLog();
        EXPECT_TRUE(reader.getImage().isNull());
        EXPECT_FALSE(reader.file().isOpen());
        EXPECT_EQ(logMessages(), expectedLines(failure) << QStringLiteral("29 ") + failure.key);
    }

    /// A file that is open already is read as it is.
    template <typename Reader>
    void expectOpenFileIsRead(const QByteArray& bytes)
    {
        const QImage picture = pictureOf<Reader>(bytes);
        EXPECT_FALSE(picture.isNull());
        Opened<Reader> reader(path());
        ASSERT_TRUE(reader.file().open(QIODevice::ReadOnly));
        EXPECT_EQ(reader.getImage(), picture);
        EXPECT_FALSE(reader.file().isOpen());
    }

    /// A missing file, and a folder in its place.
    template <typename Reader>
    void expectOpenFailures(int number)
    {
        for (const QString& name : {m_folder.filePath("missing"), m_folder.path()}) {
            restartLog();
            Opened<Reader> reader(name);
            EXPECT_TRUE(reader.getImage().isNull());
            EXPECT_FALSE(reader.file().isOpen());
            EXPECT_EQ(logMessages(), failureLines(number, "file open errr ") << "29 openFileErr");
        }
    }

    /// The allocation failure is no error key.
    template <typename Reader>
    void expectBadAlloc(const QByteArray& bytes)
    {
        restartLog();
        Opened<Reader> reader(write(bytes));
        EXPECT_THROW(reader.getImage(), std::bad_alloc);
        EXPECT_EQ(logMessages(), QStringList());
    }

private:
    static constexpr char kSourceName[] = "source.slice";

    static QString thrownKey(const std::function<void()>& action);
    QStringList expectedLines(const FailureCase& failure) const;

    QTemporaryDir m_folder;
};

} // namespace zr::test
