// zrthumb --check: what it finds on a machine where all is well, and each fault that it is to name.

#include "core/data_location.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace zr::test
{
namespace
{

// A folder that nobody can write to, not even root.
const QString kReadOnlyFolder = QStringLiteral("/proc/sys");

class CheckTest : public DataFolderTest
{
protected:
    ProgramRun check() const
    {
        return runProgram(QStringLiteral(ZRTHUMB_PROGRAM), {"--check"}, m_folder.path(), m_environment);
    }

    void makeThumbnail() const
    {
        const samples::SampleFile& sample = samples::sampleFiles().front();
        const QString path = writeFile(m_folder.filePath(sample.name), sample.make());
        ASSERT_EQ(runProgram(QStringLiteral(ZRTHUMB_PROGRAM), {path}, m_folder.path(), m_environment).status, 0);
    }

    // Expects this line among those found, and no other failure.
    void expectOnlyFailure(const QString& line) const
    {
        const ProgramRun run = check();
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out.filter(QRegularExpression("^FAIL ")), QStringList(line));
    }

    static QString path(const QString& name) { return dataFolder() + '/' + name; }

    // Every folder of the data, and every file with its time of last change. Trial files move the folders' own times.
    static QStringList snapshot()
    {
        QStringList entries;
        QDirIterator files(dataFolder(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QFileInfo file(files.next());
            entries += file.filePath() + (file.isDir() ? QString() : file.lastModified().toString(Qt::ISODateWithMs));
        }
        entries.sort();
        return entries;
    }

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

TEST_F(CheckTest, FreshProfileIsWellAndStaysFresh)
{
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, QStringList());
    ASSERT_EQ(run.out.size(), 5);
    EXPECT_EQ(run.out[0], QString("ok   Qt: %1 starts, platform xcb").arg(qVersion()));
    EXPECT_TRUE(run.out[1].startsWith("ok   OpenGL: 4.5 ")) << run.out[1].toStdString();
    EXPECT_EQ(run.out[2], "ok   data folder: " + dataFolder() + " is not there yet; the first thumbnail makes it");
    EXPECT_EQ(run.out[3], "ok   database: none yet; the first thumbnail makes it");
    EXPECT_EQ(run.out[4], "ok   log: none yet");
    EXPECT_FALSE(QFileInfo::exists(dataFolder()));
}

TEST_F(CheckTest, UsedProfileIsWellAndUntouched)
{
    makeThumbnail();
    const QStringList before = snapshot();
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    ASSERT_GE(run.out.size(), 6);
    EXPECT_EQ(run.out[2], "ok   data folder: " + dataFolder() + " is writable");
    EXPECT_EQ(run.out[3], "ok   database: pictures in it: 1");
    EXPECT_EQ(run.out[4], "ok   log: the last lines of " + defaultLogPath());
    EXPECT_EQ(snapshot(), before);
}

TEST_F(CheckTest, LogShowsItsLastTenLinesWithoutControlCharacters)
{
    createDataFolder();
    QByteArray log;
    for (int i = 1; i <= 2000; ++i)
        log += "line " + QByteArray::number(i) + " \x1b[31m\n";
    writeFile(defaultLogPath(), log);
    const QStringList out = check().out;
    const auto begin = out.indexOf("ok   log: the last lines of " + defaultLogPath());
    ASSERT_GE(begin, 0);
    ASSERT_EQ(out.size() - begin - 1, 10);
    EXPECT_EQ(out[begin + 1], "       line 1991 ?[31m");
    EXPECT_EQ(out.last(), "       line 2000 ?[31m");
}

TEST_F(CheckTest, DataFolderThatCannotBeMadeIsTold)
{
    m_environment.insert("XDG_DATA_HOME", kReadOnlyFolder);
    expectOnlyFailure(
        QString("FAIL data folder: %1/KESTRAVO_Thumbnail cannot be made: %1 is read-only").arg(kReadOnlyFolder));
}

TEST_F(CheckTest, ReadOnlyDataFolderIsTold)
{
    ASSERT_TRUE(QFile::link(kReadOnlyFolder, dataFolder()));
    expectOnlyFailure("FAIL data folder: " + dataFolder() + " is read-only");
    ASSERT_TRUE(QFile::remove(dataFolder()));
}

TEST_F(CheckTest, ReadOnlyPictureFolderIsTold)
{
    createDataFolder();
    ASSERT_TRUE(QFile::link(kReadOnlyFolder, path("thumbnailImage")));
    expectOnlyFailure("FAIL data folder: " + dataFolder() + "/thumbnailImage/ is read-only");
}

TEST_F(CheckTest, FileInPlaceOfTheDataFolderIsTold)
{
    writeFile(dataFolder(), "");
    expectOnlyFailure("FAIL data folder: " + dataFolder() + " is a file, where a folder should be");
    ASSERT_TRUE(QFile::remove(dataFolder()));
}

TEST_F(CheckTest, LogThatCannotBeWrittenIsTold)
{
    createDataFolder();
    ASSERT_TRUE(QDir().mkdir(defaultLogPath()));
    expectOnlyFailure("FAIL data folder: " + defaultLogPath() + " cannot be written");
}

TEST_F(CheckTest, DamagedDatabaseIsToldAndLeftAlone)
{
    createDataFolder();
    const QByteArray garbage(4096, 'x');
    writeFile(defaultDatabasePath(), garbage);
    expectOnlyFailure("FAIL database: " + defaultDatabasePath() + " is damaged; delete it, and it is made anew");
    EXPECT_EQ(readFile(defaultDatabasePath()), garbage);
}

TEST_F(CheckTest, EmptyDatabaseIsWell)
{
    createDataFolder();
    writeFile(defaultDatabasePath(), "");
    EXPECT_TRUE(check().out.contains("ok   database: pictures in it: 0"));
}

TEST_F(CheckTest, MissingDisplayIsTold)
{
    m_environment.insert("DISPLAY", "");
    expectOnlyFailure(
        "FAIL OpenGL: OpenGL needs a display: run it in a graphical session, or as 'xvfb-run zrthumb ...' "
        "(package xvfb)");
}

TEST_F(CheckTest, MissingOpenGlIsTold)
{
    m_environment.insert("LIBGL_DRIVERS_PATH", m_folder.path());
    expectOnlyFailure("FAIL OpenGL: there is no OpenGL, so models have no thumbnails; a driver of the graphics card's "
                      "maker brings it");
}

TEST_F(CheckTest, OldOpenGlIsTold)
{
    m_environment.insert("MESA_GL_VERSION_OVERRIDE", "1.4");
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.out[1].startsWith("FAIL OpenGL: too old for models, which need 2.0: 1.4 "))
        << run.out[1].toStdString();
}

} // namespace
} // namespace zr::test
