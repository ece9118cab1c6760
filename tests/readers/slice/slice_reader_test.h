// SPDX-License-Identifier: MIT
#pragma once

#include "core/file_reader_base.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <QTemporaryDir>

#include <memory>

namespace zr::test
{

/// Makes a reader of the file at `path`.
using MakeReader = std::unique_ptr<FileReaderBase> (*)(const QString& path);

template <typename Reader>
std::unique_ptr<FileReaderBase> make(const QString& path)
{
    return std::make_unique<Reader>(path);
}

/// What only its subclasses see of a reader.
QFile& fileIn(FileReaderBase& reader);
QImage& imageIn(FileReaderBase& reader);

/// A failure as users' logs report it.
struct Failure {
    enum class Path { None, OnNextLine, Appended };

    int number;
    const char* text;
    const char* key;
    Path path = Path::OnNextLine;
};

/// Tests of slice readers: the file under test is written into a folder of its own.
class SliceReaderTest : public DataFolderTest
{
protected:
    void SetUp() override;

    /// Writes the source file and returns its path.
    QString write(const QByteArray& bytes, const char* name = kSourceName);
    QString path() const { return m_folder.filePath(kSourceName); }

    /// The picture that the reader makes of the bytes; the log must stay empty, and the file must be closed.
    QImage pictureOf(MakeReader makeReader, const QByteArray& bytes);
    template <typename Reader>
    QImage pictureOf(const QByteArray& bytes)
    {
        return pictureOf(make<Reader>, bytes);
    }

    /// The failure gives its lines, its key and no picture, also at a second reading; the file is closed by the key's
    /// handler, not before.
    void expectFailure(MakeReader makeReader, const QByteArray& bytes, const Failure& failure);

    /// The same for a file that cannot be opened, which is closed throughout.
    void expectOpenFailure(MakeReader makeReader, const QString& path, int number);

    /// The allocation failure is not an error key.
    void expectBadAlloc(MakeReader makeReader, const QByteArray& bytes);

private:
    static constexpr char kSourceName[] = "source.slice";

    void expectReadings(MakeReader makeReader, const QString& path, const Failure& failure, bool isOpen);

    QTemporaryDir m_folder;
};

} // namespace zr::test
