// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <random>
#include <vector>

namespace zr::test
{

/// Lines of text models as no program writes them: odd numbers, blanks, terminators and bytes, put together at random.
class OddLines
{
public:
    explicit OddLines(unsigned seed) : m_random(seed) {}

    /// A line with its terminator; `keywords` are those of the format, in any case.
    QByteArray line(const std::vector<QByteArray>& keywords);
    QByteArray lines(int count, const std::vector<QByteArray>& keywords);

    /// A token that is a number or nearly one.
    QByteArray number();

private:
    QByteArray pick(const std::vector<QByteArray>& choices);
    QByteArray digits(int max);
    QByteArray blanks();
    int below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }
    bool oneIn(int n) { return below(n) == 0; }

    std::mt19937 m_random;
};

} // namespace zr::test
