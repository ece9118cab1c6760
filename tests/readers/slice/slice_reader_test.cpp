// SPDX-License-Identifier: MIT
#include "tests/readers/slice/slice_reader_test.h"

namespace zr::test
{
namespace
{

// A subclass may form pointers to the members that it shares with every other reader.
struct Inside : FileReaderBase {
    static constexpr QFile FileReaderBase::*kFile = &Inside::m_file;
    static constexpr QImage FileReaderBase::*kImage = &Inside::m_image;
};

QString thrownKey(FileReaderBase& reader)
{
    try {
        reader.readFile();
    } catch (const QString& key) {
        return key;
    }
    return QStringLiteral("no key was thrown");
}

QStringList linesOf(const Failure& failure, const QString& path)
{
    QString text = QString::fromLatin1(failure.text);
    if (failure.path == Failure::Path::OnNextLine)
        text += QLatin1Char('\n');
    if (failure.path != Failure::Path::None)
        text += path;
    return failureLines(failure.number, text);
}

} // namespace

QFile& fileIn(FileReaderBase& reader)
{
    return reader.*Inside::kFile;
}

QImage& imageIn(FileReaderBase& reader)
{
    return reader.*Inside::kImage;
}

void SliceReaderTest::SetUp()
{
    DataFolderTest::SetUp();
    ASSERT_TRUE(m_folder.isValid());
}

QString SliceReaderTest::write(const QByteArray& bytes, const char* name)
{
    QFile file(m_folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return file.fileName();
}

QImage SliceReaderTest::pictureOf(MakeReader makeReader, const QByteArray& bytes)
{
    restartLog();
    const auto reader = makeReader(write(bytes));
    QImage picture = reader->getImage();
    EXPECT_FALSE(fileIn(*reader).isOpen());
    EXPECT_EQ(logMessages(), QStringList());
    return picture;
}

void SliceReaderTest::expectFailure(MakeReader makeReader, const QByteArray& bytes, const Failure& failure)
{
    expectReadings(makeReader, write(bytes), failure, true);
}

void SliceReaderTest::expectOpenFailure(MakeReader makeReader, const QString& path, int number)
{
    expectReadings(makeReader, path, {number, "file open errr ", "openFileErr", Failure::Path::None}, false);
}

void SliceReaderTest::expectReadings(MakeReader makeReader, const QString& path, const Failure& failure, bool isOpen)
{
    {
        const auto reader = makeReader(path);
        imageIn(*reader) = QImage(1, 1, QImage::Format_RGB888); // a picture of an earlier reading
        restartLog();
        EXPECT_EQ(thrownKey(*reader), failure.key);
        EXPECT_EQ(fileIn(*reader).isOpen(), isOpen);
        EXPECT_TRUE(imageIn(*reader).isNull());
        EXPECT_EQ(logMessages(), linesOf(failure, path));
    }
    const auto reader = makeReader(path);
    for (const char* reading : {"first", "second"}) {
        SCOPED_TRACE(reading);
        restartLog();
        EXPECT_TRUE(reader->getImage().isNull());
        EXPECT_FALSE(fileIn(*reader).isOpen());
        EXPECT_EQ(logMessages(), linesOf(failure, path) << QStringLiteral("29 ") + failure.key);
    }
}

void SliceReaderTest::expectBadAlloc(MakeReader makeReader, const QByteArray& bytes)
{
    restartLog();
    const auto reader = makeReader(write(bytes));
    EXPECT_THROW(reader->getImage(), std::bad_alloc);
    EXPECT_EQ(logMessages(), QStringList());
}

} // namespace zr::test
