// SPDX-License-Identifier: MIT
#include "host/contact_sheet.h"

#include "host/application.h"
#include "host/sheet_text.h"
#include "tests/support/qt_printers.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSet>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr int kCellsOfPage = 500;
const QRgb kPaper = qRgb(250, 250, 250);

QImage plain(int width, int height, const QColor& colour)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

int countPixels(const QImage& image, QRgb colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == colour;
    }
    return count;
}

// The number of rows that have any colour other than that of the first pixel.
int inkedRows(const QImage& image)
{
    int rows = 0;
    for (int y = 0; y < image.height(); ++y) {
        bool hasInk = false;
        for (int x = 0; x < image.width(); ++x)
            hasInk = hasInk || image.pixel(x, y) != image.pixel(0, 0);
        rows += hasInk;
    }
    return rows;
}

QStringList numbered(int count)
{
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths.append(QStringLiteral("/models/%1.stl").arg(i));
    return paths;
}

struct Saved {
    QStringList files;
    std::vector<QImage> pages;

    ContactSheet::SavePage taker()
    {
        return [this](const QImage& page, const QString& file) {
            pages.push_back(page);
            files.append(file);
        };
    }
};

QImage sheetOf(const QStringList& paths, const QImage& picture)
{
    Saved saved;
    ContactSheet sheet("sheet.png", paths, saved.taker());
    for (int i = 0; i < paths.size(); ++i)
        sheet.addPicture(picture);
    EXPECT_EQ(saved.files, QStringList({"sheet.png"}));
    return saved.pages.empty() ? QImage() : saved.pages.front();
}

QImage failureSheet(const QString& reason, const QString& path = "/part.stl")
{
    Saved saved;
    ContactSheet sheet("sheet.png", {path}, saved.taker());
    sheet.addFailure(reason);
    return saved.pages.empty() ? QImage() : saved.pages.front();
}

QRect pictureArea(int column, int row)
{
    return {12 + column * 212, 12 + row * 234, 200, 200};
}

QRect nameArea(int column, int row)
{
    return {12 + column * 212, 212 + row * 234, 200, 22};
}

QStringList texts(const std::vector<CellLabel>& labels)
{
    QStringList all;
    for (const CellLabel& label : labels)
        all.append(label.text);
    return all;
}

// This program starts without an application object, as in a run whose requests all failed before making it.
TEST(ContactSheetTest, MakesTheApplicationObjectThatTextNeeds)
{
    const QImage page = failureSheet("no such file");
    EXPECT_NE(QCoreApplication::instance(), nullptr);
    EXPECT_GT(inkedRows(page.copy(nameArea(0, 0))), 5);
    EXPECT_GT(inkedRows(page.copy(pictureArea(0, 0))), 5);
}

TEST(ContactSheetTest, EveryPictureIsShownOnce)
{
    Saved saved;
    ContactSheet sheet("sheet.png", {"red.stl", "wide.stl", "tall.stl"}, saved.taker());
    sheet.addPicture(plain(400, 400, Qt::red));
    sheet.addPicture(plain(400, 200, Qt::green));
    sheet.addPicture(plain(100, 400, Qt::blue));
    ASSERT_EQ(saved.pages.size(), 1U);
    EXPECT_EQ(countPixels(saved.pages[0], qRgb(255, 0, 0)), 200 * 200);
    EXPECT_EQ(countPixels(saved.pages[0], qRgb(0, 255, 0)), 200 * 100);
    EXPECT_EQ(countPixels(saved.pages[0], qRgb(0, 0, 255)), 50 * 200);
}

TEST(ContactSheetTest, NamesAreWritten)
{
    const QImage page = sheetOf({"name.stl"}, plain(400, 400, Qt::red));
    EXPECT_GT(inkedRows(page.copy(nameArea(0, 0))), 5);
    EXPECT_NE(page, sheetOf({"other.stl"}, plain(400, 400, Qt::red)));
}

TEST(ContactSheetTest, CellsAreNearlySquareWithAtMostTenColumns)
{
    struct Case {
        int count;
        QSize size;
        QPoint last; // column and row
    };
    const Case cases[] = {
        {1, {436, 246}, {0, 0}},    {2, {436, 246}, {1, 0}},       {3, {648, 246}, {2, 0}},
        {14, {1072, 714}, {3, 2}},  {60, {2132, 1416}, {9, 5}},    {66, {2132, 1650}, {5, 6}},
        {67, {2132, 1650}, {6, 6}}, {499, {2132, 11712}, {8, 49}}, {500, {2132, 11712}, {9, 49}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.count);
        const QImage page = sheetOf(numbered(each.count), plain(40, 40, Qt::red));
        EXPECT_EQ(page.size(), each.size);
        EXPECT_EQ(countPixels(page, qRgb(255, 0, 0)), each.count * 200 * 200);
        const QImage last = page.copy(pictureArea(each.last.x(), each.last.y()));
        EXPECT_EQ(countPixels(last, qRgb(255, 0, 0)), 200 * 200);
        EXPECT_GT(inkedRows(page.copy(nameArea(each.last.x(), each.last.y()))), 5);
    }
}

TEST(ContactSheetTest, FileNamesAreKnownBeforeTheWork)
{
    struct Case {
        QString file;
        int count;
        QStringList expected;
    };
    const Case cases[] = {
        {"all.png", 0, {}},
        {"all.png", 1, {"all.png"}},
        {"all.png", 500, {"all.png"}},
        {"all.png", 501, {"all.png", "all-2.png"}},
        {"all.png", 1001, {"all.png", "all-2.png", "all-3.png"}},
        {"a.b/all", 501, {"a.b/all", "a.b/all-2"}},
        {"/x/all.tar.png", 501, {"/x/all.tar.png", "/x/all.tar-2.png"}},
        {".png", 501, {".png", ".png-2"}},
        {"../.all.png", 501, {"../.all.png", "../.all-2.png"}},
    };
    for (const Case& each : cases)
        EXPECT_EQ(sheetFiles(each.file, each.count), each.expected) << each.file.toStdString() << each.count;
    EXPECT_EQ(sheetFiles("all.png", 100000).size(), 200);
    EXPECT_EQ(sheetFiles("all.png", 100000).last(), "all-200.png");
}

// A single picture could hold 1,400 cells; later ones were not painted.
TEST(ContactSheetTest, ManyFilesMakeFurtherPagesAndNoneIsKeptInMemory)
{
    constexpr int kCount = 1503;
    Saved saved;
    ContactSheet sheet("all.png", numbered(kCount), saved.taker());
    for (int i = 1; i <= kCount; ++i) {
        sheet.addPicture(plain(40, 40, Qt::red));
        const int expected = i == kCount ? 4 : i / kCellsOfPage;
        ASSERT_EQ(saved.files.size(), expected) << i;
        if (i % kCellsOfPage != 0)
            continue;
        EXPECT_EQ(countPixels(saved.pages.back(), qRgb(255, 0, 0)), kCellsOfPage * 200 * 200);
        EXPECT_GT(inkedRows(saved.pages.back().copy(nameArea(9, 49))), 5);
        saved.pages.back() = QImage();
    }
    EXPECT_EQ(saved.files, sheetFiles("all.png", kCount));
    EXPECT_EQ(saved.pages.back().size(), QSize(648, 246));
    EXPECT_EQ(countPixels(saved.pages.back(), qRgb(255, 0, 0)), 3 * 200 * 200);
    sheet.finish();
    EXPECT_EQ(saved.files.size(), 4) << "the last page must be saved only once";
}

TEST(ContactSheetTest, FailuresHaveACellWithTheirReason)
{
    Saved saved;
    ContactSheet sheet("sheet.png", {"a.stl", "b.stl", "c.stl"}, saved.taker());
    sheet.addPicture(plain(400, 400, Qt::red));
    sheet.addFailure("this kind of file is not supported");
    sheet.addPicture(plain(400, 400, Qt::blue));
    ASSERT_EQ(saved.pages.size(), 1U);
    const QImage failed = saved.pages[0].copy(pictureArea(1, 0));
    EXPECT_NE(failed.pixel(0, 0), kPaper);
    EXPECT_GT(countPixels(failed, failed.pixel(0, 0)), 200 * 200 * 8 / 10);
    EXPECT_GT(inkedRows(failed), 5);
    EXPECT_GT(inkedRows(saved.pages[0].copy(nameArea(1, 0))), 5);
    EXPECT_EQ(countPixels(saved.pages[0].copy(pictureArea(2, 0)), qRgb(0, 0, 255)), 200 * 200);
    EXPECT_NE(failureSheet("one reason"), failureSheet("another one"));
}

TEST(ContactSheetTest, LongReasonsAreWrappedInTheirCell)
{
    const QString words = QStringLiteral("a reason of many words ").repeated(100);
    const QString path = QStringLiteral("see /home/somebody/") + QString(2000, 'x');
    const int oneLine = inkedRows(failureSheet("a reason").copy(pictureArea(0, 0)));
    for (const QString& reason : {words, path, words.left(200), path.left(200)}) {
        const QImage page = failureSheet(reason);
        const QImage cell = page.copy(pictureArea(0, 0));
        EXPECT_GE(inkedRows(cell), 4 * oneLine) << reason.left(30).toStdString();
        EXPECT_EQ(inkedRows(cell.copy(0, 0, 200, 10)), 0);
        EXPECT_EQ(inkedRows(cell.copy(0, 190, 200, 10)), 0);
        EXPECT_EQ(inkedRows(cell.copy(0, 0, 10, 200)), 0);
        EXPECT_EQ(inkedRows(cell.copy(190, 0, 10, 200)), 0);
        EXPECT_EQ(countPixels(page.copy(212, 0, 12, 212), kPaper), 12 * 212);
    }
}

TEST(ContactSheetTest, RunsThatEndEarlyLeaveTheirFinishedCells)
{
    struct Case {
        int total;
        int added;
        QStringList files;
        QSize lastSize;
    };
    const Case cases[] = {
        {100, 0, {}, {}},
        {100, 3, {"all.png"}, {648, 246}},
        {100, 10, {"all.png"}, {2132, 246}},
        {100, 11, {"all.png"}, {2132, 480}},
        {1200, 500, {"all.png"}, {2132, 11712}},
        {1200, 501, {"all.png", "all-2.png"}, {224, 246}},
        {1200, 525, {"all.png", "all-2.png"}, {2132, 714}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.added);
        Saved saved;
        ContactSheet sheet("all.png", numbered(each.total), saved.taker());
        for (int i = 0; i < each.added; ++i)
            sheet.addPicture(plain(40, 40, Qt::red));
        sheet.finish();
        EXPECT_EQ(saved.files, each.files);
        if (saved.pages.empty())
            continue;
        EXPECT_EQ(saved.pages.back().size(), each.lastSize);
        const int onLast = (each.added - 1) % kCellsOfPage + 1;
        EXPECT_EQ(countPixels(saved.pages.back(), qRgb(255, 0, 0)), onLast * 200 * 200);
        EXPECT_GT(inkedRows(saved.pages.back().copy(nameArea(0, 0))), 5);
    }
}

TEST(CellLabelsTest, EqualNamesAreDistinguishedByTheirFolders)
{
    struct Case {
        QStringList paths;
        QStringList expected;
    };
    const Case cases[] = {
        {{"/m/a.stl", "/m/b.stl"}, {"a.stl", "b.stl"}},
        {{"/m/a/part.vrx", "/m/b/part.vrx", "/m/b/other.vrx"}, {"a/part.vrx", "b/part.vrx", "other.vrx"}},
        {{"/m/a/x/p", "/m/b/x/p", "/m/c/y/p"}, {"a/x/p", "b/x/p", "y/p"}},
        {{"/p", "/a/p", "/a/a/p"}, {"/p", "/a/p", "a/a/p"}},
        {{"p", "a/p", "b/a/p"}, {"p", "a/p", "b/a/p"}},
        {{"C:/p.stl", "C:/a/p.stl", "D:/p.stl"}, {"C:/p.stl", "a/p.stl", "D:/p.stl"}},
        {{"/a/p.stl", "/a/p.stl"}, {"p.stl", "p.stl"}},
        {{"/a/p.stl", "/b/../a/./p.stl", "/b/p.stl"}, {"a/p.stl", "a/p.stl", "b/p.stl"}},
        {{"/a/part.stl", "/b/part.STL", "/c/part.obj"}, {"part.stl", "part.STL", "part.obj"}},
        {{}, {}},
    };
    for (const Case& each : cases)
        EXPECT_EQ(texts(cellLabels(each.paths)), each.expected) << each.paths.join(' ').toStdString();
}

TEST(CellLabelsTest, UnprintableCharactersAreMasked)
{
    const QString names[] = {
        "line\nfeed",           "carriage\rreturn",     "\x1b[31mred",          QString("nul") + QChar(0),
        QString(QChar(0x202A)), QString(QChar(0x202B)), QString(QChar(0x202C)), QString(QChar(0x202D)),
        QString(QChar(0x202E)), QString(QChar(0x2066)), QString(QChar(0x2067)), QString(QChar(0x2068)),
        QString(QChar(0x2069)), QString(QChar(0x2028)), QString(QChar(0x2029)), QString(QChar(0x85)),
    };
    for (const QString& name : names) {
        const QString label = cellLabels({"/m/a" + name + "b.stl"}).front().text;
        EXPECT_EQ(label.count('?'), 1) << label.toStdString();
        EXPECT_EQ(label.size(), name.size() + 6) << label.toStdString();
        EXPECT_EQ(failureSheet(name), failureSheet(label.mid(1, label.size() - 6))) << label.toStdString();
    }
    const QString words = QString::fromUtf8("/m/t\xc3\xbcr \xe4\xb8\xad\xe6\x96\x87 \xf0\x9f\x8e\xb2.stl");
    EXPECT_EQ(cellLabels({words}).front().text, words.mid(3));
}

TEST(CellLabelsTest, ShortenedLabelsStillDistinguishEqualNames)
{
    makeDrawingApplication();
    QFont font;
    font.setPixelSize(13);
    const QFontMetrics metrics(font);
    const QString longName = QString(60, 'n') + ".stl";
    const QString longFolder(60, 'f');
    const QString dice = QString::fromUtf8("\xf0\x9f\x8e\xb2");
    const QString cards = QString::fromUtf8("\xf0\x9f\x83\x8f");
    const QStringList groups[] = {
        {"/a/" + longName, "/b/" + longName, "/c/" + longName},
        {"/a/" + longFolder + "/p.stl", "/b/" + longFolder + "/p.stl"},
        {"/" + longFolder + "1/p.stl", "/" + longFolder + "2/p.stl", "/" + longFolder + "/p.stl"},
        {"/1" + longFolder + "/p.stl", "/2" + longFolder + "/p.stl"},
        {"/" + longFolder + "1" + longFolder + "/" + longName, "/" + longFolder + "2" + longFolder + "/" + longName},
        {"/" + longFolder + dice + longFolder + "/p", "/" + longFolder + cards + longFolder + "/p"},
    };
    for (const QStringList& paths : groups) {
        QSet<QString> shown;
        for (const CellLabel& label : cellLabels(paths)) {
            const QString text = elided(label, metrics, 200);
            EXPECT_NE(text, label.text);
            EXPECT_LE(metrics.horizontalAdvance(text), 200) << text.toStdString();
            EXPECT_EQ(text, QString::fromUcs4(text.toUcs4().constData(), text.toUcs4().size())) << "half a character";
            shown.insert(text);
        }
        EXPECT_EQ(shown.size(), paths.size()) << paths.first().toStdString();
    }
    const QString whole = elided(cellLabels({"/a/p.stl", "/b/p.stl"}).front(), metrics, 200);
    EXPECT_EQ(whole, "a/p.stl");
}

// An algorithm that is quadratic in the number or the depth would take minutes.
TEST(CellLabelsTest, AHundredThousandEqualNamesTakeLittleTime)
{
    QStringList paths;
    for (int i = 0; i < 100000; ++i)
        paths.append(QStringLiteral("/models/%1/a/b/c/d/e/f/g/h/part.stl").arg(i));
    const QString deep = QStringLiteral("/x").repeated(20000) + "/part.stl";
    paths.append({deep, "/y" + deep});
    QElapsedTimer timer;
    timer.start();
    const auto labels = cellLabels(paths);
    EXPECT_LT(timer.elapsed(), 10000);
    ASSERT_EQ(labels.size(), 100002U);
    EXPECT_EQ(labels[99999].text, "99999/a/b/c/d/e/f/g/h/part.stl");
    EXPECT_TRUE(labels[100001].text.startsWith("y/x/x"));
}

} // namespace
} // namespace zr::test
