// SPDX-License-Identifier: MIT
#pragma once

#include "core/data_location.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tools/samples/vrx_bytes.h"

#include <QDir>
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

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};

} // namespace zr::test
