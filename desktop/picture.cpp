// SPDX-License-Identifier: MIT
#include "desktop/picture.h"

#include "core/log_file.h"
#include "core/reasons.h"
#include "core/request_log.h"
#include "desktop/source_file.h"
#include "readers/mesh/memory_probe.h"
#include "readers/mesh/obj_reading.h"
#include "readers/reader_table.h"
#include "readers/visibility.h"
#include "render/renderer_choice.h"
#include "render/software_renderer.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QLoggingCategory>
#include <QSemaphore>
#include <QThreadPool>

#include <new>

namespace zr::desktop
{
namespace
{

// The machine's, or what the process may have of it.
constexpr char kNoMemory[] = "there is not enough memory for it; see --memory-limit";

// From its own reader, or null with the reason in the log of this thread.
QImage readPicture(const SourceFile& source, const QString& path)
{
    try {
        const auto reader = makeReader(source.suffix(), path);
        reader->readFrom(source.descriptor());
        return reader->getImage();
    } catch (const QString&) {
        return {};
    }
}

QByteArray failureReason(const SourceFile& source, const QString& path)
{
    if (source.isEmpty())
        return "the file is empty";
    const RequestLog log(path, LogFile::instance()->keptLines());
    const auto failure = log.firstAmong(readerFailures(source.suffix()));
    if (failure && failure->reason == QByteArray(reason::kMemoryShort))
        return kNoMemory;
    return failure ? failure->reason : reason::kDamagedOrNoMemory;
}

QImage fitted(const QImage& picture, int sizePx)
{
    if (picture.width() <= sizePx && picture.height() <= sizePx)
        return picture;
    return picture.scaled(sizePx, sizePx, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

// Not for models, which are drawn by what needs none of it, and a process with a single thread ends sooner.
void preparePreviews()
{
    // Looks for Qt's plug-ins.
    QBuffer nothing;
    nothing.open(QIODevice::ReadOnly);
    QImageReader(&nothing, "bmp").canRead();
    // Converts and scales large pictures. One thread, which stays; QThreadPool::waitForDone() would end it.
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(1);
    pool->setExpiryTimeout(-1);
    QSemaphore isRunning;
    pool->start([&isRunning] { isRunning.release(); });
    isRunning.acquire();
}

} // namespace

void prepareReading(const SourceFile& source)
{
    LogFile::instance()->keepInMemory();
    systemMemory();
    // Its rules are read from a file at the first warning otherwise, even of those that are not printed.
    QLoggingCategory::defaultCategory();
    // Reads how many processors there are.
    QThreadPool::globalInstance();
    if (!isModel(source.suffix()))
        preparePreviews();
}

Thumbnail makeThumbnail(const SourceFile& source, int sizePx)
{
    const QString path = QFile::decodeName(source.path());
    if (!supportedSuffixes().contains(source.suffix(), Qt::CaseInsensitive))
        return {{}, reason::kNotSupported};
    drawInSoftware(SoftwareSettings::smooth(sizePx));
    readObjAs(ObjReading::Standard);
    try {
        const QImage picture = fitted(readPicture(source, path), sizePx);
        if (picture.isNull())
            return {{}, failureReason(source, path)};
        if (isInvisible(picture))
            return {{}, invisibilityReason(path).toUtf8()};
        return {picture, {}};
    } catch (const std::bad_alloc&) {
        return {{}, kNoMemory};
    } catch (const std::exception&) {
        return {{}, reason::kDamagedOrNoMemory};
    }
}

} // namespace zr::desktop
