// SPDX-License-Identifier: MIT
#pragma once

#include "core/file_reader_base.h"
#include "core/log_contract.h"
#include "core/log_file.h"
#include "render/renderer_choice.h"
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
    /// Parses the file. An error key is caught here and logged, and there is no picture.
    void readFile() override
    {
        if (!m_valid)
            return;
        try {
            if (!openSource())
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

    /// Makes the renderer, which exists even if OpenGL fails, and the mesh that suits it.
    void makeRenderer(bool perspective) { m_renderer = makeMeshRenderer(perspective); }
    template <typename... Settings>
    void makeMesh(Settings... settings)
    {
        m_mesh = std::make_unique<MeshType>(m_renderer->chunkLayout(), settings...);
    }

    QImage renderMesh()
    {
        const auto [min, max] = m_mesh->boundingBox();
        return m_renderer->render(m_mesh->chunks(), min.data(), max.data());
    }

    std::unique_ptr<MeshRenderer> m_renderer;
    std::unique_ptr<MeshType> m_mesh;
    bool m_valid = true; ///< nothing has failed that the reader itself catches

private:
    const ReadLines m_lines;
};

/// The readers of OBJ and SLC files: these log each step of their making, let standard exceptions out of it but not
/// error keys, and do the opposite when the mesh is drawn. The picture is 400 x 400 with a transparent background; a
/// null image when the file cannot be read.
template <typename MeshType>
class LoggedMeshThumbnail : public MeshFileThumbnail<MeshType>
{
public:
    QImage previewImage() override
    {
        if (!this->m_valid)
            return QImage();
        try {
            return this->renderMesh();
        } catch (const std::exception&) {
            return QImage();
        }
    }

protected:
    /// The log numbers of the constructor, in the order of its steps.
    struct MakingLines {
        int begun;
        int rendererMade;
        int meshMade;
        FailureLine failed;
    };

    static constexpr ThrownKey kNotOpened{40, key::kModelNotOpened, reason::kCannotBeOpened};
    static constexpr int kReadFailed = 45;

    static FailureLines failuresWith(const MakingLines& lines)
    {
        return MeshFileThumbnail<MeshType>::withParts({kNotOpened, lines.failed});
    }

    /// `settings` are those of the mesh.
    template <typename... Settings>
    LoggedMeshThumbnail(const QString& filePath, bool perspective, const MakingLines& lines, Settings... settings)
        : MeshFileThumbnail<MeshType>(filePath, {kNotOpened, kReadFailed})
    {
        try {
            logLine(lines.begun, QString());
            this->makeRenderer(perspective);
            logLine(lines.rendererMade, QString());
            this->makeMesh(settings...);
            logLine(lines.meshMade, QString());
        } catch (const QString&) {
            logLine(lines.failed);
            this->m_valid = false;
        }
    }
};

} // namespace zr
