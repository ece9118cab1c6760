// SPDX-License-Identifier: MIT
#include "host/thumbnail_client.h"

#include "core/job/thumbnail_job.h"
#include "core/log_file.h"
#include "host/renderer_setup.h"
#include "request/thumbnail_extractor.h"

#include <QFileInfo>

namespace zr
{
namespace
{

// What its request logs is kept in memory as well, since other processes log to the same file.
class NativeClient final : public ThumbnailClient
{
public:
    NativeClient() { LogFile::instance()->keepCopy(); }

    bool load(const QString& path) override { return m_extractor.load(path); }
    QImage extract() override { return m_extractor.extract(); }
    QStringList messages(const QString&) const override { return LogFile::instance()->keptLines(); }

private:
    ThumbnailExtractor m_extractor;
};

// The request's reader alone. What it logs stays in memory.
class ReaderClient final : public ThumbnailClient
{
public:
    ReaderClient() { LogFile::instance()->keepInMemory(); }
    ~ReaderClient() override { LogFile::end(); }

    bool load(const QString& path) override
    {
        startQtForReader();
        if (!QFileInfo(path).isFile())
            return false;
        try {
            const auto reader = requireReader(path);
            m_picture = requirePicture(*reader);
            return true;
        } catch (const QString&) {
            logLine(kJobFailed);
            return false;
        }
    }

    QImage extract() override { return m_picture; }
    QStringList messages(const QString&) const override { return LogFile::instance()->keptLines(); }

private:
    QImage m_picture;
};

} // namespace

bool talksToServer()
{
    return false;
}

std::unique_ptr<ThumbnailClient> makeThumbnailClient(const QString&, DataFolderUse use)
{
    if (use == DataFolderUse::None)
        return std::make_unique<ReaderClient>();
    return std::make_unique<NativeClient>();
}

} // namespace zr
