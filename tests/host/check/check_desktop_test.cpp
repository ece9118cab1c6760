// SPDX-License-Identifier: MIT
// zrthumb --check: whether file managers are told of zrthumbnailer, and who makes the thumbnails of each type. The
// folders of data are made here, of the installed files; nothing is looked up in those of the machine.

#include "host/check/desktops.h"
#include "readers/reader_table.h"
#include "tests/host/check/check_test.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <functional>

#include <sys/stat.h>

namespace zr::test
{
namespace
{

// As the packages install it: the file of ours, and the types of the system and ours.
const QString kInstalled = QStringLiteral(ZRTHUMB_DESKTOP_DATA);
const QString kOurFile = QStringLiteral("/thumbnailers/zrthumb.thumbnailer");
const QString kProgram = QFileInfo(QStringLiteral(ZRTHUMB_PROGRAM)).path() + "/zrthumbnailer";

const QByteArray kOtherProgram = "[Thumbnailer Entry]\nExec=/opt/viewer/view %i %o\nMimeType=image/x-any;model/stl;\n";

QByteArray withExec(const QByteArray& exec)
{
    return "[Thumbnailer Entry]\nExec=" + exec + "\nMimeType=model/stl;model/obj\n";
}

class CheckDesktopTest : public CheckTest
{
protected:
    void SetUp() override
    {
        CheckTest::SetUp();
        useSystem({kInstalled});
        m_environment.insert("XDG_DATA_HOME", home());
        m_environment.insert("PATH", QFileInfo(kProgram).path() + ":/usr/bin:/bin");
        m_environment.insert("QT_PLUGIN_PATH", m_folder.filePath("plugins"));
        // The rest goes faster without a display.
        for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            m_environment.remove(variable);
        ASSERT_TRUE(QDir(m_folder.path()).mkpath("plugins/kf5/thumbcreator"));
        writeFile(plugin(), "");
    }

    QString home() const { return m_folder.filePath("home"); }
    QString system() const { return m_folder.filePath("system"); }
    QString plugin() const { return m_folder.filePath("plugins/kf5/thumbcreator/zrthumb_kde.so"); }

    /// Sets the system's folders of data.
    void useSystem(const QStringList& folders) { m_environment.insert("XDG_DATA_DIRS", folders.join(':')); }

    static QString write(const QString& path, const QByteArray& bytes)
    {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        return writeFile(path, bytes);
    }

    /// A system without our types, or with their definition alone, when the database is not made anew.
    void makeSystemWithoutOurTypes(bool hasDefinition)
    {
        write(system() + kOurFile, readFile(kInstalled + kOurFile));
        const QString packages = "/mime/packages/";
        const QString systems = packages + "freedesktop.org.xml";
        write(system() + systems, readFile(kInstalled + systems));
        updateTypes(system());
        if (hasDefinition)
            write(system() + packages + "zrthumb.xml", readFile(kInstalled + packages + "zrthumb.xml"));
        useSystem({system()});
    }

    void updateTypes(const QString& folder) const
    {
        QProcessEnvironment environment = m_environment;
        environment.insert("PKGSYSTEM_ENABLE_FSYNC", "0");
        EXPECT_EQ(runProgram("update-mime-database", {folder + "/mime"}, m_folder.path(), environment).status, 0);
    }

    /// The types of one package in the user's folder.
    void defineTypes(const QByteArray& types) const
    {
        write(home() + "/mime/packages/other.xml",
              "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">" + types + "</mime-info>\n");
        updateTypes(home());
    }

    /// The lines about the desktop, without those of what follows.
    static QStringList linesOfDesktop(const ProgramRun& run)
    {
        QStringList lines;
        for (const QString& line : run.out) {
            if (line.mid(5).startsWith("Qt: "))
                break;
            lines += line;
        }
        return lines;
    }

    QString seenOnlyOutsideGnome(const QString& file) const
    {
        return QString("note thumbnailer: %1 runs %2, which GNOME does not see, since it is not below /usr: for GNOME, "
                       "install the package zrthumb")
            .arg(file, kProgram);
    }

    /// What is found where nothing is wrong but that this build is not below /usr.
    QStringList wellLines() const
    {
        QStringList lines = {seenOnlyOutsideGnome(kInstalled + kOurFile)};
        for (const QString& suffix : supportedSuffixes())
            lines += "ok   ." + suffix + ": ZRThumbnail makes the thumbnails";
        return lines += "ok   KDE: " + plugin();
    }

    /// Expects exactly these lines about the desktop, instead of the same suffixes' lines where nothing is wrong.
    void expectLines(const QStringList& instead) const
    {
        QStringList expected;
        for (const QString& line : wellLines()) {
            const QString subject = line.section(": ", 0, 0).mid(5);
            const QStringList others =
                instead.filter(QRegularExpression("^.{5}" + QRegularExpression::escape(subject) + ": "));
            expected += others.isEmpty() ? QStringList(line) : others;
        }
        const ProgramRun run = check();
        EXPECT_EQ(linesOfDesktop(run), expected);
        EXPECT_EQ(run.err, QStringList());
        EXPECT_EQ(run.status, marked(run, "FAIL").isEmpty() ? 0 : 1);
        EXPECT_EQ(marked(run, "FAIL"), instead.filter(QRegularExpression("^FAIL ")));
    }
};

TEST_F(CheckDesktopTest, EachSuffixIsWellWhereThePackageIsInstalled)
{
    EXPECT_TRUE(supportedSuffixes().contains("stl"));
    expectLines({});
}

TEST_F(CheckDesktopTest, MissingRegistrationIsNotedAndNoProblem)
{
    useSystem({system()});
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(linesOfDesktop(run),
              QStringList("note thumbnailer: zrthumb.thumbnailer is in none of the folders of data, so no file manager "
                          "shows thumbnails: install the package zrthumb"));
    EXPECT_EQ(run.out.last(), "no problems found");
}

TEST_F(CheckDesktopTest, FirstFolderOfDataCounts)
{
    write(system() + kOurFile, readFile(kInstalled + kOurFile));
    useSystem({system(), kInstalled});
    expectLines({seenOnlyOutsideGnome(system() + kOurFile)});
    write(home() + kOurFile, readFile(kInstalled + kOurFile));
    expectLines({seenOnlyOutsideGnome(home() + kOurFile)});
}

TEST_F(CheckDesktopTest, FoldersOfDataMayBeWrittenInManyWays)
{
    const QString file = write(home() + "/thumbnailers/view.thumbnailer", kOtherProgram);
    write(home() + kOurFile, readFile(kInstalled + kOurFile));
    for (const QString& way : {home() + "/", home() + "//", m_folder.path() + "//home", home() + "/../home/."}) {
        SCOPED_TRACE(way.toStdString());
        m_environment.insert("XDG_DATA_HOME", way);
        useSystem({home(), way, "relative", "", kInstalled + "/", kInstalled});
        const QStringList lines = linesOfDesktop(check());
        EXPECT_EQ(lines.value(0), seenOnlyOutsideGnome(home() + kOurFile));
        EXPECT_TRUE(lines.value(1).endsWith(" by " + file + ": delete that file") ||
                    lines.value(1).endsWith(" by " + file + ": if its pictures show, delete that file"))
            << lines.value(1).toStdString();
    }
}

TEST_F(CheckDesktopTest, ProgramThatIsNotInPathIsTold)
{
    m_environment.insert("PATH", m_folder.path());
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(linesOfDesktop(run), QStringList({"FAIL thumbnailer: " + kInstalled + kOurFile +
                                                    " runs zrthumbnailer, which is not in PATH: install the package "
                                                    "zrthumb again",
                                                "ok   KDE: " + plugin()}));
}

TEST_F(CheckDesktopTest, ProgramOfAnAbsolutePathThatIsNoProgramIsTold)
{
    const QString program = write(m_folder.filePath("bin/zrthumbnailer"), "");
    const QString file = write(home() + kOurFile, withExec(program.toUtf8() + " %i %o"));
    const QString line = "FAIL thumbnailer: " + file + " runs " + program + ", which is not there: delete it";
    EXPECT_EQ(linesOfDesktop(check()), QStringList({line, "ok   KDE: " + plugin()}));
    useSystem({});
    EXPECT_EQ(linesOfDesktop(check()),
              QStringList({line + ", and install the package zrthumb", "ok   KDE: " + plugin()}));
}

// What makes GNOME's sandbox see a program.
TEST_F(CheckDesktopTest, GnomeSeesProgramsBelowUsr)
{
    const QString name = "zrthumb-of-nobody";
    const QString script = write(m_folder.filePath("bin/" + name), "#!/bin/sh\n");
    ASSERT_TRUE(QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    ASSERT_TRUE(QFile::link("/usr/bin/env", m_folder.filePath("bin/env")));
    ASSERT_TRUE(QFile::link("/usr/bin", m_folder.filePath("usr")));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(m_folder.filePath("bin") + ":/usr/bin"));
    EXPECT_TRUE(isSeenByGnome("env"));
    EXPECT_TRUE(isSeenByGnome("/usr/bin/env"));
    EXPECT_TRUE(isSeenByGnome("/bin/sh"));
    EXPECT_FALSE(isSeenByGnome(m_folder.filePath("bin/env")));
    EXPECT_FALSE(isSeenByGnome(m_folder.filePath("usr/env")));
    EXPECT_FALSE(isSeenByGnome("/usr/.." + script));
    EXPECT_FALSE(isSeenByGnome(name));
    EXPECT_FALSE(isSeenByGnome(script));
    EXPECT_FALSE(isSeenByGnome("/usr/bin/" + name));
    EXPECT_FALSE(isSeenByGnome("/usr/share/doc"));
    qputenv("PATH", path);
}

TEST_F(CheckDesktopTest, OtherProgramInTheUsersFolderComesFirst)
{
    const QString file = write(home() + "/thumbnailers/view.thumbnailer", kOtherProgram);
    expectLines(
        {"FAIL .stl: another program makes the thumbnails, /opt/viewer/view, by " + file + ": delete that file"});
}

TEST_F(CheckDesktopTest, OtherProgramInAnEarlierFolderComesFirst)
{
    const QString file = write(system() + "/thumbnailers/view.thumbnailer", kOtherProgram);
    useSystem({system(), kInstalled});
    expectLines({"FAIL .stl: another program makes the thumbnails, /opt/viewer/view, by " + file +
                 ": remove its package, or copy " + kInstalled + kOurFile + " to " + home() + "/thumbnailers"});
    write(home() + kOurFile, readFile(kInstalled + kOurFile));
    expectLines(
        {seenOnlyOutsideGnome(home() + kOurFile),
         "note .stl: ZRThumbnail makes the thumbnails; another program is registered, too, /opt/viewer/view, by " +
             file + ": if its pictures show, remove its package"});
}

TEST_F(CheckDesktopTest, OtherProgramInALaterFolderIsNoted)
{
    const QString file = write(system() + "/thumbnailers/view.thumbnailer", kOtherProgram);
    useSystem({kInstalled, system()});
    expectLines(
        {"note .stl: ZRThumbnail makes the thumbnails; another program is registered, too, /opt/viewer/view, by " +
         file + ": if its pictures show, remove its package, or copy " + kInstalled + kOurFile + " to " + home() +
         "/thumbnailers"});
}

// The order is that of the folder's entries, whatever their names.
TEST_F(CheckDesktopTest, InOneFolderTheFirstEntryCounts)
{
    for (int i = 0; i < 20; ++i) {
        QDir(system()).removeRecursively();
        const QString other = "view" + QString::number(i) + ".thumbnailer";
        write(system() + "/thumbnailers/" + other, kOtherProgram);
        write(system() + kOurFile, readFile(kInstalled + kOurFile));
        useSystem({system(), kInstalled});
        const QStringList order = QDir(system() + "/thumbnailers").entryList(QDir::Files, QDir::Unsorted);
        ASSERT_EQ(order.size(), 2);
        const bool isOtherFirst = order.first() == other;
        const QStringList lines = linesOfDesktop(check()).filter(" .stl: ");
        ASSERT_EQ(lines.size(), 1);
        EXPECT_TRUE(lines.first().startsWith(isOtherFirst ? "FAIL .stl: another program" : "note .stl: ZRThumbnail"))
            << lines.first().toStdString();
    }
}

TEST_F(CheckDesktopTest, OtherProgramInAFileOfOurNameIsTold)
{
    const QString file = write(home() + kOurFile, kOtherProgram);
    expectLines(
        {"FAIL thumbnailer: " + file + " runs /opt/viewer/view and not zrthumbnailer: delete it",
         seenOnlyOutsideGnome(kInstalled + kOurFile),
         "FAIL .stl: another program makes the thumbnails, /opt/viewer/view, by " + file + ": delete that file"});
}

TEST_F(CheckDesktopTest, OtherNamesOfFilesAreOursIfTheyRunOurProgram)
{
    write(home() + "/thumbnailers/mine.thumbnailer", withExec(kProgram.toUtf8() + " -s %s %i %o"));
    expectLines({});
}

constexpr char kUnknownType[] = " has no type here, so no program is asked for thumbnails: ";

TEST_F(CheckDesktopTest, MissingTypesAreTold)
{
    makeSystemWithoutOurTypes(false);
    const ProgramRun run = check();
    EXPECT_EQ(run.status, 1);
    const QString again = "install the packages shared-mime-info and zrthumb again";
    EXPECT_TRUE(run.out.contains("ok   .stl: ZRThumbnail makes the thumbnails"));
    EXPECT_TRUE(run.out.contains("FAIL .vrx:" + QString(kUnknownType) + again)) << run.out.join('\n').toStdString();
    EXPECT_TRUE(
        run.out.contains("FAIL .gf: is taken for another type, application/x-tex-gf, so ZRThumbnail is not asked "
                         "for thumbnails: " +
                         again));
}

TEST_F(CheckDesktopTest, TypesThatTheDatabaseHasNotTakenInAreTold)
{
    makeSystemWithoutOurTypes(true);
    const QString update = "type 'sudo update-mime-database " + system() + "/mime'";
    EXPECT_TRUE(check().out.contains("FAIL .vrx:" + QString(kUnknownType) + update));
    updateTypes(system());
    EXPECT_EQ(linesOfDesktop(check()).filter("FAIL"), QStringList());
}

TEST_F(CheckDesktopTest, TypesInTheUsersFolderNeedNoAdministrator)
{
    makeSystemWithoutOurTypes(false);
    const QString definitions = "/mime/packages/zrthumb.xml";
    write(home() + definitions, readFile(kInstalled + definitions));
    EXPECT_TRUE(
        check().out.contains("FAIL .vrx:" + QString(kUnknownType) + "type 'update-mime-database " + home() + "/mime'"));
    updateTypes(home());
    EXPECT_EQ(linesOfDesktop(check()).filter("FAIL"), QStringList());
}

TEST_F(CheckDesktopTest, MissingDatabaseOfTypesIsTold)
{
    write(system() + kOurFile, readFile(kInstalled + kOurFile));
    useSystem({system()});
    const QStringList failures = linesOfDesktop(check()).filter("FAIL");
    EXPECT_EQ(failures.size(), supportedSuffixes().size());
    EXPECT_EQ(failures.filter(kUnknownType).size(), failures.size());
}

TEST_F(CheckDesktopTest, TypesThatOutweighOursAreTold)
{
    defineTypes("<mime-type type='application/x-other'><glob pattern='*.stl' weight='70'/>"
                "<glob pattern='*.vrx' weight='40'/></mime-type>");
    expectLines({"FAIL .stl: is taken for another type, application/x-other, so ZRThumbnail is not asked for "
                 "thumbnails: remove the file that says so from " +
                 home() + "/mime/packages"});
}

// Of types of equal weight, what is in the file decides.
TEST_F(CheckDesktopTest, TypesOfEqualWeightAreNoProblem)
{
    defineTypes("<mime-type type='application/x-other'><glob pattern='*.stl'/></mime-type>");
    expectLines({});
}

TEST_F(CheckDesktopTest, TypesWhoseNamesTheUserTookAwayAreTold)
{
    defineTypes("<mime-type type='application/x-vrx'><glob-deleteall/></mime-type>");
    EXPECT_EQ(marked(check(), "FAIL").filter(kUnknownType).size(), 2);
    defineTypes("<mime-type type='application/x-vrx'><glob-deleteall/><glob pattern='*.vrx'/>"
                "<glob pattern='*.vrxdlp'/></mime-type>");
    expectLines({});
}

struct UnusableFile {
    const char* name;
    std::function<void(const QString&)> make;
};

std::ostream& operator<<(std::ostream& out, const UnusableFile& row)
{
    return out << row.name;
}

UnusableFile withBytes(const char* name, const QByteArray& bytes)
{
    return {name, [bytes](const QString& path) { writeFile(path, bytes); }};
}

UnusableFile linkTo(const char* name, const QString& target)
{
    return {name, [target](const QString& path) { ASSERT_TRUE(QFile::link(target.isEmpty() ? path : target, path)); }};
}

const UnusableFile kUnusableFiles[] = {
    withBytes("Empty", ""),
    withBytes("Garbage", QByteArray(5000, '\x7f')),
    withBytes("Zeros", QByteArray(5000, '\0')),
    withBytes("LineThatBelongsToNothing", kOtherProgram + "broken\n"),
    withBytes("KeyOutsideOfAnyGroup", "Version=1\n" + kOtherProgram),
    withBytes("KeyWithoutName", kOtherProgram + "=1\n"),
    withBytes("OtherGroup", "[Desktop Entry]\nExec=view\nMimeType=model/stl\n"),
    withBytes("NoExec", "[Thumbnailer Entry]\nMimeType=model/stl\n"),
    withBytes("ExecOfAnotherGroup", "[Thumbnailer Entry]\nMimeType=model/stl\n[Other]\nExec=view\n"),
    withBytes("NoTypes", "[Thumbnailer Entry]\nExec=view\n"),
    {"Huge", [](const QString& path) { ASSERT_TRUE(QFile::resize(writeFile(path, ""), 1 << 30)); }},
    {"Folder", [](const QString& path) { ASSERT_TRUE(QDir().mkdir(path)); }},
    {"Pipe", [](const QString& path) { ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0); }},
    linkTo("Device", "/dev/zero"),
    linkTo("LooseLink", "/nowhere"),
    linkTo("LinkToItself", ""),
    // Regular files that cannot be read, not even by root.
    linkTo("Unreadable", "/proc/self/mem"),
};

class CheckUnusableFileTest : public CheckDesktopTest, public ::testing::WithParamInterface<UnusableFile>
{
protected:
    void make(const QString& path) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        GetParam().make(path);
    }
};

TEST_P(CheckUnusableFileTest, IsToldIfItIsOurs)
{
    const QString file = home() + kOurFile;
    make(file);
    expectLines({"FAIL thumbnailer: " + file + " is damaged or cannot be read: delete it",
                 seenOnlyOutsideGnome(kInstalled + kOurFile)});
}

TEST_P(CheckUnusableFileTest, OfThePackageIsInstalledAgain)
{
    make(system() + kOurFile);
    useSystem({system()});
    EXPECT_EQ(linesOfDesktop(check()),
              QStringList({"FAIL thumbnailer: " + system() + kOurFile +
                               " is damaged or cannot be read: install the package zrthumb again",
                           "ok   KDE: " + plugin()}));
}

TEST_P(CheckUnusableFileTest, OfAnotherProgramDoesNothing)
{
    make(home() + "/thumbnailers/view.thumbnailer");
    expectLines({});
}

TEST_P(CheckUnusableFileTest, InPlaceOfTheDatabaseOfTypesDoesNothing)
{
    make(home() + "/mime/globs2");
    expectLines({});
}

INSTANTIATE_TEST_SUITE_P(Files, CheckUnusableFileTest, ::testing::ValuesIn(kUnusableFiles),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(CheckDesktopTest, FilesAreReadAsTheDesktopsReadThem)
{
    const QByteArray types = "MimeType=model/stl\n";
    const struct {
        QByteArray bytes;
        const char* program;
    } rows[] = {
        {"# remark\n\n [Thumbnailer Entry] \r\n Exec = view %i \r\n" + types, "view"},
        {"[Other]\nExec=wrong\n[Thumbnailer Entry]\nExec=view\n" + types + "[Another]\nExec=wrong\n", "view"},
        {"[Thumbnailer Entry]\nExec=wrong\nExec[de]=wrong\nExec=view\n" + types, "view"},
        {"[Thumbnailer Entry]\nExec='/opt/my viewer/view' %i\n" + types, "/opt/my viewer/view"},
        {"[Thumbnailer Entry]\nExec=\"/opt/my viewer\"/view %i\n" + types, "/opt/my viewer/view"},
        {"[Thumbnailer Entry]\nExec=/opt/my\\\\ viewer/view %i\n" + types, "/opt/my viewer/view"},
        {"[Thumbnailer Entry]\nExec=view\\s%i\n" + types, "view"},
        {"[Thumbnailer Entry]\nExec=vi\\tew\033[31m\n" + types, "vi"},
        {"[Thumbnailer Entry]\nTryExec=/nowhere\nExec=view\nMimeType=;model/stl", "view"},
        {"[Thumbnailer Entry]\nExec=view\nMimeType=a\\;b;model/stl;model/stl;;", "view"},
        {"[Thumbnailer Entry]\nExec=view\n" + types + QByteArray(200000, '#'), "view"},
        {"[Thumbnailer Entry]\nExec=view\n" + types + QByteArray("# remark\n").repeated(20000) + "too late\n", "view"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.bytes.left(100).toStdString());
        const QString file = write(home() + "/thumbnailers/view.thumbnailer", row.bytes);
        expectLines({"FAIL .stl: another program makes the thumbnails, " + QString(row.program) + ", by " + file +
                     ": delete that file"});
    }
}

TEST_F(CheckDesktopTest, OtherTypesOfOtherProgramsAreNoProblem)
{
    write(home() + "/thumbnailers/view.thumbnailer",
          "[Thumbnailer Entry]\nExec=view\nMimeType=image/png;model\\;/stl\n");
    write(home() + "/thumbnailers/view.thumbnailer.orig", kOtherProgram);
    expectLines({});
}

TEST_F(CheckDesktopTest, MissingPlugInOfKdeIsNoted)
{
    ASSERT_TRUE(QFile::remove(plugin()));
    expectLines({"note KDE: zrthumb_kde.so is not in " + QFileInfo(plugin()).path() +
                 ", so Dolphin shows no thumbnails: install the package zrthumb-kde"});
}

TEST_F(CheckDesktopTest, PlugInOfKdeIsFoundInAnyFolder)
{
    const QStringList folders = {m_folder.filePath("none"), m_folder.filePath("some"), m_folder.filePath("plugins")};
    ASSERT_TRUE(QDir(folders[1]).mkpath("kf5/thumbcreator"));
    EXPECT_EQ(checkKde(folders).detail, plugin());
    EXPECT_EQ(checkKde(folders.mid(0, 2)).verdict, Verdict::Note);
    EXPECT_EQ(checkKde(folders.mid(0, 2)).detail,
              "zrthumb_kde.so is not in " + folders[1] +
                  "/kf5/thumbcreator, so Dolphin shows no thumbnails: install the package zrthumb-kde");
    for (const QStringList& none : {QStringList(), QStringList(folders[0])}) {
        EXPECT_EQ(checkKde(none).verdict, Verdict::Note);
        EXPECT_EQ(checkKde(none).detail,
                  "its thumbnails are not installed here; they need the package zrthumb-kde, too");
    }
}

} // namespace
} // namespace zr::test
