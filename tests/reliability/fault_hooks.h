#pragma once

#include <QByteArray>

#include <functional>
#include <memory>

namespace zr::test
{

/// The calls of the operating system that can be made to fail.
enum class SystemCall { OpenToRead, OpenToWrite, MakeFolder, Read, Write, Sync, Rename, AskForRoom };

/// What happens to calls on files whose path holds `pathPart`. AskForRoom, which is about the disk's folder, does not
/// fail but tells that there is none.
struct Fault {
    SystemCall call;
    QByteArray pathPart;
    int error = 0;                     ///< what the call fails with; 0 lets it go on
    int skipped = 0;                   ///< so many of these calls go untouched first
    int count = -1;                    ///< so many calls are touched; all of them when negative
    qint64 room = -1;                  ///< Write: so many bytes fit before it fails; no byte when negative
    std::size_t most = 0;              ///< Read: the call gets no more bytes than this at once; 0 is no limit
    std::function<void()> before = {}; ///< runs before each touched call
};

/// Puts a fault between this program (with Qt and SQLite in it) and the operating system while the object lives.
/// Several may live at once; the first one that fits a call is used.
class InjectedFault
{
public:
    explicit InjectedFault(const Fault& fault);
    ~InjectedFault();
    InjectedFault(const InjectedFault&) = delete;
    InjectedFault& operator=(const InjectedFault&) = delete;

    /// How many calls were touched.
    int hits() const;

private:
    struct State;
    friend class FaultList;

    std::shared_ptr<State> m_state;
};

} // namespace zr::test
