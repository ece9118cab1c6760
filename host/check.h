#pragma once

#include <QString>
#include <QVector>

namespace zr
{

/// What one check found, as one line for the user.
struct Finding {
    bool ok;
    QString what;
    QString detail;
};

using Findings = QVector<Finding>;

/// Checks all that a thumbnail needs on this machine, prints what it finds and the end of the log, and returns the
/// program's exit status: 0 when all is well, else 1. Leaves nothing behind.
int runChecks();

} // namespace zr
