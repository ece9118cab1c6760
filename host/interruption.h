// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace zr
{

/// Records the first request to end the program, Ctrl+C or another, instead of ending at once, so that the current work
/// can be completed. A second one ends the program as usual. One object at a time.
class Interruption
{
public:
    Interruption();
    ~Interruption();
    Q_DISABLE_COPY(Interruption)

    /// Whether the program is to end.
    bool isRequested() const;

    /// The exit status of a program that ends so: 128 plus the number of the signal.
    int status() const;
};

} // namespace zr
