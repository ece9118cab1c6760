#pragma once

#include <QStringList>

#include <sys/types.h>

namespace zr::test
{

/// Nothing is protected from root, so root is somebody else while the object lives; anybody else stays who they are.
class Unprivileged
{
public:
    /// The folders and all that is in them become the new user's.
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
