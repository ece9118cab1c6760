// SPDX-License-Identifier: MIT
#include "host/reader_client.h"

#include "core/job/thumbnail_job.h"
#include "core/log_file.h"
#include "host/renderer_setup.h"

#include <QFileInfo>

namespace zr
{

ReaderClient::ReaderClient()
{
    LogFile::instance()->keepInMemory();
}

ReaderClient::~ReaderClient()
{
    LogFile::end();
}

bool ReaderClient::load(const QString& path)
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

QStringList ReaderClient::messages(const QString&) const
{
    return LogFile::instance()->keptLines();
}

} // namespace zr
