// SPDX-License-Identifier: MIT
// Faults that only Windows has: files that are open exclusively, and pictures that cannot be replaced while being read.

#include "core/data_location.h"
#include "tests/shell/server_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <thread>
#include <vector>

namespace zr::test
{
namespace
{

// Keeps a file open while the object lives, with the given sharing mode.
class OpenFile
{
public:
    OpenFile(const QString& path, DWORD sharing)
        : m_handle(CreateFileW(reinterpret_cast<LPCWSTR>(QDir::toNativeSeparators(path).utf16()), GENERIC_READ, sharing,
                               nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr))
    {
        EXPECT_NE(m_handle, INVALID_HANDLE_VALUE);
    }
    ~OpenFile() { CloseHandle(m_handle); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    // Identifies the file, whatever its name.
    quint64 identity() const
    {
        BY_HANDLE_FILE_INFORMATION information = {};
        EXPECT_TRUE(GetFileInformationByHandle(m_handle, &information));
        return quint64{information.nFileIndexHigh} << 32U | information.nFileIndexLow;
    }

private:
    HANDLE m_handle;
};

constexpr DWORD kExclusive = 0;
constexpr DWORD kReadersAndWriters = FILE_SHARE_READ | FILE_SHARE_WRITE;

class FaultsTest : public ServerTest
{
protected:
    void SetUp() override
    {
        ServerTest::SetUp();
        m_source = writeSource("a.vrx", sampleBytes("rook.vrx"));
        m_picture = request(m_source);
        ASSERT_FALSE(m_picture.isNull());
        ASSERT_TRUE(QFile::remove(defaultLogPath()));
    }

    // A failing Load, then Extract.
    void expectNoThumbnail(const QString& path) const
    {
        const auto object = m_server.make<IPersistFile>();
        EXPECT_EQ(load(object, path), S_FALSE);
        EXPECT_TRUE(extract(object).isNull());
        EXPECT_EQ(logMessages().last(), "73 getImage False");
    }

    // The next request has to make the picture again.
    void changeSource() const { moveTimeStamp(m_source, 1000); }

    // The same, and the existing PNG has other contents.
    void changeSourceAndPicture() const
    {
        changeSource();
        writeFile(png(), "an older picture");
    }

    static quint64 fileOf(const QString& path) { return OpenFile(path, kReadersAndWriters).identity(); }

    // Pictures that are not in their place yet.
    static QStringList temporaryFiles()
    {
        return QDir(thumbnailImageFolder()).entryList({".*"}, QDir::Files | QDir::Hidden);
    }

    static QString png() { return thumbnailImageFolder() + "a.vrxvrx.png"; }

    QString m_source;
    QImage m_picture;
};

TEST_F(FaultsTest, LockedSourceIsReported)
{
    for (const char* sample : {"rook.vrx", "bottle.photons", "gear.stl", "duck.obj", "tower.slc"}) {
        const QString path = writeSource(QString("locked-") + sample, sampleBytes(sample));
        {
            const OpenFile locked(path, kExclusive);
            expectNoThumbnail(path);
        }
        EXPECT_FALSE(request(path).isNull()) << sample;
    }
}

TEST_F(FaultsTest, LockedLogOnlyLosesItsLines)
{
    writeFile(defaultLogPath(), "");
    {
        const OpenFile locked(defaultLogPath(), FILE_SHARE_READ);
        EXPECT_EQ(request(m_source), m_picture);
        EXPECT_EQ(logMessages(), QStringList());
    }
    EXPECT_EQ(request(m_source), m_picture);
    EXPECT_FALSE(logMessages().isEmpty());
}

TEST_F(FaultsTest, ExclusivelyOpenPngIsKeptAndTheFailureReported)
{
    changeSource();
    const QByteArray before = readFile(png());
    {
        const OpenFile locked(png(), kExclusive);
        expectNoThumbnail(m_source);
    }
    EXPECT_EQ(readFile(png()), before);
    EXPECT_EQ(request(m_source), m_picture);
}

// Opened as the C library opens files. A file that is being read cannot be replaced.
TEST_F(FaultsTest, PngThatIsReadForLongIsOverwritten)
{
    changeSourceAndPicture();
    const OpenFile reader(png(), kReadersAndWriters);
    EXPECT_EQ(request(m_source), m_picture);
    EXPECT_EQ(fileOf(png()), reader.identity());
    EXPECT_EQ(temporaryFiles(), QStringList());
}

TEST_F(FaultsTest, PngThatIsReadForAMomentIsReplaced)
{
    changeSourceAndPicture();
    auto reader = std::make_unique<OpenFile>(png(), kReadersAndWriters);
    const quint64 before = reader->identity();
    std::atomic<bool> isDone{false};
    bool wasInTheWay = false;
    // The new picture has been written when the reader leaves.
    std::thread leaving([&] {
        while (!isDone && !wasInTheWay)
            wasInTheWay = !temporaryFiles().isEmpty();
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        reader.reset();
    });
    EXPECT_EQ(request(m_source), m_picture);
    isDone = true;
    leaving.join();
    EXPECT_TRUE(wasInTheWay);
    EXPECT_NE(fileOf(png()), before);
    EXPECT_EQ(temporaryFiles(), QStringList());
}

// Another process may be about to return it.
TEST_F(FaultsTest, PngOfTheSameContentsIsNotReplaced)
{
    changeSource();
    const auto before = fileOf(png());
    moveTimeStamp(png(), -1000);
    EXPECT_EQ(request(m_source), m_picture);
    EXPECT_EQ(fileOf(png()), before);
    EXPECT_LT(QFileInfo(png()).lastModified().secsTo(QDateTime::currentDateTime()), 500);
    EXPECT_EQ(temporaryFiles(), QStringList());
}

TEST_F(FaultsTest, ProcessesSideBySideLeaveWholeLinesAndEveryRow)
{
    constexpr int kProcesses = 4;
    constexpr int kFiles = 30;
    const QString server = QDir::fromNativeSeparators(QString::fromStdWString(ServerDll::path()));
    QStringList files;
    for (int i = 0; i < kFiles; ++i) {
        const QString name = QStringLiteral("%1.vrx").arg(i);
        writeSource(name, sampleBytes("rook.vrx"));
        files.append(m_folder.filePath(name));
    }
    std::vector<std::unique_ptr<QProcess>> programs;
    for (int i = 0; i < kProcesses; ++i) {
        programs.push_back(std::make_unique<QProcess>());
        programs.back()->start(QFileInfo(server).path() + "/zrthumb.exe", QStringList{"--dll", server} + files);
    }
    for (const auto& program : programs) {
        EXPECT_TRUE(program->waitForFinished(120000));
        EXPECT_EQ(program->exitCode(), 0) << program->readAllStandardError().constData();
    }
    std::map<QString, int> counts;
    const QStringList messages = logMessages();
    for (const QString& message : messages)
        ++counts[message];
    for (const QString& file : qAsConst(files)) {
        EXPECT_EQ(counts["37 in 2 " + QDir::toNativeSeparators(file)], kProcesses) << file.toStdString();
        EXPECT_EQ(QImage(thumbnailImageFolder() + QFileInfo(file).fileName() + "vrx.png").width(), m_picture.width());
    }
    EXPECT_EQ(counts["63 app after"], kProcesses * kFiles);
    EXPECT_EQ(counts["61 app start"], kProcesses);
}

} // namespace
} // namespace zr::test
