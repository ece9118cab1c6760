// SPDX-License-Identifier: MIT
// Sets the numbers in an input's header to values at which readers decide, which random changes to bytes rarely hit.
// Linked into targets whose format has such a header.

#include <QtEndian>

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace
{

// Where the format keeps offsets and counts.
constexpr int kFields[] = {ZR_FIELD_OFFSETS};

// An offset usually leads to another header, of four numbers.
constexpr std::uint32_t kFieldsAtOffset = 4;

class FieldMutator
{
public:
    FieldMutator(std::uint8_t* data, std::size_t size, unsigned seed) : m_data(data), m_size(size), m_random(seed) {}

    bool oneIn(std::uint32_t n) { return below(n) == 0; }

    // False when the input has no room for the field.
    bool changeField()
    {
        auto field = static_cast<std::size_t>(kFields[below(std::size(kFields))]);
        if (field + 4 > m_size)
            return false;
        if (oneIn(2)) {
            field = qFromLittleEndian<quint32>(m_data + field) + 4 * std::size_t{below(kFieldsAtOffset)};
            if (field + 4 > m_size)
                return false;
        }
        const std::uint32_t number = interestingNumber();
        if (oneIn(8))
            qToBigEndian(number, m_data + field);
        else
            qToLittleEndian(number, m_data + field);
        return true;
    }

private:
    std::uint32_t below(std::uint32_t n) { return static_cast<std::uint32_t>(m_random() % n); }

    std::uint32_t interestingNumber()
    {
        const auto size = static_cast<std::uint32_t>(m_size);
        const std::array<std::uint32_t, 16> numbers{
            0,     1,     2,          size,       size - 1,   size + 1, size / 2,    32,
            10000, 10001, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 400,      0x12FD0107U, below(size),
        };
        return numbers[below(numbers.size())];
    }

    std::uint8_t* m_data;
    std::size_t m_size;
    std::minstd_rand m_random;
};

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed)
{
    FieldMutator mutator(data, size, seed);
    if (size > 0 && mutator.oneIn(4) && mutator.changeField())
        return size;
    return LLVMFuzzerMutate(data, size, maxSize);
}
