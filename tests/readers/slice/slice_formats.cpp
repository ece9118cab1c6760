// SPDX-License-Identifier: MIT
#include "tests/readers/slice/slice_formats.h"

#include "readers/slice/fdg_file_thumbnail.h"
#include "readers/slice/gf_file_thumbnail.h"
#include "readers/slice/kestravo_file_thumbnail.h"
#include "readers/slice/photons_file_thumbnail.h"
#include "readers/slice/svgx_file_thumbnail.h"
#include "readers/slice/vrx_file_thumbnail.h"
#include "tests/readers/slice/preview_oracle.h"
#include "tools/samples/drawn_solids.h"
#include "tools/samples/fdg_bytes.h"
#include "tools/samples/gf_bytes.h"
#include "tools/samples/kestravo_bytes.h"
#include "tools/samples/photons_bytes.h"
#include "tools/samples/svgx_bytes.h"
#include "tools/samples/vrx_bytes.h"

#include <array>

namespace zr::test
{
namespace
{

using samples::PreviewParts;
using samples::VrxParts;
using samples::wordBytes;

constexpr char kDocumentWrong[] = "There is something wrong with the document";

// What the formats log that differ in their header's name and the numbers only, and in the key of short data.
PreviewFormat::Failures dlpFailures(const char* headShort, std::array<int, 6> numbers, const char* dataShortKey)
{
    return {{numbers[0], headShort, "fileReadLess"},
            {numbers[1], kDocumentWrong, "filePrevErr"},
            {numbers[2], "DlpPreviewHead_t read less", "fileReadLess"},
            {numbers[3], kDocumentWrong, "filePrevErr"},
            {numbers[4], kDocumentWrong, "filePrevErr"},
            {numbers[5], "src_RGB_Buffer read less", dataShortKey}};
}

template <typename Parts, QByteArray (*toBytes)(const Parts&)>
QByteArray fileOf(const PreviewParts& preview)
{
    Parts parts;
    parts.preview = preview;
    return toBytes(parts);
}

template <VrxParts::Layout layout>
QByteArray vrxFileOf(const PreviewParts& preview)
{
    VrxParts parts;
    parts.layout = layout;
    parts.preview = preview;
    return samples::vrxBytes(parts);
}

QImage lightPicture(const PreviewParts& preview)
{
    return oracleRunLength(preview.width, preview.height, preview.data, Scheme::Light, 400);
}

PreviewCoding darkRuns()
{
    return {smallPreview(), samples::runLengthPreview, darkPicture, qRgb(0, 23, 45), true};
}

PreviewCoding lightRuns()
{
    return {smallPreview(), samples::runLengthPreview, lightPicture, qRgb(147, 147, 147), false};
}

PreviewCoding darkChannels()
{
    const PreviewParts small{2, 2, wordBytes({0, 0, 0, 255, 255, 255, 9, 8, 7, 1, 2, 3}), {}, {}};
    return {small, samples::channelWordPreview, channelPicture, qRgb(0, 23, 45), true};
}

// The header of the preview and its data follow each other in a valid file.
SliceFormat sliceFormat(const PreviewFormat& format)
{
    const auto& [headBytes, offset, checkedOffset, previewHead] = format.places;
    const int dataAt = previewHead + samples::kPreviewHeadBytes;
    std::vector<Cut> cuts{{headBytes, format.failures.headShort}};
    if (checkedOffset != 0)
        cuts.push_back({headBytes + 1, format.failures.offsetPastEnd});
    cuts.push_back({dataAt, format.failures.previewHeadShort});
    cuts.push_back({dataAt + 1, format.failures.dataOffsetWrong});
    cuts.push_back({format.valid().size(), format.failures.dataShort});
    return {format.name, format.makeReader, format.cannotOpen, format.valid(), cuts};
}

SliceFormat photonsFormat()
{
    samples::PhotonsParts parts;
    parts.width = parts.height = 2;
    parts.pixels = wordBytes({0xF800, 0x001F, 0x07E0, 0x8410});
    const int headAt = 4 + parts.version.size();
    const int lastValueAt = headAt + samples::kPhotonsHeadBytes - 4;
    return {"Photons",
            make<PhotonsFileThumbnail>,
            23,
            samples::photonsBytes(parts),
            {{4, {39, "file read less", "fileReadLess"}},
             {5, {34, "file version read less", "fileReadLess"}},
             {lastValueAt + 1, {96, "file head read error", "filePrevErr"}},
             {headAt + samples::kPhotonsHeadBytes + 8, {48, "rgbBuf read less", "fileReadLess"}}}};
}

SliceFormat svgxFormat()
{
    constexpr int kHeadBytes = samples::kSvgxHeadBytes;
    samples::SvgxParts parts;
    parts.bmp = samples::bmpBytes(samples::drawSolid(samples::Solid::SpinningTop, 44, 44));
    return {"Svgx",
            make<SvgxFileThumbnail>,
            18,
            samples::svgxBytes(parts),
            {{kHeadBytes, {27, "file head read error", "fileReadLess"}},
             {kHeadBytes + 1, {33, kDocumentWrong, "filePrevErr"}},
             {kHeadBytes + samples::kSvgxBmpBytes, {51, "rgbBuf read less", "fileReadLess"}}}};
}

} // namespace

PreviewParts smallPreview()
{
    return {3, 2, wordBytes({0x0000, 0xF820, 0x0002, 0x0000, 0x0020, 0x0000}), {}, {}};
}

QImage darkPicture(const PreviewParts& preview)
{
    return scaledTo400(oracleRunLength(preview.width, preview.height, preview.data, Scheme::Dark, 0));
}

QImage channelPicture(const PreviewParts& preview)
{
    const QImage fitted = scaledTo400(oracleChannelWords(preview.width, preview.height, preview.data));
    return centredOnSquare(fitted, oracleBackground(Scheme::Dark));
}

std::vector<PreviewFormat> previewFormats()
{
    using Layout = VrxParts::Layout;
    const auto vrxFailures = dlpFailures("DlpHead_t read less", {29, 53, 64, 72, 93, 104}, "filePrevErr");
    const auto fdgFailures = dlpFailures("FdgHead_t read less", {29, 35, 44, 52, 73, 84}, "filePrevErr");
    const auto gfFailures = dlpFailures("GfHead_t read less", {29, 36, 46, 54, 75, 83}, "fileReadLess");
    const PreviewFormat::Failures kestravoFailures{
        {28, "read file head less", "fileReadLess"},      {39, kDocumentWrong, "filePrevErr"},
        {50, "svgx file head read less", "fileReadLess"}, {62, "prev size is unlawful", "filePrevErr"},
        {56, "prev offset is unlawful", "filePrevErr"},   {80, "src_RGB_Buffer read less", "fileReadLess"}};
    const auto makeVrx = make<VrxFileThumbnail>;
    // clang-format off
    return {
        {"Vrx", makeVrx, vrxFileOf<Layout::Dlp>, darkRuns(), {112, 60, 72, 112}, 20, vrxFailures},
        {"VrxAt328", makeVrx, vrxFileOf<Layout::PreviewAt328>, darkRuns(), {112, 0, 0, 328}, 20, vrxFailures},
        {"VrxAt336", makeVrx, vrxFileOf<Layout::PreviewAt336>, darkRuns(), {112, 0, 0, 336}, 20, vrxFailures},
        {"Fdg", make<FdgFileThumbnail>, fileOf<samples::FdgParts, samples::fdgBytes>, darkRuns(),
         {216, 44, 48, 216}, 20, fdgFailures},
        {"Gf", make<GfFileThumbnail>, fileOf<samples::GfParts, samples::gfBytes>, darkChannels(),
         {216, 48, 48, 216}, 20, gfFailures},
        {"Kestravo", make<KestravoFileThumbnail>, fileOf<samples::KestravoParts, samples::kestravoBytes>, lightRuns(),
         {412, 12, 12, 412}, 18, kestravoFailures, true},
    };
    // clang-format on
}

std::vector<SliceFormat> sliceFormats()
{
    std::vector<SliceFormat> formats{photonsFormat(), svgxFormat()};
    for (const PreviewFormat& format : previewFormats())
        formats.push_back(sliceFormat(format));
    return formats;
}

} // namespace zr::test
