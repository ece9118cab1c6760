// SPDX-License-Identifier: MIT
#include "readers/mesh/text/text_blocks.h"

#include "readers/mesh/text/line_tokenizer.h"
#include "tests/readers/mesh/mesh_files.h"
#include "tests/readers/mesh/text/odd_lines.h"
#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kBlock = TextBlocks::kBlockBytes;
constexpr int kMaxKeywordBytes = 16;
const QByteArray kEndOfFile("\0\n", 2);

QList<QByteArray> blocksOf(const QByteArray& content)
{
    SourceFile source(content);
    TextBlocks blocks(source.file());
    QList<QByteArray> list;
    while (blocks.next()) {
        EXPECT_LT(blocks.begin(), blocks.end());
        EXPECT_EQ(blocks.end()[-1], '\n');
        list += QByteArray(blocks.begin(), static_cast<int>(blocks.end() - blocks.begin()));
    }
    EXPECT_FALSE(blocks.next());
    return list;
}

TEST(TextBlocksTest, EmptyFileHasNone)
{
    EXPECT_TRUE(blocksOf(QByteArray()).isEmpty());
}

TEST(TextBlocksTest, LastLineWithoutATerminatorEndsInAZeroByte)
{
    EXPECT_EQ(blocksOf("a\nb"), QList<QByteArray>({"a\n", "b" + kEndOfFile}));
    EXPECT_EQ(blocksOf("b"), QList<QByteArray>({"b" + kEndOfFile}));
    EXPECT_EQ(blocksOf("\n"), QList<QByteArray>({"\n"}));
}

TEST(TextBlocksTest, LinesOfAllLengthsAreCarriedOverWhole)
{
    std::mt19937 random(4);
    QByteArray content;
    while (content.size() < 5 * kBlock)
        content += QByteArray(static_cast<int>(random() % 70000), 'x') + '\n';
    const QList<QByteArray> blocks = blocksOf(content);
    EXPECT_GT(blocks.size(), 4);
    EXPECT_EQ(blocks.join(), content);
}

TEST(TextBlocksTest, LineThatFillsTheBufferIsNotCondensed)
{
    const QByteArray line = QByteArray(kBlock - 1, ' ') + '\n';
    EXPECT_EQ(blocksOf(line + "next\n"), QList<QByteArray>({line, "next\n"}));
}

TEST(TextBlocksTest, PositionsAreThoseInTheFile)
{
    SourceFile source("ab\n" + QByteArray(3 * kBlock, ' ') + "c\nd\ne");
    source.file().seek(1);
    TextBlocks blocks(source.file());
    QList<qint64> positions;
    while (blocks.next())
        positions += blocks.position();
    EXPECT_EQ(positions, QList<qint64>({1, 3, 3 * kBlock + 5, 3 * kBlock + 7}));
}

struct LongLine {
    QByteArray line;
    QByteArray condensed;
};

TEST(TextBlocksTest, LongLineIsCondensedToItsTokens)
{
    const QByteArray gap(2 * kBlock, ' ');
    const QByteArray digits(kBlock, '1');
    const LongLine cases[] = {
        {gap + "v 1 2 3\n", " v 1 2 3\n"},
        {"v" + gap + "1" + gap + "\t2 3\r\n", " v 1 2 3\r\n"},
        {"v 1 2" + gap + "\n", " v 1 2 \n"},
        {"v 1 2 3 " + gap + "\n", " v 1 2 3" + kEndOfFile},
        {"v 1 2 3 4 " + gap + "\n", " v 1 2 3" + kEndOfFile},
        {"\xEF\xBB\xBF v 1 2" + gap + "3 4\n", " v 1 2 3" + kEndOfFile},
        {"v " + digits + digits + " 2 3\n", " v " + digits + digits + " 2 3\n"},
        {digits + " 1 2 3\n", " " + QByteArray(kMaxKeywordBytes + 1, '1') + " 1 2 3\n"},
        {gap + "\n", " \n"},
        {"v 1" + gap + QByteArray("\0 2 3\n", 6), " v 1" + kEndOfFile},
    };
    for (const LongLine& test : cases) {
        EXPECT_EQ(blocksOf(test.line + "next\n"), QList<QByteArray>({test.condensed, "next\n"}));
        const QByteArray unterminated = test.line.left(test.line.size() - 1);
        EXPECT_TRUE(blocksOf(unterminated).last().endsWith(kEndOfFile));
    }
}

TEST(TextBlocksTest, CondensedLineHasTheTokensOfTheLine)
{
    OddLines odd(5);
    for (int i = 0; i < 200; ++i) {
        QByteArray line = odd.line({"vertex", "v", "f"});
        line.truncate(std::max(line.indexOf('\n'), 0));
        // Stretches each blank beyond the buffer.
        line.replace(" ", QByteArray(kBlock, ' ')).append('\n');
        if (line.size() < kBlock)
            continue;
        const QByteArray condensed = blocksOf(line).value(0);
        EXPECT_EQ(tokensOf(condensed.constBegin(), condensed.constEnd()), tokensOf(line.constBegin(), line.constEnd()))
            << condensed.toPercentEncoding().constData();
    }
}

TEST(TextBlocksTest, LongLineComesInPiecesIfAskedFor)
{
    const QByteArray longLine = QByteArray(2 * kBlock + 1000, 'x') + '\n';
    const QByteArray content = "a\n" + longLine + "b\n" + longLine + "c";
    SourceFile source(content);
    TextBlocks blocks(source.file(), TextBlocks::LongLines::InPieces);
    QByteArray joined;
    int pieces = 0;
    while (blocks.next()) {
        EXPECT_EQ(blocks.position(), joined.size());
        EXPECT_EQ(blocks.isPiece(), blocks.end()[-1] != '\n');
        EXPECT_LT(blocks.begin(), blocks.end());
        pieces += blocks.isPiece() ? 1 : 0;
        joined += QByteArray(blocks.begin(), static_cast<int>(blocks.end() - blocks.begin()));
    }
    EXPECT_FALSE(blocks.next());
    EXPECT_EQ(joined, content + kEndOfFile);
    EXPECT_EQ(pieces, 4);
}

TEST(TextBlocksTest, PiecesAreFollowedByAnEmptyLineAtTheFilesEnd)
{
    for (const QByteArray& content : {QByteArray(), QByteArray("a\n"), QByteArray(kBlock, 'x')}) {
        SourceFile source(content);
        TextBlocks blocks(source.file(), TextBlocks::LongLines::InPieces);
        QByteArray last;
        while (blocks.next())
            last = QByteArray(blocks.begin(), static_cast<int>(blocks.end() - blocks.begin()));
        EXPECT_EQ(last, kEndOfFile);
    }
}

} // namespace
} // namespace zr::test
