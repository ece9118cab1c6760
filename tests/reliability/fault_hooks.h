// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

namespace zr::test
{

/// The system calls that can be made to fail.
enum class SystemCall { OpenToRead, OpenToWrite, MakeFolder, Read, Write, Sync, Rename, AskForRoom };

/// What happens to calls for files whose path contains `pathPart`. AskForRoom, which is about the disk's folder, does
/// not fail but reports that there is none.
struct Fault {
    SystemCall call;
    QByteArray pathPart;
    int error = 0;                     ///< what the call fails with; 0 lets it go on
    int skipped = 0;                   ///< this many calls are not affected first
    int count = -1;                    ///< this many calls are affected; all if negative
    qint64 room = -1;                  ///< Write: this many bytes fit before it fails; none if negative
    std::size_t maxBytes = 0;          ///< Read: max bytes of a call; 0 is no limit
    std::function<void()> before = {}; ///< runs before each affected call
};

/// Injects a fault between this program, including Qt and SQLite, and the operating system while the object lives.
/// Several may live at once; the first one that matches a call is used.
class InjectedFault
{
public:
    explicit InjectedFault(const Fault& fault);
    ~InjectedFault();
    InjectedFault(const InjectedFault&) = delete;
    InjectedFault& operator=(const InjectedFault&) = delete;

    /// How many calls were affected.
    int hits() const;

private:
    struct State;
    friend class FaultList;

    std::shared_ptr<State> m_state;
};

} // namespace zr::test
