// SPDX-License-Identifier: MIT
#pragma once

#include "tools/samples/sample_files.h"

#include <QByteArray>
#include <QImage>

#include <optional>

namespace zr::samples
{

/// The parts of a photons file. Unset ones get the values of a valid file.
struct PhotonsParts {
    QByteArray version = "2.1";
    std::optional<quint32> versionLength;
    qint32 width = 0;
    qint32 height = 0;
    QByteArray pixels;
};

QByteArray photonsBytes(const PhotonsParts& parts);

/// Bytes of the values between the version text and the pixels.
constexpr int kPhotonsHeadBytes = 92;

/// The parts of a file that shows the picture.
PhotonsParts photonsPicture(const QImage& picture);

std::vector<SampleFile> photonsSamples();

} // namespace zr::samples
