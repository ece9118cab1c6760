// SPDX-License-Identifier: MIT
#pragma once

#include "core/failure_line.h"

#include <QFile>
#include <QImage>
#include <QString>

namespace zr
{

/// One way in which a reader can fail: the log line that reports it and the error key that is thrown.
/// Readers keep theirs as a table at the top of their file.
struct ReadFailure {
    FailureLine line; ///< the " throw " line after it has the next number
    const char* key;  ///< error key, see FileReaderBase

    constexpr operator FailureLine() const { return {line.number, line.text, line.rest, line.reason, key}; }
};

/// The reader of one source file, made by the thumbnail job for a single getImage() call.
///
/// Subclasses throw a QString error key for everything that they cannot read. The keys in m_errorHandlers are handled
/// here; any other key that reaches getImage() leaves it as std::bad_function_call.
class FileReaderBase
{
public:
    explicit FileReaderBase(const QString& filePath);
    virtual ~FileReaderBase();
    Q_DISABLE_COPY(FileReaderBase)

    /// Makes the reader read from an open descriptor of the source file, which stays the caller's, instead of opening
    /// the file by its path. Before getImage().
    void readFrom(int descriptor) { m_descriptor = descriptor; }

    /// Opens and parses the source file. Throws an error key.
    virtual void readFile() = 0;

    /// The picture of the file that readFile() has read; a null image when there is none.
    virtual QImage previewImage() = 0;

    /// Reads the file and returns its picture; a null image after a failure, which is logged.
    /// Exceptions other than QString pass through.
    virtual QImage getImage();

protected:
    /// Opens m_file for reading. False when that is not possible.
    bool openSource();

    /// Logs the failure with its two lines and throws its key.
    [[noreturn]] void fail(const ReadFailure& failure) const;

    QImage m_image;
    QFile m_file;
    QString m_filePath;

    /// What is done for an error key that reaches getImage().
    struct ErrorHandler {
        const char* key;
        void (FileReaderBase::*handle)(const QString& key);
    };
    static const ErrorHandler m_errorHandlers[3];

private:
    static constexpr int kNoDescriptor = -1;

    int m_descriptor = kNoDescriptor;

    void onFileOpenError(const QString& key);
    void onFileError(const QString& key);
    void handleError(const QString& key);
};

} // namespace zr
