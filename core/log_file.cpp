#include "core/log_file.h"

#include "core/data_location.h"

#include <QDateTime>
#include <QFileInfo>

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

// Instances of several threads may have the file open, and on Windows each writes where its own last line ended.
std::mutex& appendMutex()
{
    static auto* const mutex = new std::mutex;
    return *mutex;
}

// What init() was last called on by this thread, kept so that end() on another thread cannot put an instance without
// a path in its place in the middle of this thread's request.
thread_local std::shared_ptr<LogFile> threadInstance;

} // namespace

std::shared_ptr<LogFile> LogFile::instance()
{
    if (threadInstance)
        return threadInstance;
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
    threadInstance.reset();
}

void LogFile::init(const QString& path)
{
    threadInstance = shared_from_this();
    const std::lock_guard<std::mutex> guard(m_mutex);
    m_path = QFileInfo(path).isFile() ? path : defaultLogPath();
    if (QFileInfo(m_path).size() > kMaxBytes)
        QFile::remove(m_path);
}

void LogFile::write(const QString& message)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (!m_file.isOpen()) {
        if (m_path.isEmpty())
            return;
        m_file.setFileName(m_path);
        if (!m_file.open(QIODevice::Append))
            return;
    }
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("dd.MM.yyyy - hh:mm:ss "));
    const std::lock_guard<std::mutex> turn(appendMutex());
    m_file.seek(m_file.size());
    m_file.write((stamp + message + QLatin1Char('\n')).toLocal8Bit());
    m_file.flush();
}

void logLine(int number, const QString& text)
{
    LogFile::instance()->write(QStringLiteral("%1 %2").arg(number).arg(text));
}

void throwKey(int number, const char* key)
{
    logLine(number, QStringLiteral(" throw "));
    throw QString::fromLatin1(key);
}

} // namespace zr
