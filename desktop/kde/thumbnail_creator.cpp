// SPDX-License-Identifier: MIT
// The plug-in for file managers of KDE.

#include <KIO/ThumbnailCreator>
#include <KPluginFactory>

#include <QImage>
#include <QProcess>
#include <QUrl>

#include <algorithm>

namespace zr
{

/// Makes thumbnails for KDE's file managers by running zrthumbnailer. What a damaged file may do to that program stays
/// in its process.
class ThumbnailCreator : public KIO::ThumbnailCreator
{
    Q_OBJECT

public:
    using KIO::ThumbnailCreator::ThumbnailCreator;

    KIO::ThumbnailResult create(const KIO::ThumbnailRequest& request) override;
};

K_PLUGIN_CLASS_WITH_JSON(ThumbnailCreator, "zrthumb_kde.json")

namespace
{

constexpr int kTimeoutMs = 30'000;

// What zrthumbnailer takes.
constexpr int kMinSizePx = 16;
constexpr int kMaxSizePx = 4096;

// The file manager's platform and plug-ins are not the program's.
QProcessEnvironment environment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("QT_PLUGIN_PATH"));
    return environment;
}

// The PNG that zrthumbnailer makes of `file`; empty when it makes none.
QByteArray thumbnail(const QString& file, int sizePx)
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QStringLiteral("zrthumbnailer"),
                  {QStringLiteral("-s"), QString::number(sizePx), file, QStringLiteral("-")});
    if (!process.waitForFinished(kTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    return process.readAllStandardOutput();
}

} // namespace

KIO::ThumbnailResult ThumbnailCreator::create(const KIO::ThumbnailRequest& request)
{
    if (!request.url().isLocalFile())
        return KIO::ThumbnailResult::fail();
    // In pixels of the display, whose ratio is already in it.
    const QSize size = request.targetSize();
    const int sizePx = std::clamp(std::max(size.width(), size.height()), kMinSizePx, kMaxSizePx);
    const QImage picture = QImage::fromData(thumbnail(request.url().toLocalFile(), sizePx), "PNG");
    return picture.isNull() ? KIO::ThumbnailResult::fail() : KIO::ThumbnailResult::pass(picture);
}

} // namespace zr

#include "thumbnail_creator.moc"
