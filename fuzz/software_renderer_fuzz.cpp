// SPDX-License-Identifier: MIT
// Draws any floats as a model, in a picture of any size and smoothness.

#include "render/software_renderer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{

constexpr std::size_t kHeadBytes = 2;
// Large enough for each way through the renderer, and small enough for thousands of pictures in a minute.
constexpr int kMaxSide = 32;
constexpr int kMaxTriangles = 50;

using Box = std::array<float, 6>;

/// The model's bounding box and its triangles.
struct Model {
    Box box{};
    QVector<float> floats;

    Model(const std::uint8_t* data, std::size_t size)
    {
        std::memcpy(box.data(), data, std::min(size, sizeof(box)));
        const std::size_t rest = size - std::min(size, sizeof(box));
        const int count = static_cast<int>(std::min(rest / sizeof(float), 9 * std::size_t{kMaxTriangles}));
        floats.resize(count);
        std::memcpy(floats.data(), data + (size - rest), static_cast<std::size_t>(count) * sizeof(float));
    }
};

// Nothing is brighter than its share of the pixel allows, and without smoothness a pixel is all or nothing.
void checkPixels(const QImage& picture, int samples)
{
    for (int y = 0; y < picture.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const int brightest = std::max({qRed(line[x]), qGreen(line[x]), qBlue(line[x])});
            const bool isSound =
                samples > 1 ? brightest <= qAlpha(line[x]) : line[x] == 0xFFFFFF || qAlpha(line[x]) == 255;
            if (!isSound)
                std::abort();
        }
    }
}

} // namespace

// Two bytes are the picture's size and how it is drawn, the others are floats.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < kHeadBytes)
        return 0;
    constexpr int least = zr::SoftwareSettings::kMinSidePx;
    zr::SoftwareSettings settings;
    settings.sidePx = least + data[0] % (kMaxSide - least + 1);
    settings.samples = 1 << data[1] % 5;
    settings.isFramed = (data[1] & 0x40U) != 0;
    const bool perspective = (data[1] & 0x80U) == 0;
    Model model(data + kHeadBytes, size - kHeadBytes);

    zr::SoftwareRenderer renderer(perspective, settings);
    const QImage picture = renderer.render({&model.floats}, model.box.data(), model.box.data() + 3);
    if (picture.size() != QSize(settings.sidePx, settings.sidePx))
        std::abort();
    checkPixels(picture, settings.samples);
    return 0;
}
