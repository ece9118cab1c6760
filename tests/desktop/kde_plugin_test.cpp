// SPDX-License-Identifier: MIT
// The plug-in for KDE's file managers, loaded as they do, with programs that stand in for zrthumbnailer and with
// itself.

#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <KIO/ThumbnailCreator>
#include <KPluginFactory>
#include <KPluginMetaData>

#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QUrl>

#include <csignal>
#include <memory>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

const KPluginMetaData& metaData()
{
    static const KPluginMetaData data(QStringLiteral(ZRTHUMB_KDE_PLUGIN));
    return data;
}

QByteArray png(QSize size)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    picture.save(&buffer, "PNG");
    return bytes;
}

class KdePluginTest : public ::testing::Test
{
protected:
    KdePluginTest()
    {
        const auto loaded = KPluginFactory::instantiatePlugin<KIO::ThumbnailCreator>(metaData());
        m_creator.reset(loaded.plugin);
        EXPECT_NE(m_creator, nullptr) << loaded.errorString.toStdString();
        writeFile(path("picture.png"), png({20, 10}));
    }

    ~KdePluginTest() override { qputenv("PATH", m_pathVariable); }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    // What runs as zrthumbnailer, in the test's folder.
    void standIn(const QByteArray& commands)
    {
        QDir(m_folder.path()).mkdir("bin");
        const QString program = path("bin/zrthumbnailer");
        writeFile(program, "#!/bin/sh\ncd '" + m_folder.path().toUtf8() + "'\n" + commands + '\n');
        QFile(program).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", path("bin").toUtf8() + ':' + m_pathVariable);
    }

    KIO::ThumbnailResult create(const QUrl& url, QSize size = {256, 256}, qreal ratio = 1)
    {
        return m_creator->create(KIO::ThumbnailRequest(url, size, "model/stl", ratio, 0));
    }

    KIO::ThumbnailResult create() { return create(QUrl::fromLocalFile("/models/part.stl")); }

    QStringList lines(const QString& name) const
    {
        return QString::fromUtf8(readFile(path(name))).split('\n', Qt::SkipEmptyParts);
    }

    const QByteArray m_pathVariable = qgetenv("PATH");
    QTemporaryDir m_folder;
    std::unique_ptr<KIO::ThumbnailCreator> m_creator;
};

TEST_F(KdePluginTest, ItIsForTheTypesOfTheThumbnailerAndItsPicturesAreCached)
{
    EXPECT_EQ(metaData().mimeTypes(), QStringLiteral(ZRTHUMB_MIME_TYPES).split(' '));
    EXPECT_TRUE(metaData().value("CacheThumbnail", false));
    EXPECT_FALSE(metaData().name().isEmpty());
}

TEST_F(KdePluginTest, ThePictureIsWhatTheProgramWrites)
{
    standIn("cat picture.png");
    const KIO::ThumbnailResult result = create();
    ASSERT_TRUE(result.isValid());
    EXPECT_EQ(result.image().size(), QSize(20, 10));
    EXPECT_EQ(result.image().pixelColor(19, 9), QColor(Qt::red));
}

// The requested size has the display's ratio in it.
TEST_F(KdePluginTest, TheProgramIsAskedForTheLongerSide)
{
    standIn("printf '%s\\n' \"$@\" >arguments\ncat picture.png");
    const struct {
        QSize size;
        qreal ratio;
        const char* asked;
    } rows[] = {
        {{256, 128}, 1, "256"}, {{128, 512}, 1, "512"}, {{512, 512}, 2, "512"},
        {{8, 4}, 1, "16"},      {{9000, 1}, 1, "4096"},
    };
    for (const auto& row : rows) {
        EXPECT_TRUE(create(QUrl::fromLocalFile("/models/part.stl"), row.size, row.ratio).isValid());
        EXPECT_EQ(lines("arguments"), QStringList({"-s", row.asked, "/models/part.stl", "-"}));
    }
}

TEST_F(KdePluginTest, FilesMayHaveAnyName)
{
    standIn("printf '%s\\n' \"$@\" >arguments\ncat picture.png");
    for (const char* name :
         {"/models/two words.stl", "/models/-s.stl", "/models/a%20b#?.stl", "/models/Höhe 'x'.stl"}) {
        EXPECT_TRUE(create(QUrl::fromLocalFile(name)).isValid()) << name;
        EXPECT_EQ(lines("arguments").value(2), QString::fromUtf8(name));
    }
}

TEST_F(KdePluginTest, TheFileManagersPlatformIsNotHandedOn)
{
    standIn("env >environment\ncat picture.png");
    qputenv("QT_PLUGIN_PATH", "/elsewhere");
    qputenv("ZRTHUMB_KEPT", "1");
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    qputenv("QT_QPA_PLATFORM", "wayland");
    EXPECT_TRUE(create().isValid());
    qputenv("QT_QPA_PLATFORM", platform);
    qunsetenv("QT_PLUGIN_PATH");

    const QStringList environment = lines("environment");
    EXPECT_TRUE(environment.contains("ZRTHUMB_KEPT=1"));
    EXPECT_EQ(environment.filter("QT_QPA_PLATFORM="), QStringList());
    EXPECT_EQ(environment.filter("QT_PLUGIN_PATH="), QStringList());
}

TEST_F(KdePluginTest, NoPictureIsAFailure)
{
    for (const char* commands : {"cat picture.png; exit 1", "cat picture.png; kill -SEGV $$", "echo no picture", "true",
                                 "head -c 40 picture.png"}) {
        standIn(commands);
        EXPECT_FALSE(create().isValid()) << commands;
    }
    standIn("cat picture.png");
    EXPECT_FALSE(create(QUrl("sftp://host/models/part.stl")).isValid());
    QFile::remove(path("bin/zrthumbnailer"));
    qputenv("PATH", path("bin").toUtf8());
    EXPECT_FALSE(create().isValid());
}

TEST_F(KdePluginTest, AProgramThatHangsIsKilledAfterHalfAMinute)
{
    standIn("echo $$ >process\ncat picture.png\nexec sleep 600");
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(create().isValid());
    EXPECT_GE(timer.elapsed(), 30'000);
    EXPECT_LT(timer.elapsed(), 60'000);
    const int process = lines("process").value(0).toInt();
    ASSERT_GT(process, 1);
    EXPECT_EQ(::kill(process, 0), -1);
}

TEST_F(KdePluginTest, EverySampleFileGetsAPicture)
{
    qputenv("PATH", QByteArray(ZRTHUMB_PROGRAMS) + ':' + m_pathVariable);
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        const QString file = writeFile(path(sample.name), sample.make());
        const KIO::ThumbnailResult result = create(QUrl::fromLocalFile(file), {128, 128});
        EXPECT_TRUE(result.isValid()) << sample.name;
        EXPECT_EQ(std::max(result.image().width(), result.image().height()), 128) << sample.name;
    }
}

} // namespace
} // namespace zr::test
