// SPDX-License-Identifier: MIT
#include "host/file_task.h"

#include "cache/cached_pictures.h"
#include "host/contact_sheet.h"
#include "host/failure_keys.h"
#include "host/output_file.h"
#include "host/output_folder.h"
#include "host/request.h"
#include "readers/reader_table.h"
#include "readers/visibility.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

namespace zr
{
namespace
{

// What a model takes while it is read and drawn, by its file's size: with OpenGL, 72 bytes a triangle for the mesh, and
// twice as much again in the driver, for 50 bytes of an STL file.
constexpr qint64 kMemoryPerFileByte = 5;

// Of faces in forms that only the standard reading of OBJ files understands.
constexpr char kFacesNotUnderstood[] = ", which are not understood";
constexpr char kFacesUnderstood[] = ": use '--obj standard' with -o, --output-dir or --sheet, which reads them";

QImage fitted(const QImage& picture, int sizePx)
{
    return sizePx > 0 ? picture.scaled(sizePx, sizePx, Qt::KeepAspectRatio, Qt::SmoothTransformation) : picture;
}

// Empty without one.
QString outputOf(const Options& options, const ListedFile& file)
{
    return options.outputFolder.isEmpty() ? options.output : outputIn(options.outputFolder, file);
}

} // namespace

qint64 memoryFor(const QString& path)
{
    const QFileInfo file(path);
    return isModel(file.suffix()) ? file.size() * kMemoryPerFileByte : 0;
}

FileTask::FileTask(const Options& options) : m_options(options)
{
    // Only for output outside the cache, in which files of equal names share their PNG.
    if (options.dataFolderUse == DataFolderUse::Usual && options.hasOutputs())
        m_sharedPictures.emplace();
}

FileResult FileTask::run(const ListedFile& file)
{
    QElapsedTimer timer;
    timer.start();
    FileResult result;
    const bool maySkip = !m_options.outputFolder.isEmpty() && !m_options.refreshes && m_options.sheet.isEmpty();
    const QString output = outputOf(m_options, file);
    if (const auto size = maySkip ? currentOutput(output, file.path) : std::nullopt) {
        result.picture = output;
        result.size = *size;
        result.isCached = true;
    } else {
        make(file, result);
    }
    result.milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    return result;
}

void FileTask::make(const ListedFile& file, FileResult& result)
{
    const QDateTime sourceTime = QFileInfo(file.path).lastModified();
    if (m_sharedPictures)
        m_sharedPictures->prepare(file.path, file.isShared);
    if (m_options.json && m_options.dataFolderUse == DataFolderUse::Usual)
        result.isCached = hasFreshPicture(file.path);
    const RequestResult request = requestThumbnail(file.path, m_options.server, m_options.dataFolderUse);
    result.failure = request.failure;
    if (!request.succeeded())
        return;
    result.picture = request.pngPath;
    result.size = request.picture.size();
    if (isInvisible(request.picture))
        result.note = invisibilityReason(file.path, talksToServer() ? kFacesNotUnderstood : kFacesUnderstood);
    const QString output = outputOf(m_options, file);
    if (!output.isEmpty())
        write(output, file.path, sourceTime, request.picture, result);
    if (!m_options.sheet.isEmpty())
        result.cell = ContactSheet::cellPicture(request.picture);
}

void FileTask::write(const QString& output, const QString& source, const QDateTime& sourceTime, const QImage& picture,
                     FileResult& result) const
{
    const bool isInFolder = !m_options.outputFolder.isEmpty();
    // What shows an older state must not be newer than its file.
    if (isInFolder && QFileInfo(source).lastModified() != sourceTime) {
        result.writeFault = QStringLiteral("its file changed meanwhile; try again");
    } else if (isInFolder && QFileInfo(output).isSymLink()) {
        result.writeFault = QStringLiteral("a link is in its place; move it away");
    } else if (isInFolder && !QDir().mkpath(QFileInfo(output).path())) {
        result.writeFault = QStringLiteral("its folder cannot be made");
    } else {
        const QImage written = fitted(picture, m_options.sizePx);
        result.writeFault = writeOutput(written, output);
        result.size = written.size();
    }
    if (isInFolder || m_options.json)
        result.picture = output;
}

} // namespace zr
