// SPDX-License-Identifier: MIT
#include "host/worker_messages.h"

#include "tests/support/qt_printers.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

// Text as names of files have it.
const QString kOddName = QString::fromUtf8("\xe4\xb8\xad \"a\"\n\xf0\x9f\x8e\xb2") + QChar(0xDCFF) + ".stl";

QImage picture(QImage::Format format, QSize size = {5, 3})
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgba(40 * x, 60 * y, 200, 50 * x));
    }
    return image.convertToFormat(format);
}

WorkerStart start()
{
    WorkerStart start;
    start.version = "1.2.3";
    start.options.output = "out.png";
    start.options.sizePx = 64;
    start.options.outputFolder = kOddName;
    start.options.sheet = "sheet.png";
    start.options.refreshes = true;
    start.options.json = true;
    start.options.workerMegabytes = 1234;
    start.options.renderer = Options::Renderer::Software;
    start.options.objReading = ObjReading::Standard;
    start.options.dataFolderUse = DataFolderUse::None;
    start.options.server = "C:\\server.dll";
    return start;
}

WorkerTask task()
{
    return {quint64(1) << 40, {kOddName, "/m/" + kOddName, "below/" + kOddName, true}};
}

WorkerReply reply(const QImage& cell)
{
    WorkerReply reply;
    reply.kind = WorkerReply::Kind::Result;
    reply.index = quint64(1) << 40;
    FileResult& result = reply.result;
    result.picture = kOddName;
    result.size = {400, 300};
    result.isCached = true;
    result.milliseconds = 12.5;
    result.failure = {"readerErr", "it is damaged"};
    result.writeFault = "No space left on device";
    result.note = "nothing can be seen";
    result.cell = cell;
    return reply;
}

TEST(WorkerMessagesTest, StartTellsWhatWorkersNeed)
{
    const WorkerStart sent = start();
    const auto read = startFrom(toBytes(sent));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->version, sent.version);
    EXPECT_EQ(read->options.output, sent.options.output);
    EXPECT_EQ(read->options.sizePx, sent.options.sizePx);
    EXPECT_EQ(read->options.outputFolder, sent.options.outputFolder);
    EXPECT_EQ(read->options.sheet, sent.options.sheet);
    EXPECT_EQ(read->options.refreshes, sent.options.refreshes);
    EXPECT_EQ(read->options.json, sent.options.json);
    EXPECT_EQ(read->options.workerMegabytes, sent.options.workerMegabytes);
    EXPECT_EQ(read->options.renderer, sent.options.renderer);
    EXPECT_EQ(read->options.objReading, sent.options.objReading);
    EXPECT_EQ(read->options.dataFolderUse, sent.options.dataFolderUse);
    EXPECT_EQ(read->options.server, sent.options.server);
}

TEST(WorkerMessagesTest, TaskIsAFile)
{
    for (const WorkerTask& sent : {task(), WorkerTask()}) {
        const auto read = taskFrom(toBytes(sent));
        ASSERT_TRUE(read);
        EXPECT_EQ(read->index, sent.index);
        EXPECT_EQ(read->file.shown, sent.file.shown);
        EXPECT_EQ(read->file.path, sent.file.path);
        EXPECT_EQ(read->file.below, sent.file.below);
        EXPECT_EQ(read->file.isShared, sent.file.isShared);
    }
}

void expectRead(const WorkerReply& sent)
{
    const auto read = replyFrom(toBytes(sent));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->kind, sent.kind);
    EXPECT_EQ(read->index, sent.index);
    EXPECT_EQ(read->result.picture, sent.result.picture);
    EXPECT_EQ(read->result.size, sent.result.size);
    EXPECT_EQ(read->result.isCached, sent.result.isCached);
    EXPECT_EQ(read->result.milliseconds, sent.result.milliseconds);
    EXPECT_EQ(read->result.failure.key, sent.result.failure.key);
    EXPECT_EQ(read->result.failure.reason, sent.result.failure.reason);
    EXPECT_EQ(read->result.writeFault, sent.result.writeFault);
    EXPECT_EQ(read->result.note, sent.result.note);
}

TEST(WorkerMessagesTest, ReplyHasTheResult)
{
    expectRead(reply({}));
    expectRead(WorkerReply());
    for (const auto kind : {WorkerReply::Kind::Ready, WorkerReply::Kind::Result, WorkerReply::Kind::Leaving})
        expectRead({kind, 7, {}});
}

TEST(WorkerMessagesTest, CellsSurviveInAllFormats)
{
    EXPECT_TRUE(replyFrom(toBytes(reply({})))->result.cell.isNull());
    for (int i = QImage::Format_Mono; i < QImage::NImageFormats; ++i) {
        const auto format = static_cast<QImage::Format>(i);
        for (const QSize size : {QSize(5, 3), QSize(1, 1), QSize(200, 200)}) {
            const QImage cell = picture(format, size);
            const auto read = replyFrom(toBytes(reply(cell)));
            ASSERT_TRUE(read) << i;
            EXPECT_EQ(read->result.cell, cell.depth() == 32 ? cell : cell.convertToFormat(QImage::Format_ARGB32)) << i;
        }
    }
}

TEST(WorkerMessagesTest, CellThatSharesItsBytesIsCopied)
{
    const QImage whole = picture(QImage::Format_ARGB32, {40, 30});
    const QImage part(whole.constScanLine(5), 20, 10, whole.bytesPerLine(), whole.format());
    const auto read = replyFrom(toBytes(reply(part)));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->result.cell, part);
}

// Another program's output may be anything. The readers of all messages get all of these.
template <typename Read>
void expectCutsAreRefused(const QByteArray& bytes, Read read)
{
    ASSERT_TRUE(read(bytes));
    for (int length = 0; length < bytes.size(); ++length)
        EXPECT_FALSE(read(bytes.left(length))) << length;
    EXPECT_FALSE(read(bytes + '\0'));
}

TEST(WorkerMessagesTest, CutOrLongerMessagesAreRefused)
{
    expectCutsAreRefused(toBytes(start()), startFrom);
    expectCutsAreRefused(toBytes(task()), taskFrom);
    expectCutsAreRefused(toBytes(reply({})), replyFrom);
    expectCutsAreRefused(toBytes(reply(picture(QImage::Format_RGB32))), replyFrom);
}

TEST(WorkerMessagesTest, ChangedBytesAreReadOrRefused)
{
    const QByteArray messages[] = {toBytes(start()), toBytes(task()), toBytes(reply(picture(QImage::Format_ARGB32)))};
    int refused = 0;
    for (const QByteArray& message : messages) {
        for (int at = 0; at < message.size(); ++at) {
            for (const int change : {0x01, 0x80, 0xFF}) {
                QByteArray changed = message;
                changed[at] = static_cast<char>(changed.at(at) ^ change);
                refused += startFrom(changed) ? 0 : 1;
                refused += taskFrom(changed) ? 0 : 1;
                const auto read = replyFrom(changed);
                refused += read ? 0 : 1;
                // A picture that was read has pixels to draw.
                if (read && !read->result.cell.isNull()) {
                    EXPECT_EQ(read->result.cell.copy().size(), read->result.cell.size()) << at;
                }
            }
        }
    }
    EXPECT_GT(refused, 0);
}

} // namespace
} // namespace zr::test
