// SPDX-License-Identifier: MIT
#include "core/file_reader_base.h"

#include "core/log_contract.h"
#include "core/log_file.h"

#include <functional>

namespace zr
{

constexpr FileReaderBase::ErrorHandler FileReaderBase::m_errorHandlers[] = {
    {key::kOpenFile, &FileReaderBase::onFileOpenError},
    {key::kReadShort, &FileReaderBase::onFileError},
    {key::kPreview, &FileReaderBase::onFileError},
};

FileReaderBase::FileReaderBase(const QString& filePath) : m_file(filePath), m_filePath(filePath) {}

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
        logLine(line::kCaughtKey, key);
        handleError(key);
        return {};
    }
}

bool FileReaderBase::openSource()
{
    return m_descriptor == kNoDescriptor ? m_file.open(QIODevice::ReadOnly)
                                         : m_file.open(m_descriptor, QIODevice::ReadOnly);
}

void FileReaderBase::fail(const ReadFailure& failure) const
{
    logLine(failure.line.number, textOf(failure.line, m_filePath));
    throwKey(failure.line.number + 1, failure.key);
}

void FileReaderBase::onFileOpenError(const QString&)
{
    // There is nothing to close.
}

void FileReaderBase::onFileError(const QString&)
{
    m_file.close();
}

void FileReaderBase::handleError(const QString& key)
{
    for (const ErrorHandler& handler : m_errorHandlers) {
        if (key == QLatin1String(handler.key))
            return (this->*handler.handle)(key);
    }
    // A bug in a reader, which must not look like an ordinary unreadable file.
    throw std::bad_function_call();
}

} // namespace zr
