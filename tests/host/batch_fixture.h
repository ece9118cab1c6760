// SPDX-License-Identifier: MIT
#pragma once

#include "tests/host/zrthumb_fixture.h"
#include "tests/support/qt_printers.h"

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>

namespace zr::test
{

constexpr quint16 kRed = 0xF800;
constexpr quint16 kGreen = 0x07E0;
constexpr quint16 kBlue = 0x001F;

/// What a run prints, byte for byte.
struct RawRun {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

/// A test of runs over many files.
class BatchTest : public ZrthumbTest
{
protected:
    RawRun runRaw(const QStringList& arguments, const QByteArray& input = {}) const
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(m_folder.path());
        startProgram(process, QStringLiteral(ZRTHUMB_PROGRAM), arguments);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(120000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
    }

    // The objects on stdout, one a line.
    QList<QJsonObject> objects(const QStringList& arguments, int status, const QByteArray& input = {}) const
    {
        const RawRun outcome = runRaw(QStringList("--json") + arguments, input);
        EXPECT_EQ(outcome.status, status) << outcome.err.toStdString();
        QList<QJsonObject> found;
        QList<QByteArray> lines = outcome.out.split('\n');
        EXPECT_EQ(lines.takeLast(), "") << "a line has no end";
        for (const QByteArray& line : qAsConst(lines)) {
            QJsonParseError error;
            found += QJsonDocument::fromJson(line, &error).object();
            EXPECT_EQ(error.error, QJsonParseError::NoError) << line.toStdString();
        }
        return found;
    }

    // The values of one key.
    static QStringList values(const QList<QJsonObject>& objects, const QString& key)
    {
        QStringList texts;
        for (const QJsonObject& object : objects)
            texts += object.value(key).toVariant().toString();
        return texts;
    }

    // A file that was there before the run.
    QString oldSource(const QString& name, quint16 word = kRed) const
    {
        const QString path = source(name, word);
        moveTimeStamp(path, -1000);
        return path;
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }

    // What a file of that colour looks like in full size.
    QImage pictureOf(quint16 word) const
    {
        const QString name = QStringLiteral("reference%1").arg(word);
        EXPECT_EQ(run({"-o", name + ".png", source(name + ".vrx", word)}).status, 0);
        const QImage reference = picture(name + ".png");
        EXPECT_TRUE(QFile::remove(path(name + ".png")) && QFile::remove(path(name + ".vrx")));
        return reference;
    }

    // A bitmap from the DLL has an alpha channel even if the cached picture has none.
    QImage picture(const QString& name) const { return QImage(path(name)).convertToFormat(QImage::Format_ARGB32); }

    QDateTime time(const QString& name) const { return QFileInfo(path(name)).lastModified(); }

    // The files below a folder, with "/".
    QStringList filesBelow(const QString& folder) const
    {
        QStringList found;
        QDirIterator walk(path(folder), QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        while (walk.hasNext())
            found += walk.next().mid(path(folder).size() + 1);
        found.sort();
        return found;
    }

    QMap<QString, QByteArray> contents() const
    {
        QMap<QString, QByteArray> files;
        for (const QString& name : filesBelow("."))
            files.insert(name, readFile(path(name)));
        return files;
    }
};

inline QString native(const QString& path)
{
    return QDir::toNativeSeparators(path);
}

} // namespace zr::test
