// SPDX-License-Identifier: MIT
// Each step of fast_number.h against a loop over the bytes, which says what the step does.

#include "readers/mesh/text/fast_number.h"

#include "readers/mesh/text/scalar_number.h"
#include "tests/readers/mesh/text/odd_lines.h"

#include <QByteArray>

#include <gtest/gtest.h>

#ifdef __SSE2__

namespace zr::test
{
namespace
{

// Text with the readable bytes around it that reading needs.
class PaddedText
{
public:
    explicit PaddedText(const QByteArray& text)
        : m_bytes(QByteArray(kTextPadding, '9') + text + QByteArray(kTextPadding, '9'))
    {
    }

    const char* begin() const { return m_bytes.constData() + kTextPadding; }
    const char* end() const { return m_bytes.constData() + m_bytes.size() - kTextPadding; }

private:
    QByteArray m_bytes;
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

TEST(FastNumberTest, DigitBitsAreThoseOfTheDigits)
{
    for (int first = 0; first < 256; ++first) {
        std::array<char, 16> text{};
        quint64 expected = 0;
        for (unsigned i = 0; i < text.size(); ++i) {
            text[i] = static_cast<char>(first + static_cast<int>(i) * 17);
            expected |= quint64{isDigit(text[i])} << i;
        }
        EXPECT_EQ(fast::digitBits(text.data()), expected) << first;
    }
}

TEST(FastNumberTest, NonDigitsComeOneAfterTheOther)
{
    std::mt19937 random(1);
    for (int i = 0; i < 1000; ++i) {
        std::array<char, 48> text{};
        for (char& c : text)
            c = "0123456789 .-e\n\xF0"[random() % 16];
        const auto expectAll = [&text](fast::NonDigits others, std::size_t bytes) {
            for (std::size_t at = 0; at < bytes; ++at) {
                if (isDigit(text[at]))
                    continue;
                ASSERT_FALSE(others.isEmpty());
                EXPECT_TRUE(others.drop(0));
                EXPECT_EQ(others.next(), at);
                const bool isThereAnother = others.drop();
                EXPECT_EQ(isThereAnother, !others.isEmpty());
            }
            EXPECT_TRUE(others.isEmpty());
        };
        expectAll(fast::NonDigits::among32(text.data()), 32);
        expectAll(fast::NonDigits::among48(text.data()), 48);
    }
}

// The digits before the end of `text`, passing over a point.
std::array<qint32, 4> foursBefore(const QByteArray& text, std::size_t count)
{
    std::array<qint32, 4> fours{};
    qint32 weight = 1;
    std::size_t found = 0;
    for (int at = text.size() - 1; found < count; --at) {
        if (text[at] == '.')
            continue;
        weight = found % 4 == 0 ? 1 : weight * 10;
        fours[3 - found / 4] += weight * (text[at] - '0');
        ++found;
    }
    return fours;
}

TEST(FastNumberTest, DigitsMakeNumbersOfFourAndOfEight)
{
    std::mt19937 random(2);
    for (int i = 0; i < 20000; ++i) {
        QByteArray text;
        for (int k = 0; k < 17; ++k)
            text += static_cast<char>('0' + random() % 10);
        const std::size_t count = 1 + random() % 16;
        const std::size_t fraction = random() % (count + 1);
        const bool hasPoint = random() % 2 == 0;
        if (hasPoint)
            text[16 - static_cast<int>(fraction)] = '.';
        const PaddedText padded(text);
        const __m128i fours = fast::digitsBefore(padded.end(), hasPoint ? fraction : 16, count);
        const std::array<qint32, 4> expected = foursBefore(text, count);
        std::array<qint32, 4> actual{};
        std::memcpy(actual.data(), &fours, sizeof(fours));
        EXPECT_EQ(actual, expected) << text.constData() << ' ' << count;

        const __m128i eights = fast::eightDigits(fours, fours);
        std::memcpy(actual.data(), &eights, sizeof(eights));
        const qint32 high = expected[0] * 10000 + expected[1], low = expected[2] * 10000 + expected[3];
        EXPECT_EQ(actual, (std::array<qint32, 4>{high, low, high, low})) << text.constData();
    }
}

TEST(FastNumberTest, ExponentIsALetterASignAndTwoDigits)
{
    const QByteArray bytes("eEdf+-,*./0159:;\n \0\x7F\x80\xAB\xB0\xC5\xEB\xFF", 26);
    for (int i = 0; i < 26 * 26 * 26 * 26; ++i) {
        const std::array<char, 4> text = {bytes[i % 26], bytes[i / 26 % 26], bytes[i / 26 / 26 % 26],
                                          bytes[i / 26 / 26 / 26]};
        for (const std::size_t start : {fast::kUnscaled, fast::kUnscaled + 1, fast::kUnscaled - 30}) {
            const bool isExponent = (text[0] == 'e' || text[0] == 'E') && (text[1] == '+' || text[1] == '-') &&
                                    isDigit(text[2]) && isDigit(text[3]);
            const int power = (text[2] - '0') * 10 + text[3] - '0';
            const int expected = static_cast<int>(start) + 2 * (text[1] == '-' ? -power : power);
            const bool isInTable = expected >= 0 && expected < static_cast<int>(fast::kScales.size());
            std::size_t scale = start;
            ASSERT_EQ(fast::addExponent(text.data(), scale), isExponent && isInTable) << i;
            if (isExponent && isInTable) {
                ASSERT_EQ(scale, static_cast<std::size_t>(expected)) << i;
            }
        }
    }
}

TEST(FastNumberTest, ScalesArePowersOfTenWithASign)
{
    for (int power = -fast::kMaxPower; power <= fast::kMaxPower; ++power) {
        for (const std::size_t negative : {std::size_t{0}, std::size_t{1}}) {
            const auto place = fast::kUnscaled + negative + static_cast<std::size_t>(2 * power);
            const double expected = QByteArray((negative == 1 ? "-1e" : "1e") + QByteArray::number(power)).toDouble();
            EXPECT_EQ(fast::kScales[place].factor / fast::kScales[place].divisor, expected) << power;
        }
    }
}

TEST(FastNumberTest, LinesAreReadAsOneNumberAfterTheOther)
{
    OddLines odd(4);
    int points = 0, faces = 0;
    for (int i = 0; i < 100000; ++i) {
        QByteArray text = odd.number() + ' ' + odd.number() + ' ' + odd.number() + '\n';
        if (i % 8 == 0)
            text = QByteArray::number(i * 998) + " 7 " + QByteArray::number(i) + '\n';
        const PaddedText line(text);
        Vec4 point{}, scalarPoint{};
        if (const char* const end = fast::readPoint(line.begin(), point)) {
            ++points;
            ASSERT_EQ(scalar::readPoint(line.begin(), scalarPoint), end) << line.begin();
            EXPECT_EQ(std::memcmp(&point, &scalarPoint, 3 * sizeof(float)), 0) << line.begin();
        }
        Indices face{}, scalarFace{};
        if (const char* const end = fast::readIndices(line.begin(), face)) {
            ++faces;
            ASSERT_EQ(scalar::readIndices(line.begin(), scalarFace), end) << line.begin();
            EXPECT_TRUE(std::equal(face.begin(), face.begin() + 3, scalarFace.begin())) << line.begin();
        }
    }
    EXPECT_GT(points, 1000);
    EXPECT_GT(faces, 100);
}

} // namespace
} // namespace zr::test

#endif
