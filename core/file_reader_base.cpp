#include "core/file_reader_base.h"

#include "core/log_file.h"

namespace zr
{
namespace
{

constexpr int kLineCaughtKey = 29;

} // namespace

FileReaderBase::FileReaderBase(const QString& filePath) : m_file(filePath), m_filePath(filePath)
{
    m_errorHandlers.insert(QStringLiteral("openFileErr"), [this](const QString& key) { onFileOpenError(key); });
    m_errorHandlers.insert(QStringLiteral("fileReadLess"), [this](const QString& key) { onFileError(key); });
    m_errorHandlers.insert(QStringLiteral("filePrevErr"), [this](const QString& key) { onFileError(key); });
}

FileReaderBase::~FileReaderBase()
{
    if (m_file.isOpen())
        m_file.close();
}

QImage FileReaderBase::getImage()
{
    try {
        readFile();
        m_image = previewImage();
        return m_image;
    } catch (const QString& key) {
        logLine(kLineCaughtKey, key);
        // A key without a handler gives an empty function, whose call raises std::bad_function_call: such a key is
        // a reader's mistake, and it must not look like an ordinary unreadable file.
        m_errorHandlers.value(key)(key);
        return {};
    }
}

void FileReaderBase::fail(const ReadFailure& failure) const
{
    logLine(failure.line.number, textOf(failure.line, m_filePath));
    throwKey(failure.line.number + 1, failure.key);
}

// There is nothing to close.
void FileReaderBase::onFileOpenError(const QString& key)
{
    Q_UNUSED(key)
}

void FileReaderBase::onFileError(const QString& key)
{
    Q_UNUSED(key)
    m_file.close();
}

} // namespace zr
