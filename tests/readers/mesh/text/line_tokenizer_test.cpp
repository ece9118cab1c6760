// SPDX-License-Identifier: MIT
#include "readers/mesh/text/line_tokenizer.h"

#include "tests/readers/mesh/reference/reference_text_model.h"
#include "tests/readers/mesh/text/odd_lines.h"
#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kMaxKeywordBytes = 16;

struct SplitLine {
    QByteArray line;
    QByteArrayList tokens;
};

TEST(LineTokenizerTest, TokensLieBetweenBlanks)
{
    const QByteArray mark = "\xEF\xBB\xBF";
    const SplitLine cases[] = {
        {"", {}},
        {" \t ", {}},
        {"v 1 2 3", {"v", "1", "2", "3"}},
        {" \tv  1\t\t2 3\n", {"v", "1", "2", "3\n"}},
        {"v 1 2 3 4 5\n", {"v", "1", "2", "3"}},
        {"v 1 2 \r\n", {"v", "1", "2", "\r\n"}},
        {"\n", {"\n"}},
        {QByteArray("v 1\0 2 3\n", 9), {"v", "1"}},
        {QByteArray("\0v 1", 4), {}},
        {mark + "v 1", {"v", "1"}},
        {mark + " v 1", {"v", "1"}},
        {mark + mark + "v", {mark + "v"}},
        {mark + " " + mark + "v", {mark + "v"}},
        {" " + mark + "v", {mark + "v"}},
        {mark.left(2) + " v", {mark.left(2), "v"}},
        {mark.left(2) + '\0', {mark.left(2)}},
        {mark.left(2) + "v", {mark.left(2) + "v"}},
        {mark, {}},
    };
    for (const SplitLine& test : cases)
        EXPECT_EQ(tokensOf(test.line.constBegin(), test.line.constEnd()), test.tokens) << test.line.toHex().constData();
}

TEST(LineTokenizerTest, TokensThatAreTooLongStayTooLong)
{
    LineTokenizer line;
    const QByteArray digits(kMaxNumberBytes, '1');
    for (int i = 0; i < 2; ++i)
        line.add(digits.constBegin(), digits.constEnd());
    const QByteArray gap = " ";
    line.add(gap.constBegin(), gap.constEnd());
    for (int i = 0; i < 2; ++i)
        line.add(digits.constBegin(), digits.constEnd());
    ASSERT_EQ(line.tokens().size(), 2);
    EXPECT_EQ(line.tokens()[0].size(), kMaxKeywordBytes + 1);
    EXPECT_EQ(line.tokens()[1].size(), kMaxNumberBytes + 1);
}

// The tokens as text, so that they compare with Qt's.
QStringList textsOf(const QByteArrayList& tokens)
{
    QStringList texts;
    // A blank in front keeps a byte order mark that is not at the line's beginning.
    for (const QByteArray& token : tokens)
        texts += QString::fromUtf8(' ' + token).mid(1);
    return texts;
}

TEST(LineTokenizerTest, LinesInAnyPiecesAreSplitAsQtSplitsThem)
{
    OddLines odd(3);
    std::mt19937 random(5);
    for (int i = 0; i < 50000; ++i) {
        const QByteArray line = odd.line({"vertex", "v"});
        QStringList expected = referenceTokens(line).mid(0, kMaxTokens);
        if (!expected.isEmpty())
            expected[0].truncate(kMaxKeywordBytes + 1);
        LineTokenizer tokenizer;
        const char* const end = line.constEnd();
        for (const char* piece = line.constBegin(); piece != end;) {
            const auto rest = static_cast<std::size_t>(end - piece);
            const char* const pieceEnd = piece + 1 + random() % rest;
            tokenizer.add(piece, pieceEnd);
            piece = pieceEnd;
        }
        EXPECT_EQ(textsOf(tokenizer.tokens()), expected) << line.toPercentEncoding().constData();
        EXPECT_EQ(tokensOf(line.constBegin(), end), tokenizer.tokens()) << line.toPercentEncoding().constData();
    }
}

} // namespace
} // namespace zr::test
