// SPDX-License-Identifier: MIT
#pragma once

#include "tests/readers/slice/slice_reader_test.h"
#include "tools/samples/preview_bytes.h"

#include <vector>

namespace zr::test
{

/// What a valid file fails with when it is cut to fewer than `bytes`, and not to fewer than the previous row's.
struct Cut {
    int bytes;
    Failure failure;
};

/// A slice format, for the tests that every reader has to pass.
struct SliceFormat {
    const char* name;
    MakeReader makeReader;
    int cannotOpen;   ///< log number
    QByteArray valid; ///< a small file
    std::vector<Cut> cuts;
};

std::vector<SliceFormat> sliceFormats();

/// How a format codes its preview, and what the reader has to make of it.
struct PreviewCoding {
    samples::PreviewParts small; ///< a valid preview of a few pixels
    samples::PreviewParts (*of)(const QImage& picture);
    QImage (*picture)(const samples::PreviewParts& preview);
    QRgb background;
    bool isScaled;
};

/// A slice format with a preview block.
struct PreviewFormat {
    /// Bytes of the header, the places of its fields, and the place of the preview header in a file of fileOf().
    struct Places {
        int headBytes;
        int offset;        ///< of the preview header; 0 in formats where that has a fixed place
        int checkedOffset; ///< the offset that is compared with the file's size, which may be another one; 0 for none
        int previewHead;
    };

    struct Failures {
        Failure headShort;
        Failure offsetPastEnd;
        Failure previewHeadShort;
        Failure sizeWrong;
        Failure dataOffsetWrong;
        Failure dataShort;
    };

    const char* name;
    MakeReader makeReader;
    QByteArray (*fileOf)(const samples::PreviewParts& preview);
    PreviewCoding coding;
    Places places;
    int cannotOpen; ///< log number
    Failures failures;
    bool checksDataOffsetFirst = false; ///< before the size, and 0 is not an offset

    QByteArray valid() const { return fileOf(coding.small); }
};

std::vector<PreviewFormat> previewFormats();

/// A 3 x 2 preview with the key colour, runs, and a run in the key's colour without its flag.
samples::PreviewParts smallPreview();

/// The picture of a run-length coded preview in a vrx or an fdg file.
QImage darkPicture(const samples::PreviewParts& preview);

/// The picture of the preview in a gf file.
QImage channelPicture(const samples::PreviewParts& preview);

// GoogleTest reports formats by name.
inline void PrintTo(const SliceFormat& format, std::ostream* out)
{
    *out << format.name;
}

inline void PrintTo(const PreviewFormat& format, std::ostream* out)
{
    *out << format.name;
}

/// The name of a test's parameter.
template <typename Format>
std::string formatName(const ::testing::TestParamInfo<Format>& test)
{
    return test.param.name;
}

} // namespace zr::test
