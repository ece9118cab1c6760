// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

#include <sys/types.h>

namespace zr::test
{

/// Root may access everything, so root becomes another user while the object lives; other users stay themselves.
class Unprivileged
{
public:
    /// The folders and their contents become the new user's.
    explicit Unprivileged(const QStringList& folders);
    ~Unprivileged();
    Unprivileged(const Unprivileged&) = delete;
    Unprivileged& operator=(const Unprivileged&) = delete;

private:
    bool m_wasRoot = false;
};

/// Sets the permissions of a file or folder.
void setMode(const QString& path, mode_t mode);

} // namespace zr::test
