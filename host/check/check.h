#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace zr
{

/// How a finding counts: a note tells what is worth knowing and no problem.
enum class Verdict { Ok, Note, Fail };

/// What one check found, as one line for the user. A failure's line says what to do about it.
struct Finding {
    Verdict verdict;
    QString what;
    QString detail;
    QStringList quoted = {}; ///< lines to show below it
};

using Findings = QVector<Finding>;

/// Checks all that a thumbnail needs on this machine, and at last makes one. Prints what it finds and the end of the
/// log, and returns the program's exit status: 0 when nothing failed, else 1. When Qt gives up or a check does not end,
/// tells that likewise and ends the program. What the thumbnail left is taken back, but for its lines in a log that was
/// there.
int runChecks();

} // namespace zr
