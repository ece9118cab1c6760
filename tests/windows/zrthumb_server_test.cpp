// How zrthumb.exe finds its server. Nothing is registered here.

#include "core/data_location.h"
#include "tests/support/qt_printers.h"
#include "tests/windows/server_test.h"

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
        process.start(program, arguments);
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

TEST_F(ZrthumbServerTest, MissingServerIsToldForEachFile)
{
    const QString path = sample("a.vrx");
    const QString prefix = "zrthumb: " + path + ": no thumbnail: ";
    const QString noFile = QDir::toNativeSeparators(m_folder.filePath("no.dll"));
    const QString noServer = QDir::toNativeSeparators(QFileInfo(server()).path() + "/Qt5Core.dll");

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

// Qt would end the process, which in real life is the file browser.
TEST_F(ZrthumbServerTest, CopyWithoutPluginsGivesNoThumbnail)
{
    const QDir built = QFileInfo(server()).dir();
    const QDir copy(m_folder.filePath("copy/bin"));
    ASSERT_TRUE(QDir().mkpath(copy.path()));
    for (const QString& name : built.entryList({"*.dll", "zrthumb.exe"}, QDir::Files))
        ASSERT_TRUE(QFile::copy(built.filePath(name), copy.filePath(name)));
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove("QT_PLUGIN_PATH");
    environment.remove("WINEPATH");

    const QString path = sample("a.vrx");
    const QStringList arguments = {"--dll", copy.filePath("ZRThumbnail.dll"), path};
    Outcome outcome = run(copy.filePath("zrthumb.exe"), arguments, environment);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.err.startsWith("zrthumb: " + path + ": no thumbnail: ")) << outcome.err.toStdString();

    for (const char* plugin : {"platforms/qwindows.dll", "sqldrivers/qsqlite.dll"}) {
        ASSERT_TRUE(copy.mkpath(QFileInfo(plugin).path()));
        ASSERT_TRUE(QFile::copy(built.filePath(plugin), copy.filePath(plugin)));
    }
    outcome = run(copy.filePath("zrthumb.exe"), arguments, environment);
    EXPECT_EQ(outcome.status, 0) << "the folder runs as it is";
    EXPECT_EQ(outcome.err, QString());
}

} // namespace
} // namespace zr::test
