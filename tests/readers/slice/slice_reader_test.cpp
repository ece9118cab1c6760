#include "tests/readers/slice/slice_reader_test.h"

namespace zr::test
{

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

QString SliceReaderTest::thrownKey(const std::function<void()>& action)
{
    try {
        action();
    } catch (const QString& key) {
        return key;
    }
    return QStringLiteral("nothing was thrown");
}

QStringList SliceReaderTest::expectedLines(const FailureCase& failure) const
{
    QString text = QString::fromLatin1(failure.text);
    if (failure.path == FailureCase::Path::OnNextLine)
        text += QLatin1Char('\n');
    if (failure.path != FailureCase::Path::None)
        text += path();
    return failureLines(failure.number, text);
}

} // namespace zr::test
