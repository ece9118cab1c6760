// SPDX-License-Identifier: MIT
#pragma once

/// What failures mean to a user, shown after "no thumbnail: ". Each fault has one sentence, whatever the format.
namespace zr::reason
{

constexpr char kNotSupported[] = "this kind of file is not supported";
constexpr char kCannotBeOpened[] = "the file cannot be opened";
constexpr char kDamagedOrNoMemory[] = "the file is damaged, or there is not enough memory for it";

constexpr char kHeaderCut[] = "the file ends before its header is complete";
constexpr char kHeaderWrongOrCut[] = "the file's header is damaged or cut short";

constexpr char kNoPreview[] = "the file has no preview";
constexpr char kNoPreviewOrPastEnd[] = "the file has no preview, or ends before it";
constexpr char kPreviewPastEnd[] = "the file ends before its preview: it is cut short or damaged";
constexpr char kSecondPreviewPastEnd[] = "the file ends before its second preview: it is cut short or damaged";
constexpr char kPreviewHeaderCut[] = "the file ends before the header of its preview is complete";
constexpr char kPreviewSizeWrong[] = "the file's preview is damaged: its size is impossible";
constexpr char kPixelsPastEnd[] = "the file ends before the pixels of its preview: it is cut short or damaged";
constexpr char kNoPixelsOrPastEnd[] = "the file's preview has no pixels, or the file ends before them";
constexpr char kPreviewCut[] = "the file ends in the middle of its preview";
constexpr char kPreviewCutOrSizeWrong[] =
    "the file ends in the middle of its preview, or the preview's size is damaged";

constexpr char kFileTooLarge[] = "the file is too large for the free memory";
constexpr char kMemoryShort[] = "the machine is short of memory";
constexpr char kTrianglesCut[] = "the file ends before all of its triangles, or is no STL file";
constexpr char kSlcHeaderWrong[] = "the file's header is damaged, or it is no SLC file";
constexpr char kModelSizeWrong[] = "the model has no extent, or is larger than 10000 units";
constexpr char kNothingToDraw[] = "there is nothing to draw: the model is empty, or the file is damaged";
constexpr char kNoOpenGl[] = "there is no OpenGL, which models need: 'zrthumb --check' tells more";
constexpr char kOpenGlFailed[] = "models need OpenGL, which fails or is too old: 'zrthumb --check' tells more";

constexpr char kDatabaseNotOpen[] = "the database of the cache cannot be opened";
constexpr char kDatabaseNotUsable[] = "the database of the cache cannot be used";
constexpr char kNotSaved[] =
    "the picture could not be saved in the cache: another program may have its database locked; try again";

} // namespace zr::reason
