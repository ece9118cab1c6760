// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <vector>

namespace zr::test
{

/// A variable of the environment; a null value removes it.
struct EnvironmentChange {
    const char* name;
    QByteArray value;
};

/// Whether this process was started by runCurrentTestInChild().
bool isChildProcess();

/// Runs the current test a second time in a process of its own, whose environment is changed before Qt and the OpenGL
/// driver see it, and expects it to succeed there. Settings that a driver reads only once need this.
void runCurrentTestInChild(const std::vector<EnvironmentChange>& changes);

} // namespace zr::test
