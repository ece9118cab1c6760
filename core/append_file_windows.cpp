// SPDX-License-Identifier: MIT
#include "core/append_file.h"

#include <QDir>

#include <windows.h>

namespace zr
{
namespace
{

HANDLE asHandle(qintptr handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

// The turn to append, among all that have the file open. Local disks need none, but network folders and Wine find the
// end of the file and write there in two steps. The lock is on a byte that no log ever reaches.
class Turn
{
public:
    // A process that was suspended in its turn must not hold up the others for ever.
    explicit Turn(HANDLE file) : m_file(file)
    {
        constexpr int kAttempts = 200;
        constexpr int kAttemptsWithoutPause = 20;
        for (int attempt = 0; attempt < kAttempts && !m_taken; ++attempt) {
            if (attempt > 0)
                Sleep(attempt < kAttemptsWithoutPause ? 0 : 1);
            m_taken = LockFile(m_file, 0, kHighOffset, 1, 0);
        }
    }
    ~Turn()
    {
        if (m_taken)
            UnlockFile(m_file, 0, kHighOffset, 1, 0);
    }
    Q_DISABLE_COPY(Turn)

private:
    static constexpr DWORD kHighOffset = 0x40000000;

    HANDLE m_file;
    bool m_taken = false;
};

} // namespace

AppendFile::~AppendFile()
{
    if (isOpen())
        CloseHandle(asHandle(m_handle));
}

// With a handle that may append but not write elsewhere, the system moves each write to the end of the file. The lock
// needs the right to read as well.
bool AppendFile::open(const QString& path)
{
    const QString native = QDir::toNativeSeparators(path);
    auto* const file =
        CreateFileW(reinterpret_cast<LPCWSTR>(native.utf16()), FILE_APPEND_DATA | FILE_READ_DATA | SYNCHRONIZE,
                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_handle = reinterpret_cast<qintptr>(file);
    return isOpen();
}

void AppendFile::append(const QByteArray& bytes)
{
    const Turn turn(asHandle(m_handle));
    DWORD written = 0;
    WriteFile(asHandle(m_handle), bytes.constData(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

} // namespace zr
