// SPDX-License-Identifier: MIT
#include "host/name_list.h"

#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

const bool kIsWindows = QDir::separator() == '\\';

struct NameCase {
    const char* title;
    QByteArray bytes;
    char separator;
    QStringList names;
};

// What is in literals up to their last byte, zero bytes included.
template <std::size_t Size>
QByteArray bytesOf(const char (&literal)[Size])
{
    return QByteArray(literal, Size - 1);
}

const NameCase kCases[] = {
    {"Nothing", "", '\n', {}},
    {"Lines", "a.stl\nb c.stl\n", '\n', {"a.stl", "b c.stl"}},
    {"LastLineWithoutEnd", "a.stl\nb.stl", '\n', {"a.stl", "b.stl"}},
    {"EmptyLines", "\n\na.stl\n\n\nb.stl\n\n", '\n', {"a.stl", "b.stl"}},
    {"BlanksCount", " a.stl \n\t\n", '\n', {" a.stl ", "\t"}},
    {"QuotesCount", "\"a.stl\"\n'b'\n#c\n-q\n", '\n', {"\"a.stl\"", "'b'", "#c", "-q"}},
    {"LinesOfWindows", "a.stl\r\nb.stl\r\n\r\nc.stl\r", '\n',
     kIsWindows ? QStringList{"a.stl", "b.stl", "c.stl"} : QStringList{"a.stl\r", "b.stl\r", "\r", "c.stl\r"}},
    {"Mark", "\xEF\xBB\xBFpart.stl\nb.stl\n", '\n', {"part.stl", "b.stl"}},
    {"MarkAlone", "\xEF\xBB\xBF", '\n', {}},
    {"Utf8",
     "\xe4\xb8\xad\n\xf0\x9f\x8e\xb2.stl",
     '\n',
     {QString::fromUtf8("\xe4\xb8\xad"), QString::fromUtf8("\xf0\x9f\x8e\xb2.stl")}},
    {"ZeroBytes", bytesOf("a.stl\0two\nlines.stl\0"), '\0', {"a.stl", "two\nlines.stl"}},
    {"LastZeroByteMissing", bytesOf("a.stl\0b.stl"), '\0', {"a.stl", "b.stl"}},
    {"EmptyNamesBetweenZeroBytes", bytesOf("\0\0a.stl\0\0b.stl\0\0"), '\0', {"a.stl", "b.stl"}},
    {"ZeroBytesKeepEveryOtherByte", bytesOf("a\r\0\n\0"), '\0', {"a\r", "\n"}},
    {"LinesForZeroBytesAreOneName", "a.stl\nb.stl\n", '\0', {"a.stl\nb.stl\n"}},
};

class NameListTest : public ::testing::Test
{
protected:
    // Reads a list of these bytes; m_names gets its names.
    QString read(const QByteArray& bytes, char separator) { return readFrom(writeFile(m_list, bytes), separator); }

    QString readFrom(const QString& path, char separator)
    {
        m_names.clear();
        return readNames(path, separator, [this](const QString& name) { m_names += name; });
    }

    QString fault(const QString& reason) const { return "--files-from " + m_list + ": " + reason; }

    QTemporaryDir m_folder;
    const QString m_list = m_folder.filePath("list.txt");
    QStringList m_names;
};

TEST_F(NameListTest, NamesEndWithTheSeparator)
{
    for (const NameCase& row : kCases) {
        SCOPED_TRACE(row.title);
        EXPECT_EQ(read(row.bytes, row.separator), "");
        EXPECT_EQ(m_names, row.names);
    }
}

// Files are read in blocks, whose borders may be anywhere.
TEST_F(NameListTest, BordersOfBlocksAreNoBordersOfNames)
{
    constexpr int kBlockBytes = 1 << 16;
    for (const char separator : {'\n', '\0'}) {
        for (const int more : {-2, -1, 0, 1, 2}) {
            const QByteArray name(kBlockBytes + more, 'n');
            EXPECT_EQ(read(name + separator + "b" + separator + name + separator, separator), "");
            EXPECT_EQ(m_names, QStringList({name, "b", name})) << more;
        }
        QByteArray many;
        QStringList expected;
        for (int i = 0; i < 50000; ++i) {
            expected += QStringLiteral("folder/%1.stl").arg(i);
            many += expected.last().toUtf8() + separator;
        }
        EXPECT_EQ(read(many, separator), "");
        EXPECT_EQ(m_names, expected);
    }
}

TEST_F(NameListTest, OtherFilesAreRefused)
{
    const QByteArray utf16 = bytesOf("a\0.\0s\0t\0l\0\n\0");
    const struct {
        QByteArray bytes;
        char separator;
        const char* reason;
    } cases[] = {
        {"\xFF\xFE" + utf16, '\n', "its names are in UTF-16; save them as UTF-8"},
        {bytesOf("\xFE\xFF\0a\0\n"), '\n', "its names are in UTF-16; save them as UTF-8"},
        {bytesOf("a.stl\0b.stl\0"), '\n', "its names end with zero bytes: add -0"},
        {"a.stl\nb.stl\n" + QByteArray(1 << 16, 'n') + bytesOf("\0"), '\n', "its names end with zero bytes: add -0"},
        {QByteArray(200000, 'n'), '\n', "this is not a list of names, or they do not end as -0 says"},
        {"a.stl\n" + QByteArray(1 << 20, 'n') + "\nb.stl\n", '\n',
         "this is not a list of names, or they do not end as -0 says"},
        {QByteArray("folder/name.stl\n").repeated(20000), '\0',
         "this is not a list of names, or they do not end as -0 says"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(read(row.bytes, row.separator), fault(row.reason)) << row.bytes.left(20).toHex(' ').toStdString();
}

// More than any path has.
TEST_F(NameListTest, NamesMayHave128KiB)
{
    const QByteArray name(1 << 17, 'n');
    EXPECT_EQ(read(name + "\nb", '\n'), "");
    EXPECT_EQ(m_names, QStringList({name, "b"}));
}

TEST_F(NameListTest, MissingFilesAndFoldersAreReported)
{
    const QString missing = m_folder.filePath("missing");
    EXPECT_TRUE(readFrom(missing, '\n').startsWith("--files-from " + missing + ": "));
    EXPECT_EQ(readFrom(m_folder.path(), '\n'), "--files-from " + m_folder.path() + ": it is a folder");
    EXPECT_EQ(m_names, QStringList());
    // One line for the user, whatever the name.
    const QString text = readFrom("two\nlines\x1b", '\n');
    EXPECT_FALSE(text.contains('\n') || text.contains('\x1b')) << text.toStdString();
}

} // namespace
} // namespace zr::test
