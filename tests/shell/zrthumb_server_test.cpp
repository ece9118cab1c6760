// SPDX-License-Identifier: MIT
// How zrthumb.exe finds its server. Nothing is registered here.

#include "core/data_location.h"
#include "tests/shell/server_test.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QProcess>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 60000;

struct Outcome {
    int status;
    QString out;
    QString err;
};

class ZrthumbServerTest : public ServerTest
{
protected:
    Outcome run(const QStringList& arguments) const
    {
        return run(QFileInfo(server()).path() + "/zrthumb.exe", arguments, QProcessEnvironment::systemEnvironment());
    }

    Outcome run(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment) const
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder.path());
        startProgram(process, program, arguments);
        EXPECT_TRUE(process.waitForFinished(kTimeoutMs));
        return {process.exitCode(), text(process.readAllStandardOutput()), text(process.readAllStandardError())};
    }

    static QString server() { return QDir::fromNativeSeparators(QString::fromStdWString(ServerDll::path())); }

    QString sample(const QString& name) const { return writeSource(name, sampleBytes("rook.vrx")); }

private:
    static QString text(const QByteArray& bytes) { return QString::fromLocal8Bit(bytes).remove('\r'); }
};

TEST_F(ZrthumbServerTest, DllNeedsNoRegistration)
{
    const Outcome outcome = run({"--dll", server(), "-o", "out.png", sample("a.vrx")});
    EXPECT_EQ(outcome.err, QString());
    EXPECT_EQ(outcome.status, 0);
    const QString png = thumbnailImageFolder() + "a.vrxvrx.png";
    EXPECT_EQ(outcome.out, png + '\n');
    EXPECT_EQ(QImage(m_folder.filePath("out.png")), QImage(png).convertToFormat(QImage::Format_ARGB32));
}

TEST_F(ZrthumbServerTest, DllMayBeNamedRelativeToTheFolder)
{
    ASSERT_TRUE(QFile::copy(server(), m_folder.filePath("copy.dll")));
    sample("a.vrx");
    EXPECT_EQ(run({"--dll", "copy.dll", "a.vrx"}).status, 0);
}

TEST_F(ZrthumbServerTest, MissingServerIsReportedForEachFile)
{
    const QString path = sample("a.vrx");
    const QString prefix = "zrthumb: " + path + ": no thumbnail: ";
    const QString noFile = QDir::toNativeSeparators(m_folder.filePath("no.dll"));
    const QString noServer = "C:\\windows\\system32\\version.dll";

    Outcome outcome = run({path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, prefix +
                               "the thumbnail server is not registered: run the installer or register.cmd, or name "
                               "it with --dll\n");
    outcome = run({"--dll", "no.dll", path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, prefix + "the DLL " + noFile + " cannot be loaded\n");
    outcome = run({"--dll", noServer, path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, prefix + "the DLL " + noServer + " is no thumbnail server\n");
}

// Both are one file each and need no other file.
TEST_F(ZrthumbServerTest, CopiesWorkAnywhere)
{
    const QDir built = QFileInfo(server()).dir();
    const QDir program(m_folder.filePath("program"));
    const QDir library(m_folder.filePath("library"));
    ASSERT_TRUE(QDir().mkpath(program.path()) && QDir().mkpath(library.path()));
    ASSERT_TRUE(QFile::copy(built.filePath("zrthumb.exe"), program.filePath("zrthumb.exe")));
    ASSERT_TRUE(QFile::copy(server(), library.filePath("ZRThumbnail.dll")));
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove("WINEPATH");
    environment.insert("PATH", "C:\\windows\\system32;C:\\windows");

    const QStringList files = {sample("a.vrx"), writeSource("b.stl", sampleBytes("gear.stl"))};
    const Outcome outcome = run(program.filePath("zrthumb.exe"),
                                QStringList({"--dll", library.filePath("ZRThumbnail.dll")}) + files, environment);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, QString());
}

} // namespace
} // namespace zr::test
