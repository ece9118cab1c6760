// SPDX-License-Identifier: MIT
// Which types desktops see in our files, by the libraries that they ask: Qt for KDE, GLib for GNOME and Xfce.

#include "readers/reader_table.h"
#include "tests/support/files.h"
#include "tests/support/program_run.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QFileInfo>
#include <QLocale>
#include <QMimeDatabase>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

const QString kData = QStringLiteral(ZRTHUMB_DESKTOP_DATA);

class MimeTypesTest : public ::testing::Test
{
protected:
    QString write(const QString& name, const QByteArray& bytes) const
    {
        return writeFile(m_folder.filePath(name), bytes);
    }

    QString typeByQt(const QString& path) const { return QMimeDatabase().mimeTypeForFile(path).name(); }

    QString typeByGlib(const QString& path) const
    {
        const ProgramRun gio = runProgram("gio", {"info", "-a", "standard::content-type", path}, m_folder.path());
        const QString prefix = QStringLiteral("  standard::content-type: ");
        for (const QString& line : gio.out) {
            if (line.startsWith(prefix))
                return line.mid(prefix.size());
        }
        return {};
    }

    QTemporaryDir m_folder;
};

QStringList entry(const QString& key)
{
    const QByteArray prefix = key.toUtf8() + '=';
    for (const QByteArray& line : readFile(kData + "/thumbnailers/zrthumb.thumbnailer").split('\n')) {
        if (line.startsWith(prefix))
            return QString::fromUtf8(line.mid(prefix.size())).split(';', Qt::SkipEmptyParts);
    }
    return {};
}

TEST_F(MimeTypesTest, TheThumbnailerIsRunForEverySampleFile)
{
    const QStringList types = entry("MimeType");
    QStringList suffixes;
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        const QString path = write(sample.name, sample.make());
        EXPECT_TRUE(types.contains(typeByQt(path))) << sample.name << ": " << typeByQt(path).toStdString();
        EXPECT_TRUE(types.contains(typeByGlib(path))) << sample.name << ": " << typeByGlib(path).toStdString();
        suffixes.append(QFileInfo(path).suffix());
    }
    for (const QString& suffix : supportedSuffixes())
        EXPECT_TRUE(suffixes.contains(suffix)) << suffix.toStdString();
}

TEST_F(MimeTypesTest, TheThumbnailerIsRunWithSizeInputAndOutput)
{
    EXPECT_EQ(readFile(kData + "/thumbnailers/zrthumb.thumbnailer").split('\n').first(), "[Thumbnailer Entry]");
    EXPECT_EQ(entry("TryExec"), QStringList("zrthumbnailer"));
    EXPECT_EQ(entry("Exec"), QStringList("zrthumbnailer -s %s %i %o"));
}

// GNOME looks for the name that a file's type has, Xfce for each that is listed.
TEST_F(MimeTypesTest, OtherNamesOfTheTypesAreListedToo)
{
    QStringList types = entry("MimeType");
    for (const QString& name : QStringList(types)) {
        const QMimeType type = QMimeDatabase().mimeTypeForName(name);
        for (const QString& alias : type.aliases())
            EXPECT_TRUE(types.contains(alias)) << alias.toStdString() << " of " << name.toStdString();
    }
    EXPECT_TRUE(types.contains("model/x.stl-binary"));
    EXPECT_EQ(types.removeDuplicates(), 0);
}

struct NamedFile {
    const char* name;
    QByteArray bytes;
    const char* type;
};

TEST_F(MimeTypesTest, FilesOfEqualNamesAreToldApart)
{
    const NamedFile files[] = {
        {"picture.gf", QByteArray(216, '\0'), "application/x-gf"},
        {"tex.gf", QByteArray("\367\203\023 METAFONT output"), "application/x-tex-gf"},
        {"ours.obj", "mtllib part.mtl\nv 0 0 0\n", "model/obj"},
        {"tgif.obj", "%TGIF 4.2.5\n", "application/x-tgif"},
    };
    for (const NamedFile& file : files) {
        const QString path = write(file.name, file.bytes);
        EXPECT_EQ(typeByQt(path), file.type) << file.name;
        EXPECT_EQ(typeByGlib(path), file.type) << file.name;
    }
}

// Those with bytes that are no text.
TEST_F(MimeTypesTest, TheThumbnailerIsRunForModelsThatAreTakenForDrawings)
{
    const QString path = write("model.obj", QByteArray("# \001\002\003 \377\n\0v 0 0 0\n", 18));
    EXPECT_EQ(typeByGlib(path), "application/x-tgif");
    EXPECT_TRUE(entry("MimeType").contains(typeByGlib(path)));
}

TEST_F(MimeTypesTest, FilesWithoutASuffixAreKnownByTheirBeginning)
{
    const NamedFile files[] = {
        {"contours", "-SLCVER 2.0 -UNIT MM", "model/x-slc"},
        {"resin", QByteArray::fromHex("0701fd12") + QByteArray(108, '\0'), "application/x-vrx"},
        {"other", QByteArray::fromHex("12fd0107") + QByteArray(108, '\0'), "application/octet-stream"},
    };
    for (const NamedFile& file : files) {
        const QString path = write(file.name, file.bytes);
        EXPECT_EQ(typeByQt(path), file.type) << file.name;
        EXPECT_EQ(typeByGlib(path), file.type) << file.name;
    }
}

// Qt takes the language from its locale when it describes a type.
TEST_F(MimeTypesTest, TypesOfOursAreDescribedInEnglishAndGerman)
{
    const QLocale before;
    for (const QString& suffix : supportedSuffixes()) {
        const QMimeType type = QMimeDatabase().mimeTypeForFile("a." + suffix, QMimeDatabase::MatchExtension);
        QLocale::setDefault(QLocale(QLocale::English));
        const QString english = type.comment();
        QLocale::setDefault(QLocale(QLocale::German));
        const QString german = type.comment();
        EXPECT_NE(english, type.name()) << suffix.toStdString();
        EXPECT_NE(german, english) << suffix.toStdString();
    }
    QLocale::setDefault(before);
}

} // namespace
} // namespace zr::test
