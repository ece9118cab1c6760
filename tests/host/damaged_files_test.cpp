// SPDX-License-Identifier: MIT
// The reasons that a user sees for files that are truncated, damaged or of another format than their names say.

#include "host/request.h"
#include "readers/reader_table.h"
#include "tests/host/plain_words.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/fdg_bytes.h"
#include "tools/samples/gf_bytes.h"
#include "tools/samples/kestravo_bytes.h"
#include "tools/samples/obj_bytes.h"
#include "tools/samples/photons_bytes.h"
#include "tools/samples/put_bytes.h"
#include "tools/samples/slc_bytes.h"
#include "tools/samples/stl_bytes.h"
#include "tools/samples/svgx_bytes.h"
#include "tools/samples/vrx_bytes.h"

#include <QTemporaryDir>

#include <limits>

namespace zr::test
{
namespace
{

using samples::PreviewParts;

constexpr qint32 kFarAway = std::numeric_limits<qint32>::max();
constexpr int kPixelBytes = 8;

PreviewParts preview()
{
    PreviewParts parts;
    parts.width = 2;
    parts.height = 2;
    parts.data = QByteArray(kPixelBytes, 'p');
    return parts;
}

// The valid file of a format, or one with a change.
template <typename Parts>
using Change = void (*)(Parts&);

template <typename Parts>
QByteArray withPreview(QByteArray (*bytes)(const Parts&), Change<Parts> change)
{
    Parts parts;
    parts.preview = preview();
    change(parts);
    return bytes(parts);
}

QByteArray vrx(Change<samples::VrxParts> change = [](auto&) {})
{
    return withPreview(samples::vrxBytes, change);
}

QByteArray fdg(Change<samples::FdgParts> change = [](auto&) {})
{
    return withPreview(samples::fdgBytes, change);
}

QByteArray gf(Change<samples::GfParts> change = [](auto&) {})
{
    return withPreview(samples::gfBytes, change);
}

QByteArray kestravo(Change<samples::KestravoParts> change = [](auto&) {})
{
    return withPreview(samples::kestravoBytes, change);
}

QByteArray photons(Change<samples::PhotonsParts> change = [](auto&) {})
{
    samples::PhotonsParts parts;
    parts.width = 2;
    parts.height = 2;
    parts.pixels = QByteArray(kPixelBytes, 'p');
    change(parts);
    return samples::photonsBytes(parts);
}

QByteArray svgx(std::optional<qint32> offset = {})
{
    samples::SvgxParts parts;
    parts.previewOffset = offset;
    return samples::svgxBytes(parts);
}

std::vector<samples::ModelTriangle> triangles(float side)
{
    return {{{{0, 0, 0}, {side, 0, 0}, {0, side, 0}}}, {{{0, 0, 0}, {0, side, 0}, {0, 0, side}}}};
}

QByteArray obj(float side)
{
    const QByteArray number = QByteArray::number(double{side});
    return "v 0 0 0\nv " + number + " 0 0\nv 0 " + number + " 0\nf 1 2 3\n";
}

QByteArray slc(float side)
{
    samples::SlcParts parts;
    parts.layers = {{0, {{{0, 0}, {side, 0}, {side, side}}}}};
    return samples::slcBytes(parts);
}

const QByteArray kWebPage =
    "<!DOCTYPE html><html><head><title>404 Not Found</title></head><body>" + QByteArray(100, 'x') + "</body></html>\n";

struct DamagedFile {
    const char* name;
    const char* suffix;
    QByteArray bytes;
    const char* reason;
};

std::ostream& operator<<(std::ostream& out, const DamagedFile& file)
{
    return out << file.name << '.' << file.suffix;
}

const DamagedFile kSliceFiles[] = {
    {"InHeader", "vrx", vrx().left(111), "the file ends before its header is complete"},
    {"AfterHeader", "vrx", vrx().left(112), "the file ends before its second preview: it is cut short or damaged"},
    {"PreviewFarAway", "vrx", vrx([](auto& parts) { parts.previewHeadOffset = kFarAway; }),
     "the file ends before the header of its preview is complete"},
    {"InPreviewHeader", "vrx", vrx().left(112 + 31), "the file ends before the header of its preview is complete"},
    {"BeforePixels", "vrx", vrx().left(112 + 32),
     "the file ends before the pixels of its preview: it is cut short or damaged"},
    {"InPixels", "vrx", vrx().left(112 + 32 + 7), "the file ends in the middle of its preview"},
    {"NoWidth", "vrx", vrx([](auto& parts) { parts.preview.width = 0; }),
     "the file's preview is damaged: its size is impossible"},
    {"TooHigh", "vrx", vrx([](auto& parts) { parts.preview.height = 10001; }),
     "the file's preview is damaged: its size is impossible"},
    {"NegativeBytes", "vrx", vrx([](auto& parts) { parts.preview.dataSize = -1; }),
     "the file is damaged, or there is not enough memory for it"},
    {"InPreviewHeader", "vrxdlp",
     vrx([](auto& parts) { parts.layout = samples::VrxParts::Layout::PreviewAt336; }).left(336 + 31),
     "the file ends before the header of its preview is complete"},
    {"WebPage", "vrx", kWebPage, "the file ends before its second preview: it is cut short or damaged"},

    {"InHeader", "fdg", fdg().left(215), "the file ends before its header is complete"},
    {"AfterHeader", "fdg", fdg().left(216), "the file ends before its second preview: it is cut short or damaged"},
    {"InPreviewHeader", "fdg", fdg().left(216 + 31), "the file ends before the header of its preview is complete"},
    {"BeforePixels", "fdg", fdg().left(216 + 32),
     "the file ends before the pixels of its preview: it is cut short or damaged"},
    {"InPixels", "fdg", fdg().left(216 + 32 + 7), "the file ends in the middle of its preview"},
    {"NoHeight", "fdg", fdg([](auto& parts) { parts.preview.height = 0; }),
     "the file's preview is damaged: its size is impossible"},

    {"InHeader", "gf", gf().left(215), "the file ends before its header is complete"},
    {"AfterHeader", "gf", gf().left(216), "the file ends before its preview: it is cut short or damaged"},
    {"InPreviewHeader", "gf", gf().left(216 + 31), "the file ends before the header of its preview is complete"},
    {"BeforePixels", "gf", gf().left(216 + 32),
     "the file ends before the pixels of its preview: it is cut short or damaged"},
    {"InPixels", "gf", gf().left(216 + 32 + 7), "the file ends in the middle of its preview"},
    {"TooWide", "gf", gf([](auto& parts) { parts.preview.width = 10001; }),
     "the file's preview is damaged: its size is impossible"},

    {"InHeader", "kestravo", kestravo().left(411), "the file ends before its header is complete"},
    {"NoPreview", "kestravo", kestravo([](auto& parts) { parts.thumbnailOffset = 0; }), "the file has no preview"},
    {"AfterHeader", "kestravo", kestravo().left(412), "the file ends before its preview: it is cut short or damaged"},
    {"InPreviewHeader", "kestravo", kestravo().left(412 + 31),
     "the file ends before the header of its preview is complete"},
    {"NoPixels", "kestravo", kestravo([](auto& parts) { parts.preview.dataOffset = 0; }),
     "the file's preview has no pixels, or the file ends before them"},
    {"BeforePixels", "kestravo", kestravo().left(412 + 32),
     "the file's preview has no pixels, or the file ends before them"},
    {"InPixels", "kestravo", kestravo().left(412 + 32 + 7), "the file ends in the middle of its preview"},
    {"TooWide", "kestravo", kestravo([](auto& parts) { parts.preview.width = 10001; }),
     "the file's preview is damaged: its size is impossible"},

    {"InLength", "photons", photons().left(3), "the file's header is damaged or cut short"},
    {"NoVersion", "photons", photons([](auto& parts) { parts.versionLength = 0; }),
     "the file's header is damaged or cut short"},
    {"BeforeVersion", "photons", photons().left(4), "the file ends before its header is complete"},
    {"InHeader", "photons", photons().left(4 + 3 + 80), "the file ends before its header is complete"},
    {"InPixels", "photons", photons().chopped(1),
     "the file ends in the middle of its preview, or the preview's size is damaged"},
    {"NegativeWidth", "photons", photons([](auto& parts) { parts.width = -2; }),
     "the file ends in the middle of its preview, or the preview's size is damaged"},

    {"InHeader", "svgx", svgx().left(27), "the file ends before its header is complete"},
    {"NoPreview", "svgx", svgx(0), "the file has no preview, or ends before it"},
    {"AfterHeader", "svgx", svgx().left(28), "the file has no preview, or ends before it"},
    {"InPreview", "svgx", svgx().chopped(1), "the file ends in the middle of its preview"},
};

const DamagedFile kModels[] = {
    {"OneByte", "stl", "x", "there is nothing to draw: the model is empty, or the file is damaged"},
    {"InHeader", "stl", samples::binaryStlBytes(triangles(1)).left(80),
     "there is nothing to draw: the model is empty, or the file is damaged"},
    {"AfterCount", "stl", samples::binaryStlBytes(triangles(1)).left(84),
     "the file ends before all of its triangles, or is no STL file"},
    {"InTriangle", "stl", samples::binaryStlBytes(triangles(1)).chopped(1),
     "the file ends before all of its triangles, or is no STL file"},
    {"WebPage", "stl", kWebPage, "the file ends before all of its triangles, or is no STL file"},
    {"Point", "stl", samples::binaryStlBytes(triangles(0)), "the model has no extent, or is larger than 10000 units"},
    {"TooLarge", "stl", samples::binaryStlBytes(triangles(20000)),
     "the model has no extent, or is larger than 10000 units"},
    {"TextPoint", "stl", samples::asciiStlBytes(triangles(0)),
     "the model has no extent, or is larger than 10000 units"},
    {"TextWithoutTriangles", "stl", "solid empty\nfacet\nendsolid empty\n",
     "there is nothing to draw: the model is empty, or the file is damaged"},

    {"WithoutFaces", "obj", "v 0 0 0\nv 1 0 0\n",
     "there is nothing to draw: the model is empty, or the file is damaged"},
    {"WebPage", "obj", kWebPage, "there is nothing to draw: the model is empty, or the file is damaged"},
    {"Point", "obj", obj(0), "the model has no extent, or is larger than 10000 units"},
    {"TooLarge", "obj", obj(20000), "the model has no extent, or is larger than 10000 units"},

    {"WebPage", "slc", kWebPage, "the file's header is damaged, or it is no SLC file"},
    {"InText", "slc", slc(1).left(20), "the file's header is damaged, or it is no SLC file"},
    {"InTable", "slc", samples::slcHead({}).chopped(1), "the file ends before its header is complete"},
    {"WithoutLayers", "slc", samples::slcHead({}),
     "there is nothing to draw: the model is empty, or the file is damaged"},
    {"TooLarge", "slc", slc(20000), "the model has no extent, or is larger than 10000 units"},
};

class FileReasonTest : public DataFolderTest
{
protected:
    QString reasonOf(const QString& name, const QByteArray& bytes) const
    {
        const QString path = writeFile(m_folder.filePath(name), bytes);
        const QString reason = reasonOf(path, DataFolderUse::Usual);
        if (!talksToServer()) {
            EXPECT_EQ(reasonOf(path, DataFolderUse::None), reason);
        }
        return reason;
    }

    static QString reasonOf(const QString& path, DataFolderUse use)
    {
        const RequestResult result = requestThumbnail(path, QString(), use);
        EXPECT_TRUE(result.picture.isNull());
        return result.failure.reason;
    }

    QTemporaryDir m_folder;
};

class DamagedFileTest : public FileReasonTest, public ::testing::WithParamInterface<DamagedFile>
{
};

TEST_P(DamagedFileTest, ReasonIsReportedInPlainWords)
{
    const DamagedFile& file = GetParam();
    const QString reason = reasonOf(QStringLiteral("a.") + file.suffix, file.bytes);
    EXPECT_EQ(reason, file.reason);
    expectPlainWords(reason);
}

std::string nameOf(const ::testing::TestParamInfo<DamagedFile>& test)
{
    return std::string(test.param.suffix) + test.param.name;
}

INSTANTIATE_TEST_SUITE_P(SliceFiles, DamagedFileTest, ::testing::ValuesIn(kSliceFiles), nameOf);
INSTANTIATE_TEST_SUITE_P(Models, DamagedFileTest, ::testing::ValuesIn(kModels), nameOf);

// As left by a failed download or copy.
TEST_F(FileReasonTest, EmptyFileIsReportedAsEmptyWhateverItsSuffix)
{
    for (const QString& suffix : supportedSuffixes()) {
        for (const QString& name : {"a." + suffix, "b." + suffix.toUpper()})
            EXPECT_EQ(reasonOf(name, QByteArray()), "the file is empty") << name.toStdString();
    }
    EXPECT_EQ(reasonOf("a.txt", QByteArray()), "this kind of file is not supported");
}

} // namespace
} // namespace zr::test
