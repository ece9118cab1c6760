// SPDX-License-Identifier: MIT
#pragma once

/// Error keys of zrthumb's own, for failures that do not come from the server's pipeline, whose keys are in
/// core/log_contract.h. Scripts rely on them, so none ever changes.
namespace zr::key
{

// Of the file itself.
constexpr char kNoSuchFile[] = "noSuchFile";
constexpr char kIsFolder[] = "isFolder";
constexpr char kNotRegular[] = "notRegularFile";
constexpr char kLooseLink[] = "looseLink";
constexpr char kNotPermitted[] = "notPermitted";
constexpr char kNotReadable[] = "notReadable";
constexpr char kEmpty[] = "fileIsEmpty";
constexpr char kNameNotText[] = "nameIsNotText";

// Of its reading.
constexpr char kReader[] = "readerErr"; ///< without a key of its own: damaged, or too large for the memory
constexpr char kReaderCrashed[] = "readerCrashed";
constexpr char kNoWorker[] = "noWorker";
constexpr char kServer[] = "serverErr";

// Of what is around it.
constexpr char kCache[] = "cacheErr";
constexpr char kNotWritten[] = "outputErr";
constexpr char kNotListed[] = "listErr";

} // namespace zr::key
