// SPDX-License-Identifier: MIT
#pragma once

#include "core/file_reader_base.h"
#include "core/log_contract.h"
#include "core/reasons.h"

namespace zr
{

/// Rows of the readers' tables of failures, one function for each kind of row. The arguments are what differs between
/// formats.
constexpr ReadFailure cannotOpen(int number)
{
    return {{number, "file open errr ", FailureLine::Rest::None, reason::kCannotBeOpened}, key::kOpenFile};
}

constexpr ReadFailure readShort(int number, const char* text, const char* reason)
{
    return {{number, text, FailureLine::Rest::PathOnNextLine, reason}, key::kReadShort};
}

constexpr ReadFailure previewWrong(int number, const char* text, const char* reason)
{
    return {{number, text, FailureLine::Rest::PathOnNextLine, reason}, key::kPreview};
}

constexpr ReadFailure documentWrong(int number, const char* reason)
{
    return previewWrong(number, "There is something wrong with the document", reason);
}

constexpr ReadFailure pixelsCut(int number, const char* key)
{
    return {{number, "src_RGB_Buffer read less", FailureLine::Rest::PathOnNextLine, reason::kPreviewCut}, key};
}

/// What can be wrong with a preview block, and what differs in its checks between the formats that embed one.
struct PreviewFailures {
    /// When the offset of the pixel data is checked, and whether 0 is one.
    enum class DataOffsetCheck { AfterSize, BeforeSizeAndNotZero };

    DataOffsetCheck dataOffsetCheck;
    ReadFailure headShort;
    ReadFailure sizeWrong;
    ReadFailure dataOffsetWrong;
    ReadFailure dataShort;

    /// The format's `own` failures, which come before those of its preview.
    FailureLines after(FailureLines own) const
    {
        own.insert(own.end(), {headShort, sizeWrong, dataOffsetWrong, dataShort});
        return own;
    }
};

/// Of the formats that differ in the numbers only, and in the key that a cut in the pixel data has.
constexpr PreviewFailures previewFailures(int headShort, int sizeWrong, int dataOffsetWrong, int dataShort,
                                          const char* dataShortKey)
{
    return {
        PreviewFailures::DataOffsetCheck::AfterSize,
        readShort(headShort, "DlpPreviewHead_t read less", reason::kPreviewHeaderCut),
        documentWrong(sizeWrong, reason::kPreviewSizeWrong),
        documentWrong(dataOffsetWrong, reason::kPixelsPastEnd),
        pixelsCut(dataShort, dataShortKey),
    };
}

} // namespace zr
