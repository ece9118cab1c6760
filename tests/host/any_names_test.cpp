// SPDX-License-Identifier: MIT
// Names of files that are not text, or more than a word, on their way through lists, outputs and JSON.

#include "tests/host/batch_fixture.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zr::test
{
namespace
{

// Names of files are any bytes but zero and the slash.
class AnyNamesTest : public BatchTest
{
protected:
    void SetUp() override
    {
        BatchTest::SetUp();
        ASSERT_TRUE(QDir(m_folder.path()).mkdir("m"));
        const QByteArray file = readFile(oldSource("a.vrx"));
        for (const QByteArray& name : m_names)
            copyTo("/m/" + name, file);
    }

    // Qt cannot remove all of these.
    void TearDown() override
    {
        EXPECT_EQ(runProgram("/bin/sh", {"-c", "rm -rf ./*"}, m_folder.path()).status, 0);
        BatchTest::TearDown();
    }

    void copyTo(const QByteArray& name, const QByteArray& bytes) const
    {
        const int file = open((QFile::encodeName(m_folder.path()) + name).constData(), O_CREAT | O_WRONLY, 0644);
        ASSERT_NE(file, -1);
        EXPECT_EQ(write(file, bytes.constData(), static_cast<std::size_t>(bytes.size())), bytes.size());
        timespec times[2] = {};
        times[1].tv_sec = times[0].tv_sec = 1000000000;
        EXPECT_EQ(futimens(file, times), 0);
        close(file);
    }

    bool exists(const QByteArray& name) const
    {
        struct stat status = {};
        return stat((QFile::encodeName(m_folder.path()) + '/' + name).constData(), &status) == 0;
    }

    // The list as "m/NAME" with zero bytes.
    QByteArray list() const
    {
        QByteArray bytes;
        for (const QByteArray& name : m_names)
            bytes += "m/" + name + '\0';
        return bytes;
    }

    // What the object means by the key.
    static QByteArray name(const QJsonObject& object, const QString& key)
    {
        const QByteArray bytes = QByteArray::fromBase64(object.value(key + "Bytes").toString().toLatin1());
        EXPECT_EQ(bytes.isEmpty(), !object.value(key).toString().contains(QChar(QChar::ReplacementCharacter)));
        return bytes.isEmpty() ? object.value(key).toString().toUtf8() : bytes;
    }

    const QList<QByteArray> m_names = {
        "two\nlines.vrx",
        "\"quotes\" 'and' \\.vrx",
        "\xFF\xFE.vrx",
        "\xEF\xBB\xBFmark.vrx",
        "\xED\xB2\x80.vrx",
        "\xF0\x9F\x8E.vrx",
        "\xE4\xB8\xAD.vrx",
        "\x1B[31m\t.vrx",
        " .vrx",
        "-q.vrx",
    };
};

TEST_F(AnyNamesTest, PassThroughListsAndOutputs)
{
    for (const char* const locale : {"C.UTF-8", "C"}) {
        SCOPED_TRACE(locale);
        m_environment.insert("LC_ALL", locale);
        const RawRun outcome =
            runRaw({"-0", "--no-cache", "--refresh", "--output-dir", "out", "--files-from", "-"}, list());
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.err, "");
        QByteArray expected;
        for (const QByteArray& name : m_names) {
            expected += "out/m/" + name + ".png" + '\0';
            EXPECT_TRUE(exists("out/m/" + name + ".png")) << name.toHex(' ').toStdString();
        }
        EXPECT_EQ(outcome.out, expected);
        ASSERT_EQ(runProgram("/bin/rm", {"-r", "out"}, m_folder.path()).status, 0);
    }
}

TEST_F(AnyNamesTest, AreWholeInJson)
{
    for (const QStringList& more : {QStringList{}, QStringList{"-j", "2"}}) {
        const auto found = objects(
            QStringList{"-0", "--no-cache", "--refresh", "--output-dir", "out", "--files-from", "-"} + more, 0, list());
        ASSERT_EQ(found.size(), m_names.size());
        for (int i = 0; i < found.size(); ++i) {
            EXPECT_EQ(name(found[i], "file"), "m/" + m_names[i]);
            EXPECT_EQ(name(found[i], "picture"), "out/m/" + m_names[i] + ".png");
        }
    }
}

// Not a mark of an encoding, as lists of lines may have one.
TEST_F(AnyNamesTest, MayBeTheFirstOfAList)
{
    const QByteArray bytes = readFile(path("a.vrx"));
    for (const QByteArray& first : m_names) {
        copyTo('/' + first, bytes);
        const auto found = objects({"-0", "--no-cache", "--output-dir", "out", "--files-from", "-"}, 0, first + '\0');
        ASSERT_EQ(found.size(), 1);
        EXPECT_TRUE(exists("out/" + first + ".png")) << first.toHex(' ').toStdString();
    }
}

// In the order in which a walk finds them.
TEST_F(AnyNamesTest, AreFoundInFolders)
{
    const auto found = objects({"-r", "--no-cache", "--output-dir", "out", "m"}, 0);
    QList<QByteArray> names;
    for (const QJsonObject& object : found)
        names += name(object, "file").mid(2);
    QList<QByteArray> expected = m_names;
    std::sort(names.begin(), names.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names, expected);
}

TEST_F(AnyNamesTest, CannotBeRecordedUnlessTheyAreText)
{
    const auto found = objects({"-0", "--files-from", "-"}, 1, list());
    ASSERT_EQ(found.size(), m_names.size());
    for (int i = 0; i < found.size(); ++i) {
        const bool isText = QString::fromUtf8(m_names[i]).toUtf8() == m_names[i] || m_names[i].contains("mark");
        const bool hasApostrophe = m_names[i].contains('\'');
        EXPECT_EQ(name(found[i], "file"), "m/" + m_names[i]);
        EXPECT_EQ(found[i].value("error").toString(), !isText         ? "nameIsNotText"
                                                      : hasApostrophe ? "cacheErr"
                                                                      : QString());
    }
    const RawRun outcome = runRaw({"-0", "--files-from", "-"}, QByteArray("m/\xFF\xFE.vrx\0", 9));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "zrthumb: m/??.vrx: no thumbnail: its name is not text, which the cache cannot record: "
                           "rename it, or use --no-cache with --output-dir or --sheet\n");
}

} // namespace
} // namespace zr::test
