// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace zr
{

/// A turn at the log of the server, which all worker processes of a run share: the lines of one request cannot be told
/// from those that others write meanwhile. Many requests may have a turn at a time, or one that is alone. Waits for it;
/// without a log, there is nothing to wait for. Windows only.
class LogTurn
{
public:
    enum class Company { Any, None };

    explicit LogTurn(Company company);
    ~LogTurn();
    Q_DISABLE_COPY(LogTurn)

private:
    void* m_log; // a HANDLE
};

} // namespace zr
