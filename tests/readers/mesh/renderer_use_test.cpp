// SPDX-License-Identifier: MIT
// What the readers make of a renderer that runs out of memory while it draws, and whether it outlives them. The readers
// differ here.

#include "readers/mesh/obj_file_thumbnail.h"
#include "readers/mesh/slc_file_thumbnail.h"
#include "readers/mesh/stl_file_thumbnail.h"
#include "tests/readers/mesh/model_reader_test.h"
#include "tests/support/allocation_failure.h"
#include "tools/samples/slc_bytes.h"

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>

namespace zr::test
{
namespace
{

class RendererUseTest : public ModelReaderTest
{
};

// Asks a reader that has read its file for the picture, for which the renderer gets no framebuffer.
template <typename Reader>
QImage pictureWithoutMemory(const QByteArray& content)
{
    const SourceFile source(content);
    Reader reader(source.path());
    reader.readFile();
    const FailingAllocation failing(sizeof(QOpenGLFramebufferObject), Thrown::BadAlloc);
    return reader.previewImage();
}

TEST_F(RendererUseTest, OtherReadersCatchStandardExceptionsOfTheRenderer)
{
    EXPECT_TRUE(pictureWithoutMemory<ObjFileThumbnail>("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 0 1 2\n").isNull());
    EXPECT_EQ(logMessages(), QStringList({"12 ", "14 ", "16 "}));
    restartLog();
    samples::SlcParts parts;
    parts.layers = {{0, {{{0, 0}, {9, 0}, {9, 9}}}}};
    EXPECT_TRUE(pictureWithoutMemory<SlcFileThumbnail>(samples::slcBytes(parts)).isNull());
    EXPECT_EQ(logMessages(), QStringList({"11 ", "13 ", "15 ", "23 ", "133 "}));
}

TEST_F(RendererUseTest, StlReaderLetsStandardExceptionsOfTheRendererPass)
{
    EXPECT_THROW(pictureWithoutMemory<StlFileThumbnail>(binaryStl(twoTriangles())), std::bad_alloc);
    EXPECT_EQ(logMessages(), QStringList({"100 "}));
}

// A renderer's context is current on its thread for as long as the renderer lives.
template <typename Reader>
void expectContextAfter(bool isKept)
{
    const QOpenGLContext* context = nullptr;
    {
        const Reader reader(QStringLiteral("model"));
        context = QOpenGLContext::currentContext();
        EXPECT_NE(context, nullptr);
    }
    EXPECT_EQ(QOpenGLContext::currentContext(), isKept ? context : nullptr);
}

TEST_F(RendererUseTest, OnlyTheStlReadersPartsOutliveTheirReader)
{
    expectContextAfter<ObjFileThumbnail>(false);
    expectContextAfter<StlFileThumbnail>(true);
    expectContextAfter<SlcFileThumbnail>(false);
}

} // namespace
} // namespace zr::test
