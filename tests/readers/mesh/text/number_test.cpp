// SPDX-License-Identifier: MIT
#include "readers/mesh/text/line_tokenizer.h"
#include "readers/mesh/text/reference_number.h"
#include "readers/mesh/text/scalar_number.h"
#include "tests/readers/mesh/text/odd_lines.h"

#include <QString>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <iterator>
#include <vector>

namespace zr::test
{
namespace
{

quint32 bitsOf(float value)
{
    quint32 bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

// What the quicker ways make of `token` in each of the three places of a line.
struct QuickNumber {
    bool accepted;
    float value;
};

// `after` follows the token in the last place, a blank in the others.
QuickNumber quickly(const QByteArray& token, const char* after, std::size_t place = 2)
{
    std::array<QByteArray, 3> tokens = {"-1.5", "20", "0.03125"};
    tokens[place] = token;
    const QByteArray line = tokens[0] + ' ' + tokens[1] + "  " + tokens[2];
    const QByteArray text = QByteArray(kTextPadding, '9') + line + after + QByteArray(kTextPadding, '9');
    Vec4 point{};
    const char* const end = readPoint(text.constData() + kTextPadding, point);
    if (end) {
        // A carriage return belongs to the line's end.
        const int size = line.endsWith('\r') ? line.size() - 1 : line.size();
        EXPECT_EQ(end - text.constData() - kTextPadding, size) << line.constData();
        const Vec4 others{-1.5F, 20.0F, 0.03125F, 0.0F};
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_TRUE(i == place || bitsOf(point[i]) == bitsOf(others[i])) << line.constData();
    }
    return {end != nullptr, point[place]};
}

void expectAsQt(const QByteArray& token)
{
    // Within a line; at its beginning a byte order mark would vanish.
    const float expected = QString::fromUtf8(' ' + token).toFloat();
    const auto compare = [&](const QuickNumber& number) {
        if (number.accepted) {
            EXPECT_EQ(bitsOf(number.value), bitsOf(expected)) << token.constData();
        }
    };
    compare(quickly(token, "\n", 0));
    compare(quickly(token, "\n", 1));
    for (const char* after : {"\n", " ", "\t", "\r\n"})
        compare(quickly(token, after));
    EXPECT_EQ(bitsOf(reference::toFloat(token)), bitsOf(expected)) << token.constData();
}

struct KnownNumber {
    const char* text;
    float value;
};

class KnownNumberTest : public ::testing::TestWithParam<KnownNumber>
{
};

TEST_P(KnownNumberTest, IsReadToItInBothWays)
{
    const QByteArray text(GetParam().text);
    const QuickNumber number = quickly(text, "\n");
    EXPECT_TRUE(number.accepted);
    EXPECT_EQ(bitsOf(number.value), bitsOf(GetParam().value));
    EXPECT_EQ(bitsOf(reference::toFloat(text)), bitsOf(GetParam().value));
}

INSTANTIATE_TEST_SUITE_P(
    Usual, KnownNumberTest,
    ::testing::Values(KnownNumber{"0", 0.0F}, KnownNumber{"-0", -0.0F}, KnownNumber{"-12.345678", -12.345678F},
                      KnownNumber{"5.", 5.0F}, KnownNumber{".5", 0.5F}, KnownNumber{"1.234567e+01", 12.34567F},
                      KnownNumber{"-1.234567E-10", -1.234567e-10F}, KnownNumber{"1.5e+001", 15.0F},
                      KnownNumber{"2e3", 2000.0F}, KnownNumber{"0.10000000149011612", 0.1F},
                      KnownNumber{"00000000000000012", 12.0F}, KnownNumber{"123456789012345678", 123456789012345678.0F},
                      KnownNumber{"12345678901234567890", 12345678901234567890.0F},
                      KnownNumber{"0.1234567890123456789012345", 0.1234567890123456789012345F},
                      KnownNumber{"1e39", INFINITY}, KnownNumber{"-1e39", -INFINITY}, KnownNumber{"1e-45", 1e-45F},
                      KnownNumber{"-1e-46", 0.0F}, KnownNumber{"3.4028235e38", INFINITY},
                      KnownNumber{"3.40282346e38", 3.40282346e38F}));

TEST(NumberTest, UnusualTokensAreLeftToQt)
{
    for (const char* text :
         {"",         "nan",   "inf",   "0x10",  "1,5",       "--5",     "1e",        "1e+",  "e5",   ".",
          "-",        "1.2.3", "1f",    "1\v",   "\302\2401", "1e10000", "-1e-10000", "+5",   "-nan", "-inf",
          "infinity", "+-5",   "1f+01", "1d+01", "1e*01",     "1e,01",   "1e+0:",     "1e+/1"})
        EXPECT_FALSE(quickly(text, "\n").accepted) << text;
    // A number that ends with the text, not with the line.
    EXPECT_FALSE(quickly("1", "").accepted);
    EXPECT_FALSE(quickly("1", "\r").accepted);
}

TEST(NumberTest, OddNumbersAreWhatQtMakesOfThem)
{
    OddLines odd(1);
    for (int i = 0; i < 200000; ++i)
        expectAsQt(odd.number());
}

TEST(NumberTest, EachFloatIsReadFromItsShortestAndItsLongTexts)
{
    std::mt19937 random(2);
    // Zero, the smallest and the largest numbers of each kind, and others of all exponents.
    std::vector<quint32> patterns = {0, 1, 0x007FFFFF, 0x00800000, 0x3F7FFFFF, 0x3F800001, 0x4B7FFFFF, 0x7F7FFFFF};
    for (std::size_t i = 0, edges = patterns.size(); i < edges; ++i)
        patterns.push_back(patterns[i] | 0x80000000U);
    std::generate_n(std::back_inserter(patterns), 25000, [&random] { return static_cast<quint32>(random()); });
    for (const quint32 bits : patterns) {
        float value = 0;
        std::memcpy(&value, &bits, sizeof(value));
        if (!std::isfinite(value))
            continue;
        for (const char format : {'e', 'g', 'f'}) {
            for (const int digits : {6, 9, 17})
                expectAsQt(QByteArray::number(double{value}, format, digits));
        }
    }
}

// Lines of all lengths around that of what is looked at in one step.
TEST(NumberTest, ThreeNumbersInALineAreThoseThreeOneByOne)
{
    std::mt19937 random(4);
    const auto below = [&random](int end) { return static_cast<int>(random() % static_cast<quint32>(end)); };
    int accepted = 0;
    for (int i = 0; i < 200000; ++i) {
        QByteArray line;
        std::array<float, 3> expected{};
        for (float& number : expected) {
            const double value = (below(2000000) - 1000000) / 1000.0;
            const QByteArray token = QByteArray::number(value, "efg"[below(3)], below(16));
            number = QString::fromLatin1(token).toFloat();
            line += QByteArray(1 + below(10) / 9, i % 5 == 0 ? '\t' : ' ') + token;
        }
        const QByteArray text = QByteArray(kTextPadding, '9') + line + "\n" + QByteArray(kTextPadding, '9');
        Vec4 point{};
        if (readPoint(text.constData() + kTextPadding, point)) {
            ++accepted;
            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_EQ(bitsOf(point[k]), bitsOf(expected[k])) << line.constData();
        }
    }
    EXPECT_GT(accepted, 190000);
}

TEST(NumberTest, LineThatEndsBeforeItsThirdNumberDoesNotTakeTheNextOne)
{
    for (const char* line : {"1 2\n3 4\n", "1 2 \n3 4\n", "1\n2\n3\n", "\n1 2 3\n", "1 2 \r\n3\n"}) {
        const QByteArray text = QByteArray(kTextPadding, '9') + line + QByteArray(kTextPadding, '9');
        Vec4 point{};
        Indices indices{};
        EXPECT_EQ(readPoint(text.constData() + kTextPadding, point), nullptr) << line;
        EXPECT_EQ(readIndices(text.constData() + kTextPadding, indices), nullptr) << line;
    }
}

// Any of these would be read to the same numbers one by one, but half as fast.
TEST(NumberTest, UsualLinesAreReadInOneGo)
{
    for (const char* line : {"40.000000 -0.5 12", "-1 -2 -3", "-4.009167e+01 3.563084E-01 -1.200000e+01", "1  2\t3",
                             "5. .5 -.5", "-12345.6789012345 -12345.6789012 123456789012", "1.5 2.5 3.5\r"}) {
        const QByteArray text = QByteArray(kTextPadding, '9') + line + "\n" + QByteArray(kTextPadding, '9');
        Vec4 point{};
        EXPECT_TRUE(fast::readPoint(text.constData() + kTextPadding, point)) << line;
    }
    const QByteArray face = QByteArray(kTextPadding, '9') + "1 23456789 99999999\n" + QByteArray(kTextPadding, '9');
    Indices indices{};
    EXPECT_TRUE(fast::readIndices(face.constData() + kTextPadding, indices));
}

TEST(NumberTest, ThreeIndicesInALineAreThoseThreeOneByOne)
{
    const std::array<QByteArray, 14> tokens = {"0",          "7",           "12345678",   "123456789", "00000012",
                                               "000000012",  "4294967298",  "2147483648", "1/2/3",     "7//7",
                                               "12345678/1", "1234567890/", "/",          "99999999"};
    for (const char* blanks : {" ", "  ", "\t", " \t "}) {
        for (const char* after : {"\n", " ", "\t", "\r\n", " 9\n"}) {
            for (std::size_t i = 0; i < tokens.size() * tokens.size() * tokens.size(); ++i) {
                const std::array<QByteArray, 3> line = {tokens[i % 14], tokens[i / 14 % 14], tokens[i / 196]};
                const QByteArray text = QByteArray(kTextPadding, '9') + line[0] + blanks + line[1] + blanks + line[2] +
                                        after + QByteArray(kTextPadding, '9');
                Indices indices{};
                const char* const end = readIndices(text.constData() + kTextPadding, indices);
                ASSERT_TRUE(end) << text.constData();
                ASSERT_TRUE(QByteArray(end).startsWith(after)) << text.constData();
                for (std::size_t k = 0; k < 3; ++k)
                    ASSERT_EQ(indices[k], reference::toIndex(line[k])) << text.constData();
            }
        }
    }
}

TEST(NumberTest, TerminatorBelongsToTheNumber)
{
    EXPECT_EQ(reference::toFloat("2.5\n"), 2.5F);
    EXPECT_EQ(reference::toFloat("2.5\r\n"), 2.5F);
    EXPECT_EQ(reference::toFloat("\n"), 0.0F);
}

TEST(NumberTest, TokenThatIsTooLongReadsAsZero)
{
    const QByteArray max(kMaxNumberBytes, '1');
    EXPECT_EQ(reference::toFloat(max), INFINITY);
    EXPECT_EQ(reference::toFloat(max + '1'), 0.0F);
}

TEST(NumberTest, IndexIsTheNumberCutTo32Bits)
{
    const std::pair<const char*, qint32> cases[] = {{"7", 7},
                                                    {"+7", 7},
                                                    {"007\r\n", 7},
                                                    {"1/2/3", 0},
                                                    {"-1", 0},
                                                    {"1.0", 0},
                                                    {"1e2", 0},
                                                    {"4294967296", 0},
                                                    {"4294967298", 2},
                                                    {"4294967295", -1},
                                                    {"2147483648", -2147483647 - 1},
                                                    {"18446744073709551615", -1},
                                                    {"18446744073709551616", 0},
                                                    {"x", 0}};
    for (const auto& [text, index] : cases)
        EXPECT_EQ(reference::toIndex(text), index) << text;
}

TEST(NumberTest, NumbersLongerThanThePaddingAreLeftToQt)
{
    for (int digits = kTextPadding - 2; digits < kTextPadding + 3; ++digits) {
        const QByteArray token = "0." + QByteArray(digits - 2, '3');
        EXPECT_EQ(quickly(token, "\n").accepted, digits <= kTextPadding) << digits;
        expectAsQt(token);
    }
}

} // namespace
} // namespace zr::test
