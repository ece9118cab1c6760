// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <vector>

namespace zr
{

/// A log line that reports a failure, and what it means to a user. The same constant serves to write the line and to
/// find it in the log.
struct FailureLine {
    /// What follows the text.
    enum class Rest { None, PathOnNextLine, PathAppended, Anything };

    int number;
    const char* text; ///< Latin-1
    Rest rest;
    const char* reason;        ///< one of core/reasons.h
    const char* key = nullptr; ///< the error key that the failure ends with, if it has one of its own
};

/// In order of priority: when the log has several of them, the first one is the reason.
using FailureLines = std::vector<FailureLine>;

/// The text of every line that precedes a thrown key.
constexpr char kThrowText[] = " throw ";

/// A failure of which the log shows only that a key was thrown.
struct ThrownKey {
    int number;
    const char* key;
    const char* reason;

    constexpr operator FailureLine() const { return {number, kThrowText, FailureLine::Rest::None, reason, key}; }
};

/// The line's text after its number, for the source file at `path`; without a rest that is Rest::Anything.
QString textOf(const FailureLine& line, const QString& path);

/// Whether `message`, a log line without its time stamp, is `line` for the source file at `path`.
bool isLine(const QString& message, const FailureLine& line, const QString& path);

} // namespace zr
