// SPDX-License-Identifier: MIT
#include "readers/reader_table.h"

#include "readers/reader_headers.inc"

namespace zr
{
namespace
{

template <typename Reader>
std::unique_ptr<FileReaderBase> make(const QString& filePath)
{
    return std::make_unique<Reader>(filePath);
}

struct ReaderRow {
    const char* suffix; ///< Latin-1
    bool isModel;
    bool isRegistered;
    // Both null for a format that is only registered.
    std::unique_ptr<FileReaderBase> (*make)(const QString& filePath);
    FailureLines (*failures)();
};

// The first row whose suffix matches wins.
constexpr ReaderRow kReaderTable[] = {
#include "readers/reader_rows.inc"
};

QStringList suffixesOf(bool (*isWanted)(const ReaderRow& row))
{
    QStringList suffixes;
    for (const ReaderRow& row : kReaderTable) {
        if (isWanted(row))
            suffixes.append(QLatin1String(row.suffix));
    }
    return suffixes;
}

// Null when no reader has that suffix.
const ReaderRow* rowOf(const QString& suffix)
{
    for (const ReaderRow& row : kReaderTable) {
        if (row.make && suffix.compare(QLatin1String(row.suffix), Qt::CaseInsensitive) == 0)
            return &row;
    }
    return nullptr;
}

} // namespace

QStringList supportedSuffixes()
{
    return suffixesOf([](const ReaderRow& row) { return row.make != nullptr; });
}

bool isModel(const QString& suffix)
{
    const ReaderRow* const row = rowOf(suffix);
    return row && row->isModel;
}

QStringList registeredSuffixes()
{
    return suffixesOf([](const ReaderRow& row) { return row.isRegistered; });
}

FailureLines readerFailures(const QString& suffix)
{
    const ReaderRow* const row = rowOf(suffix);
    return row ? row->failures() : FailureLines();
}

std::unique_ptr<FileReaderBase> makeReader(const QString& suffix, const QString& filePath)
{
    const ReaderRow* const row = rowOf(suffix);
    return row ? row->make(filePath) : nullptr;
}

} // namespace zr
