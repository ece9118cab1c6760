// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace zr
{

/// How serious a finding is: a note is worth knowing but not a problem.
enum class Verdict { Ok, Note, Fail };

/// What one check found, as one line for the user. A failure's line says what to do about it.
struct Finding {
    Verdict verdict;
    QString what;
    QString detail;
    QStringList quoted = {}; ///< lines to show below it
};

using Findings = QVector<Finding>;

/// Checks all that a thumbnail needs on this machine, and finally makes one. Prints its findings and the end of the
/// log, and returns the program's exit status: 0 when nothing failed, else 1. When Qt gives up or a check does not end,
/// reports that in the same way and ends the program. Removes what the thumbnail leaves, except its lines in a log that
/// was there before.
int runChecks();

} // namespace zr
