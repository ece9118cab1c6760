// SPDX-License-Identifier: MIT
#pragma once

#include "core/file_reader_base.h"

#include <QStringList>

#include <memory>

namespace zr
{

// The table of formats, which is cmake/formats.cmake. Suffixes are in lower case and in its order.

/// The suffixes that have a reader.
QStringList supportedSuffixes();

/// Whether files with that suffix are models, which are drawn. Compared without regard to case.
bool isModel(const QString& suffix);

/// The suffixes for whose files the server is registered with the system.
QStringList registeredSuffixes();

/// The log lines that report failures of the reader for `suffix`; empty when no format has that suffix.
FailureLines readerFailures(const QString& suffix);

/// A new reader of `filePath` for `suffix`, compared without regard to case; null when no format has that suffix.
/// A QString error key that a reader's constructor throws passes through.
std::unique_ptr<FileReaderBase> makeReader(const QString& suffix, const QString& filePath);

} // namespace zr
