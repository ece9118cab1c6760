// SPDX-License-Identifier: MIT
#include "host/name_codec.h"

#include "host/folder_entries.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

class NameCodecTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { keepNamesThatAreNotText(); }

    static void expectKept(const QByteArray& bytes)
    {
        ASSERT_EQ(QFile::encodeName(QFile::decodeName(bytes)), bytes) << bytes.toHex(' ').toStdString();
    }
};

TEST_F(NameCodecTest, EveryByteAndPairOfBytesIsKept)
{
    for (int first = 1; first < 256; ++first) {
        expectKept(QByteArray(1, static_cast<char>(first)));
        for (int second = 1; second < 256; ++second)
            expectKept(QByteArray("a") + static_cast<char>(first) + static_cast<char>(second));
    }
}

// Every lead byte with following bytes at the borders of what UTF-8 allows.
TEST_F(NameCodecTest, LongerSequencesAreKept)
{
    constexpr char kBytes[] = "\x01\x7f\x80\x8f\x90\x9f\xa0\xbf\xc0\xed\xf4\xff";
    for (int lead = 0xC0; lead < 256; ++lead) {
        for (const char second : QByteArray(kBytes)) {
            for (const char third : QByteArray(kBytes)) {
                const QByteArray start = QByteArray(1, static_cast<char>(lead)) + second + third;
                expectKept(start);
                for (const char fourth : QByteArray(kBytes)) {
                    expectKept(start + fourth);
                    expectKept(start + fourth + ".stl");
                }
            }
        }
    }
}

TEST_F(NameCodecTest, TextIsAsInUtf8)
{
    const char* const texts[] = {
        "",
        "part.stl",
        "two\nlines",
        "t\xc3\xbcr \xe4\xb8\xad\xe6\x96\x87 \xf0\x9f\x8e\xb2.stl",
        "\xc2\x80\xdf\xbf\xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf", // the first and last of each length
        "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf",
        "\xef\xbf\xbd", // U+FFFD itself
        "a\xef\xbb\xbf",
    };
    for (const char* const text : texts) {
        EXPECT_EQ(QFile::decodeName(text), QString::fromUtf8(text)) << text;
        EXPECT_EQ(QString::fromUtf8(text).toLocal8Bit(), text);
    }
}

TEST_F(NameCodecTest, OtherBytesAreLoneSurrogates)
{
    const struct {
        QByteArray bytes;
        QString text;
    } cases[] = {
        {"a\xff.stl", QString("a") + QChar(0xDCFF) + ".stl"},
        {"\xc3", QString(QChar(0xDCC3))},
        {"\xc3\xbc\xc3", QString(QChar(0xFC)) + QChar(0xDCC3)},
        // A mark at the start
        {"\xef\xbb\xbfname", QString(QChar(0xFEFF)) + "name"},
        {"\xef\xbb\xbf\xff", QString(QChar(0xFEFF)) + QChar(0xDCFF)},
        // Longer than necessary
        {"\xc0\xaf", QString(QChar(0xDCC0)) + QChar(0xDCAF)},
        {"\xe0\x80\xaf", QString(QChar(0xDCE0)) + QChar(0xDC80) + QChar(0xDCAF)},
        // Surrogates, alone and as a pair
        {"\xed\xb2\x80", QString(QChar(0xDCED)) + QChar(0xDCB2) + QChar(0xDC80)},
        {"\xed\xa0\xbd\xed\xb2\x80",
         QString(QChar(0xDCED)) + QChar(0xDCA0) + QChar(0xDCBD) + QChar(0xDCED) + QChar(0xDCB2) + QChar(0xDC80)},
        // Past the last character
        {"\xf4\x90\x80\x80", QString(QChar(0xDCF4)) + QChar(0xDC90) + QChar(0xDC80) + QChar(0xDC80)},
        // Cut
        {"\xf0\x9f\x8e", QString(QChar(0xDCF0)) + QChar(0xDC9F) + QChar(0xDC8E)},
        {"\xf0\x9f\x8e.stl", QString(QChar(0xDCF0)) + QChar(0xDC9F) + QChar(0xDC8E) + ".stl"},
        {"\xff\xf0\x9f\x8e\xb2", QString(QChar(0xDCFF)) + QString::fromUtf8("\xf0\x9f\x8e\xb2")},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(QFile::decodeName(row.bytes), row.text) << row.bytes.toHex(' ').toStdString();
        expectKept(row.bytes);
    }
}

TEST_F(NameCodecTest, FilesAndFoldersAreFoundByTheirNames)
{
    const QTemporaryDir folder;
    for (const char* const bytes : {"a\xff.stl", "\xef\xbb\xbf.stl", "\xed\xb2\x80.stl", "plain.stl"}) {
        const QString name = QFile::decodeName(bytes);
        EXPECT_EQ(readFile(writeFile(folder.filePath(name), bytes)), bytes);
        std::vector<FolderEntry> entries;
        EXPECT_EQ(readFolder(folder.path(), entries), "");
        ASSERT_EQ(entries.size(), 1U);
        EXPECT_EQ(entries.front().name, name);
        EXPECT_TRUE(entries.front().isText);
        EXPECT_TRUE(QFile::remove(folder.filePath(name)));
    }
}

} // namespace
} // namespace zr::test
