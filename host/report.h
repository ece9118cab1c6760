// SPDX-License-Identifier: MIT
#pragma once

#include "host/contact_sheet.h"
#include "host/file_list.h"
#include "host/file_task.h"
#include "host/options.h"
#include "host/progress.h"

#include <optional>

namespace zr
{

/// What a run tells and leaves: a line for each file, as text or JSON, and the contact sheet.
class Report
{
public:
    /// Begins with what could not be listed.
    Report(const Options& options, const FileList& list, Progress& progress);

    /// Adds the next file of the list.
    void add(const ListedFile& file, const FileResult& result);

    /// Saves the rest of the sheet. To be called after the last file, also of a run that ends early.
    void end();

    /// How many files were added, and how many of them have no thumbnail.
    int done() const { return m_done; }
    int failures() const { return m_failures; }

    /// Whether all files have a thumbnail, all outputs are written and everything could be listed.
    bool isAllWell() const { return m_failures == 0 && m_isAllWritten && m_list.faults.empty(); }

private:
    void printError(const QString& text);
    void printName(const QString& name);
    void tellWhatIsNotListed();
    void tell(const ListedFile& file, const FileResult& result);
    void tellAsJson(const ListedFile& file, const FileResult& result);
    void savePage(const QImage& page, const QString& file);

    const Options& m_options;
    const FileList& m_list;
    Progress& m_progress;
    std::optional<ContactSheet> m_sheet;
    int m_done = 0;
    int m_failures = 0;
    bool m_isAllWritten = true;
};

} // namespace zr
