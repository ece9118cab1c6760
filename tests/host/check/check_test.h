// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/data_folder_fixture.h"
#include "tests/support/program_run.h"

#include <QTemporaryDir>

namespace zr::test
{

/// A test of zrthumb --check in a data folder of its own, on a machine whose file managers know nothing of us.
class CheckTest : public DataFolderTest
{
protected:
    void SetUp() override;

    ProgramRun check() const;

    /// Lets the checks that follow live by a FasterClock.
    void useFasterClock();

    /// Makes the thumbnail of a sample, as a file of the user.
    void makeThumbnail() const;

    /// Expects exactly this line as the only failure, and the thumbnails of the check's own samples.
    void expectOnlyFailure(const QString& line) const;

    /// Expects a failure that prevents thumbnails: this line, then that of the request, and the count.
    void expectFailureOfRequest(const QString& line) const;

    /// Expects this line as the first failure, whatever failures follow from it.
    void expectFirstFailure(const QString& line) const;

    /// The lines with that mark: "ok", "note" or "FAIL".
    static QStringList marked(const ProgramRun& run, const QString& mark);

    /// The first line, since file managers know nothing of us.
    static const QString kNotRegistered;

    static QString path(const QString& name);

    /// Every file and folder below the data folder, the rows of the database, and the bytes of all files except the
    /// database and the log.
    static QStringList snapshot();

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

} // namespace zr::test
