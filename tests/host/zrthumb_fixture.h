// SPDX-License-Identifier: MIT
#pragma once

#include "core/data_location.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tools/samples/vrx_bytes.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QTemporaryDir>

namespace zr::test
{

/// A test of the program as a user runs it, in a folder of its own.
class ZrthumbTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        m_environment = QProcessEnvironment::systemEnvironment();
    }

    QString source(const QString& name, quint16 word = 0xF800) const
    {
        return sourceOf(name, samples::oneColourVrxBytes(word));
    }

    QString sourceOf(const QString& name, const QByteArray& bytes) const
    {
        const QString path = m_folder.filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        return writeFile(path, bytes);
    }

    ProgramRun run(const QStringList& arguments) const
    {
        return runProgram(QStringLiteral(ZRTHUMB_PROGRAM), arguments, m_folder.path(), m_environment);
    }

    static QString png(const QString& name) { return thumbnailImageFolder() + name; }

    /// Path, time and bytes of all that is in the data folder.
    static QStringList contentsOfDataFolder()
    {
        QStringList contents;
        QDirIterator each(dataFolder(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QFileInfo file(each.next());
            contents += file.filePath() + ' ' + file.lastModified().toString(Qt::ISODateWithMs) + ' ' +
                        QString::fromLatin1(file.isFile() ? readFile(file.filePath()).toHex() : QByteArray());
        }
        contents.sort();
        return contents;
    }

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};

} // namespace zr::test
