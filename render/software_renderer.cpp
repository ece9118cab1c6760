// SPDX-License-Identifier: MIT
#include "render/software_renderer.h"

#include "core/log_file.h"
#include "render/camera.h"
#include "render/clip_transform.h"
#include "render/flat_shading.h"
#include "render/framing.h"
#include "render/rasteriser.h"
#include "render/renderer_failures.h"
#include "render/sample_resolver.h"
#include "render/triangle_stream.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace zr
{
namespace
{

constexpr int kSmoothestSidePx = 256;

// The orthographic camera counts in pixels of the product's own pictures.
constexpr QSize kCameraSize(400, 400);

// Eight bytes each. Larger pictures are drawn in bands.
constexpr int kMaxBandSamples = 4 << 20;

constexpr QRgb kWhiteWithoutAlpha = 0x00FFFFFF;

int rowsPerBand(const SoftwareSettings& settings)
{
    return std::clamp(kMaxBandSamples / (settings.sidePx * settings.samples), 1, settings.sidePx);
}

QImage background(const SoftwareSettings& settings)
{
    QImage picture(settings.sidePx, settings.sidePx, QImage::Format_ARGB32_Premultiplied);
    if (picture.isNull())
        throw std::bad_alloc();
    picture.fill(settings.samples == 1 ? kWhiteWithoutAlpha : 0);
    return picture;
}

} // namespace

SoftwareSettings SoftwareSettings::smooth(int sidePx)
{
    return {sidePx, sidePx <= kSmoothestSidePx ? 8 : 4, true};
}

SoftwareRenderer::SoftwareRenderer(bool perspective, const SoftwareSettings& settings)
    : m_perspective(perspective), m_settings(settings)
{
    if (settings.sidePx < SoftwareSettings::kMinSidePx || settings.sidePx > SoftwareSettings::kMaxSidePx ||
        !SamplePattern::isPossible(settings.samples))
        throw std::invalid_argument("a picture of this size or number of samples cannot be drawn");
}

QImage SoftwareRenderer::render(const TriangleChunks& chunks, const float* min, const float* max)
{
    try {
        requireTriangles(chunks);
        return draw(chunks, min, max);
    } catch (const QString& key) {
        logLine(line::kRenderFailed, key);
        return {};
    }
}

QImage SoftwareRenderer::draw(const TriangleChunks& chunks, const float* min, const float* max) const
{
    const TriangleStream stream(chunks);
    const CameraMatrices camera = cameraMatrices(kCameraSize, m_perspective);
    const QMatrix4x4 model = unitBoxMatrix(min, max);
    QMatrix4x4 view = camera.mvpMatrix();
    if (m_settings.isFramed)
        view = framingMatrix(view, model, stream) * view;

    const SamplePattern pattern(m_settings.samples);
    const FlatShading shading(view * model, camera.normalMatrix());
    QImage picture = background(m_settings);
    SampleResolver resolver(shading, stream, pattern, picture);
    SampleBand band(pattern, m_settings.sidePx, rowsPerBand(m_settings));
    Rasteriser rasteriser(ClipTransform(view, model), m_settings.sidePx, pattern, band);
    for (int begin = 0; begin < m_settings.sidePx; begin = band.end()) {
        band.start(begin, std::min(begin + rowsPerBand(m_settings), m_settings.sidePx));
        for (const TriangleStream::Run& run : stream.runs())
            rasteriser.draw(run.positions, run.first, run.count);
        resolver.resolve(band);
    }
    return picture;
}

} // namespace zr
