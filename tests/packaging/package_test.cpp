// SPDX-License-Identifier: MIT
#include "tests/packaging/package_test.h"
#include "tests/support/registered_suffixes.h"

#include "core/data_location.h"
#include "tests/shell/native_pictures.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>
#include <QtEndian>

#include <algorithm>

namespace zr::test
{
namespace
{

constexpr int kTimeoutMs = 120000;
constexpr int kPollMs = 50;

// Without the build folder.
QProcessEnvironment bareEnvironment()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.remove("WINEPATH");
    environment.insert("PATH", "C:\\windows\\system32;C:\\windows");
    return environment;
}

QImage readPicture(const QString& path)
{
    const QByteArray bytes = readFile(path);
    if (bytes.size() < 8)
        return {};
    const auto width = qFromLittleEndian<qint32>(bytes.constData());
    const auto height = qFromLittleEndian<qint32>(bytes.constData() + 4);
    QImage picture(width, height, QImage::Format_ARGB32);
    if (bytes.size() != 8 + picture.sizeInBytes())
        return {};
    std::copy(bytes.cbegin() + 8, bytes.cend(), picture.bits());
    return picture;
}

// Keys that Wine itself creates when a program first shows a window or requests a handler, and the view of 32-bit
// programs.
bool isMadeBySystem(const std::wstring& line)
{
    for (const wchar_t* const view : {L"Wow6432Node", L"Classes\\Wow6432Node"}) {
        if (line.rfind(view, 0) == 0)
            return true;
    }
    return line.find(L"\\CurrentVersion\\Shell Extensions") != std::wstring::npos || line.rfind(L"Wine\\", 0) == 0;
}

void forgetServer()
{
    for (const wchar_t* const key :
         {L"Software\\Classes\\ZRThumbnail.ZReExtract.1", L"Software\\Classes\\ZRThumbnail.ZReExtract",
          L"Software\\Classes\\TypeLib\\{F473925C-FDEE-42AD-9FC2-C843DB7BA2B2}",
          L"Software\\Classes\\Interface\\{9EFBFC7F-30FC-40F7-A73A-EC5036F339B9}"})
        removeTree(HKEY_LOCAL_MACHINE, key);
    removeTree(HKEY_CLASSES_ROOT, kClassKey);
    removeTree(HKEY_LOCAL_MACHINE, kUninstallKey);
    for (const QString& suffix : kRegisteredSuffixes)
        removeTree(HKEY_CLASSES_ROOT, suffix.toStdWString());
}

} // namespace

FileBrowser::FileBrowser()
{
    m_process.setProcessEnvironment(bareEnvironment());
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    startProgram(m_process, qEnvironmentVariable("ZRTHUMB_SHELL_CLIENT"),
                 {QDir::toNativeSeparators(m_pictures.path())});
}

FileBrowser::~FileBrowser()
{
    m_process.closeWriteChannel();
    EXPECT_TRUE(m_process.waitForFinished(kTimeoutMs));
    EXPECT_EQ(m_process.exitCode(), 0);
}

FileBrowser::Answer FileBrowser::ask(const QString& path)
{
    m_process.write(QDir::toNativeSeparators(path).toUtf8() + '\n');
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(kTimeoutMs)) {
            ADD_FAILURE() << "no answer";
            return {};
        }
    }
    static const QRegularExpression form("^\\S+ (none|\\d+x\\d+) (.*)$");
    const auto match = form.match(QString::fromUtf8(m_process.readLine()).trimmed() + ' ');
    EXPECT_TRUE(match.hasMatch());
    const QString server = QDir::fromNativeSeparators(match.captured(2).trimmed());
    if (match.captured(1) == "none")
        return {QImage(), server};
    const QImage picture = readPicture(m_pictures.filePath(QFileInfo(path).fileName() + ".bgra"));
    EXPECT_FALSE(picture.isNull());
    return {picture, server};
}

void PackageTest::SetUp()
{
    ASSERT_FALSE(QFileInfo::exists(kInstallFolder));
    ASSERT_FALSE(keyExists(HKEY_CLASSES_ROOT, kClassKey));
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
}

void PackageTest::TearDown()
{
    if (QFileInfo::exists(kInstallFolder)) {
        EXPECT_TRUE(HasFailure()) << "the test leaves its installation behind";
        uninstall();
        QDir(kInstallFolder).removeRecursively();
    }
    forgetServer();
    QFile::remove(kShortcut);
    QDir(dataFolder()).removeRecursively();
}

QString PackageTest::package(const QString& name)
{
    return qEnvironmentVariable("ZRTHUMB_PACKAGES") + '/' + name;
}

QString PackageTest::setup()
{
    return package("ZRThumbnail-" ZRTHUMB_VERSION "-setup.exe");
}

QString PackageTest::olderSetup()
{
    return package("older-setup.exe");
}

QString PackageTest::unpackedZip()
{
    return package("unpacked/ZRThumbnail-" ZRTHUMB_VERSION);
}

ProgramRun PackageTest::run(const QString& program, const QStringList& arguments)
{
    return runProgram(program, arguments, "C:/", bareEnvironment());
}

void PackageTest::runBatch(const QString& file, const QString& arguments)
{
    QProcess process;
    process.setProcessEnvironment(bareEnvironment());
    process.setProgram("cmd.exe");
    process.setNativeArguments(QString("/s /c \"\"%1\" %2\"").arg(QDir::toNativeSeparators(file), arguments));
    startProgram(process);
    EXPECT_TRUE(process.waitForFinished(kTimeoutMs));
    EXPECT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
}

int PackageTest::install(const QString& setup, const QStringList& arguments)
{
    return run(setup, QStringList("/S") + arguments).status;
}

void PackageTest::uninstall(const QStringList& arguments, bool inUse)
{
    EXPECT_EQ(run(kInstallFolder + "/uninstall.exe", QStringList("/S") + arguments).status, 0);
    EXPECT_FALSE(keyExists(HKEY_LOCAL_MACHINE, kUninstallKey));
    const QStringList left = filesBelow(kInstallFolder);
    EXPECT_EQ(QFileInfo::exists(kInstallFolder), inUse);
    EXPECT_EQ(left, left.filter("/ZRThumbnail.retired"));
}

void PackageTest::copyFolder(const QString& from, const QString& to)
{
    QDirIterator entries(from, QDir::Files, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString target = to + entries.next().mid(from.size());
        ASSERT_TRUE(QDir().mkpath(QFileInfo(target).path()));
        ASSERT_TRUE(QFile::copy(entries.filePath(), target)) << target.toStdString();
    }
}

QString PackageTest::sample(const QString& name) const
{
    for (const samples::SampleFile& each : samples::sampleFiles()) {
        if (name == each.name)
            return writeFile(m_folder.filePath(name), each.make());
    }
    ADD_FAILURE() << "there is no sample " << name.toStdString();
    return {};
}

void PackageTest::expectThumbnailsBy(const QString& folder) const
{
    FileBrowser browser;
    for (const samples::SampleFile& each : samples::sampleFiles()) {
        SCOPED_TRACE(each.name);
        const FileBrowser::Answer answer = browser.ask(sample(each.name));
        EXPECT_EQ(answer.server.toStdString(), (folder + "/ZRThumbnail.dll").toStdString());
        expectNativePicture(each.name, answer.picture);
    }
}

void PackageTest::expectNoThumbnails() const
{
    FileBrowser browser;
    for (const samples::SampleFile& each : samples::sampleFiles()) {
        const FileBrowser::Answer answer = browser.ask(sample(each.name));
        EXPECT_TRUE(answer.picture.isNull()) << each.name;
        EXPECT_EQ(answer.server.toStdString(), "") << each.name;
    }
}

bool PackageTest::waitUntil(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > kTimeoutMs)
            return false;
        QThread::msleep(kPollMs);
    }
    return true;
}

QStringList filesBelow(const QString& folder)
{
    QStringList files;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        files += entries.next();
    files.sort();
    return files;
}

MachineState MachineState::now()
{
    MachineState state;
    const std::pair<HKEY, std::wstring> parts[] = {{HKEY_LOCAL_MACHINE, L"HKLM\\Software\\"},
                                                   {HKEY_CURRENT_USER, L"HKCU\\Software\\"}};
    for (const auto& [root, prefix] : parts) {
        const RegistryLines lines = savedRegistryBelow(root, L"Software");
        EXPECT_FALSE(lines.empty());
        for (const std::wstring& line : lines) {
            if (!isMadeBySystem(line))
                state.registry.push_back(prefix + line);
        }
    }
    std::sort(state.registry.begin(), state.registry.end());
    state.files = filesBelow("C:/");
    // All programs use the folders for temporary files; the uninstaller leaves itself there until the next start.
    const QRegularExpression temporary("/Temp(/|$)", QRegularExpression::CaseInsensitiveOption);
    state.files.erase(std::remove_if(state.files.begin(), state.files.end(),
                                     [&](const QString& path) { return path.contains(temporary); }),
                      state.files.end());
    return state;
}

MachineState added(const MachineState& before, const MachineState& after)
{
    MachineState difference;
    difference.registry = linesOnlyIn(after.registry, before.registry);
    std::set_difference(after.files.begin(), after.files.end(), before.files.begin(), before.files.end(),
                        std::back_inserter(difference.files));
    return difference;
}

} // namespace zr::test
