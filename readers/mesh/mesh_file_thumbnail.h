#pragma once

#include "core/file_reader_base.h"
#include "core/log_file.h"
#include "render/offscreen_renderer.h"
#include "render/renderer_failures.h"

#include <exception>
#include <memory>

namespace zr
{

/// What the readers of model files share: a file is parsed into a mesh, and the mesh is drawn. They differ in what
/// they log and in what they catch.
template <typename MeshType>
class MeshFileThumbnail : public FileReaderBase
{
public:
    /// Parses the file. An error key does not get out of here: it is logged, and there is no picture.
    void readFile() override
    {
        if (!m_valid)
            return;
        try {
            if (!m_file.open(QIODevice::ReadOnly))
                throwKey(m_lines.notOpened);
            m_mesh->parse(m_file);
        } catch (const QString& key) {
            logLine(m_lines.failed, key);
            m_valid = false;
            m_file.close();
        }
    }

protected:
    /// The log numbers of readFile().
    struct ReadLines {
        ThrownKey notOpened;
        int failed;
    };

    /// The reader's `own` failures, then the mesh's, then the renderer's.
    static FailureLines withParts(FailureLines own)
    {
        for (const FailureLines& part : {MeshType::failures(), rendererFailures()})
            own.insert(own.end(), part.begin(), part.end());
        return own;
    }

    MeshFileThumbnail(const QString& filePath, ReadLines lines) : FileReaderBase(filePath), m_lines(lines) {}

    /// Makes the renderer, which needs no success to exist, and the mesh that suits it.
    void makeRenderer(bool perspective) { m_renderer = std::make_unique<OffscreenRenderer>(perspective); }
    void makeMesh() { m_mesh = std::make_unique<MeshType>(m_renderer->usesGeometryShader()); }

    /// The log numbers of makeParts(), in the order of its steps.
    struct PartLines {
        int begun;
        int rendererMade;
        int meshMade;
        FailureLine failed;
    };

    /// Makes the renderer and the mesh, step by step in the log. An error key leaves a reader without a picture; a
    /// standard exception passes through.
    void makeParts(bool perspective, PartLines lines)
    {
        try {
            logLine(lines.begun, QString());
            makeRenderer(perspective);
            logLine(lines.rendererMade, QString());
            makeMesh();
            logLine(lines.meshMade, QString());
        } catch (const QString&) {
            logLine(lines.failed);
            m_valid = false;
        }
    }

    /// The picture of a mesh that was read; a null image after a standard exception.
    QImage tryRenderMesh()
    {
        if (!m_valid)
            return QImage();
        try {
            return renderMesh();
        } catch (const std::exception&) {
            return QImage();
        }
    }

    QImage renderMesh()
    {
        const auto [min, max] = m_mesh->boundingBox();
        return m_renderer->render(m_mesh->chunks(), min.data(), max.data());
    }

    std::unique_ptr<OffscreenRenderer> m_renderer;
    std::unique_ptr<MeshType> m_mesh;
    bool m_valid = true; ///< nothing has failed that the reader itself catches

private:
    const ReadLines m_lines;
};

} // namespace zr
