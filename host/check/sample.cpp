// SPDX-License-Identifier: MIT
#include "host/check/sample.h"

#include "core/data_location.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

namespace zr
{
namespace
{

// A photons file with a picture of one colour, see docs/formats/photons.md.
QByteArray sliceFile()
{
    constexpr char kVersion[] = "2.1";
    constexpr int kUnusedBytes = 76;
    constexpr qint32 kSide = 2;
    constexpr quint16 kColour = 0x7C1F;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.writeBytes(kVersion, sizeof kVersion - 1); // with its length before it
    stream.writeRawData(QByteArray(kUnusedBytes, '\0').constData(), kUnusedBytes);
    stream << kSide << qint32{0} << kSide << qint32{0};
    for (int i = 0; i < kSide * kSide; ++i)
        stream << kColour;
    return bytes;
}

// A tetrahedron.
QByteArray model()
{
    return "v 0 0 0\nv 10 0 0\nv 0 10 0\nv 0 0 10\nf 1 3 2\nf 1 2 4\nf 1 4 3\nf 2 3 4\n";
}

// The cache takes no path with an apostrophe, and the sample must not fail because of its own.
QString placeForSamples()
{
    const QString usual = QFileInfo(QDir::tempPath()).absoluteFilePath();
    return usual.contains(QLatin1Char('\'')) ? QFileInfo(dataFolder()).absolutePath() : usual;
}

} // namespace

SampleFolder::SampleFolder()
    : m_folder(std::make_unique<QTemporaryDir>(placeForSamples() + QLatin1String("/zrthumb-check-XXXXXX")))
{
}

QString SampleFolder::fault() const
{
    if (m_folder->isValid() && !write(SampleKind::Model).isEmpty())
        return {};
    return QStringLiteral("cannot be written to %1: make room on that disk, and get the right to write there")
        .arg(placeForSamples());
}

QString SampleFolder::write(SampleKind kind) const
{
    const bool isModel = kind == SampleKind::Model;
    const QString name = QLatin1String("zrthumb-check-") + QUuid::createUuid().toString(QUuid::Id128);
    const QByteArray bytes = isModel ? model() : sliceFile();
    QFile file(m_folder->filePath(name + (isModel ? QLatin1String(".obj") : QLatin1String(".photons"))));
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
    return isWritten ? QFileInfo(file).absoluteFilePath() : QString();
}

} // namespace zr
