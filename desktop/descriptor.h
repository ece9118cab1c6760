// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include <unistd.h>

namespace zr::desktop
{

/// Owns an open file descriptor.
class Descriptor
{
public:
    Descriptor() = default;
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, kNone)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor()
    {
        if (isOpen())
            close(m_number);
    }

    bool isOpen() const { return m_number != kNone; }
    int number() const { return m_number; }

private:
    static constexpr int kNone = -1;

    int m_number = kNone;
};

} // namespace zr::desktop
