// SPDX-License-Identifier: MIT
#include "core/log_file.h"

#include "core/data_location.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <optional>

#include <pthread.h>

namespace zr
{
namespace
{

struct ProcessInstance {
    std::mutex mutex;
    std::shared_ptr<LogFile> log;
};

// Never destroyed: the host process may still log while it runs its exit handlers.
ProcessInstance& processInstance()
{
    static auto* const slot = new ProcessInstance;
    return *slot;
}

// The instance that this thread last called init() on, kept so that end() on another thread cannot replace it by one
// without a path in the middle of this thread's request.
//
// Not thread_local: GCC for Windows frees such variables of a thread that ends before it runs their destructors.
class ThreadInstance
{
public:
    // Null when the thread has none.
    static std::shared_ptr<LogFile> get()
    {
        const auto* const log = stored();
        return log ? *log : nullptr;
    }

    // Where the system gives the thread no room, it goes on with the process-wide instance.
    static void set(const std::shared_ptr<LogFile>& log)
    {
        if (auto* const old = stored()) {
            *old = log;
            return;
        }
        auto copy = std::make_unique<std::shared_ptr<LogFile>>(log);
        if (key() && pthread_setspecific(*key(), copy.get()) == 0)
            static_cast<void>(copy.release());
    }

    static void reset()
    {
        if (auto* const log = stored())
            log->reset();
    }

private:
    static std::shared_ptr<LogFile>* stored()
    {
        return key() ? static_cast<std::shared_ptr<LogFile>*>(pthread_getspecific(*key())) : nullptr;
    }

    static const std::optional<pthread_key_t>& key()
    {
        static const std::optional<pthread_key_t> key = makeKey();
        return key;
    }

    static std::optional<pthread_key_t> makeKey()
    {
        pthread_key_t key{};
        if (pthread_key_create(&key, [](void* log) { delete static_cast<std::shared_ptr<LogFile>*>(log); }) != 0)
            return std::nullopt;
        return key;
    }
};

} // namespace

std::shared_ptr<LogFile> LogFile::instance()
{
    if (auto log = ThreadInstance::get())
        return log;
    auto& slot = processInstance();
    const std::lock_guard<std::mutex> guard(slot.mutex);
    if (!slot.log)
        slot.log.reset(new LogFile);
    return slot.log;
}

void LogFile::end()
{
    auto& slot = processInstance();
    const std::lock_guard<std::mutex> guard(slot.mutex);
    slot.log.reset();
    ThreadInstance::reset();
}

void LogFile::init(const QString& path)
{
    ThreadInstance::set(shared_from_this());
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_path = QFileInfo(path).isFile() ? path : defaultLogPath();
    if (QFileInfo(m_path).size() > kMaxBytes)
        QFile::remove(m_path);
}

void LogFile::keepInMemory()
{
    ThreadInstance::set(shared_from_this());
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_keptLines.emplace();
    m_touchesFile = false;
}

void LogFile::keepCopy()
{
    ThreadInstance::set(shared_from_this());
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_keptLines.emplace();
}

QStringList LogFile::keptLines()
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    return m_keptLines.value_or(QStringList());
}

void LogFile::write(const QString& message)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_keptLines)
        m_keptLines->append(message);
    if (!m_touchesFile)
        return;
    if (!m_file.isOpen() && (m_path.isEmpty() || !m_file.open(m_path)))
        return;
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("dd.MM.yyyy - hh:mm:ss "));
    m_file.append((stamp + message + QLatin1Char('\n')).toLocal8Bit());
}

void logLine(int number, const QString& text)
{
    LogFile::instance()->write(QStringLiteral("%1 %2").arg(number).arg(text));
}

void logLine(const FailureLine& line, const QString& rest)
{
    logLine(line.number, QLatin1String(line.text) + rest);
}

void throwKey(int number, const char* key)
{
    logLine(number, QLatin1String(kThrowText));
    throw QString::fromLatin1(key);
}

void throwKey(const ThrownKey& failure)
{
    throwKey(failure.number, failure.key);
}

} // namespace zr
