#pragma once

#include <QString>

#include <vector>

namespace zr
{

/// A line of the log that tells a failure, and what it means to a person. It is written from the same constant by
/// which it is found in the log again.
struct FailureLine {
    /// What stands behind the text.
    enum class Rest { None, PathOnNextLine, PathAppended, Anything };

    int number;
    const char* text; ///< Latin-1
    Rest rest;
    const char* reason; ///< one of core/reasons.h
};

/// In the order of their weight: when the log holds several of them, the first one is the reason.
using FailureLines = std::vector<FailureLine>;

/// The text of every line that precedes a thrown key.
constexpr char kThrowText[] = " throw ";

/// A failure of which the log tells no more than that a key was thrown.
struct ThrownKey {
    int number;
    const char* key;
    const char* reason;

    constexpr operator FailureLine() const { return {number, kThrowText, FailureLine::Rest::None, reason}; }
};

/// The text of the line behind its number, for the source file at `path`; without what is Rest::Anything.
QString textOf(const FailureLine& line, const QString& path);

/// Whether `message`, which is a line of the log without its time stamp, is `line` for the source file at `path`.
bool isLine(const QString& message, const FailureLine& line, const QString& path);

} // namespace zr
