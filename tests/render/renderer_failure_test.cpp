// SPDX-License-Identifier: MIT
// Every way in which a renderer fails: what it logs, and that it stays harmless afterwards.

#include "tests/render/child_process.h"
#include "tests/render/qt_object_hooks.h"
#include "tests/render/renderer_under_test.h"
#include "tests/support/qt_printers.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace zr::test
{
namespace
{

using Pipeline = RendererUnderTest::Pipeline;

constexpr GLenum kProgramBinaryFormatCount = 0x87FE;

const QStringList kEmptyListLines = {"184 ---------------renderListZero-----------------", "190 renderListZero"};
const QStringList kBufferLines = {"363 render vbo bind err", "364  throw ", "190 vboBindErrInRender"};

/// The log's messages, with "..." for the text of a compiler or linker after the number.
QStringList logWithoutDriverTexts()
{
    static const QStringList driverLines = {"256 ", "260 ", "266 ", "272 ", "278 ", "284 ", "296 "};
    QStringList messages = logMessages();
    for (QString& message : messages)
        if (driverLines.contains(message.left(4)) && message.size() > 4)
            message = message.left(4) + "...";
    return messages;
}

class RendererFailureTest : public RendererTest
{
protected:
    void SetUp() override
    {
        RendererTest::SetUp();
        m_mesh.addBox({0, 0, 0}, {10, 20, 5});
    }

    /// Expects null pictures and these lines for a list with a mesh, and the usual ones for an empty list.
    void expectNoPictures(RendererUnderTest& renderer, const QStringList& lines) const
    {
        restartLog();
        EXPECT_TRUE(renderer.render(m_mesh).isNull());
        EXPECT_EQ(logMessages(), lines);
        restartLog();
        EXPECT_TRUE(renderer.render({}, m_mesh.min(), m_mesh.max()).isNull());
        EXPECT_EQ(logMessages(), kEmptyListLines);
    }

    void expectRightPicture(RendererUnderTest& renderer) const
    {
        expectSamePicture(renderer.render(m_mesh), rasterise(m_mesh));
    }

    SampleMesh m_mesh;
};

/// Without OpenGL nothing is compiled: a vertex shader fails, without a message of the compiler.
QStringList noContextLines(Pipeline pipeline)
{
    if (pipeline == Pipeline::Plain)
        return {"278 ", "279  throw ", "115 Builder function failed\tvertexShaderErr"};
    return {"256 ", "260 ", "115 Builder function failed\tvertexShaderErr"};
}

class BothPipelinesTest : public RendererFailureTest, public ::testing::WithParamInterface<Pipeline>
{
};

INSTANTIATE_TEST_SUITE_P(Pipelines, BothPipelinesTest, ::testing::Values(Pipeline::Plain, Pipeline::GeometryShader));

TEST_P(BothPipelinesTest, NoOpenGlAtAll)
{
    if (!isChildProcess()) {
        runCurrentTestInChild({{"QT_QPA_PLATFORM", "minimal"}, {"DISPLAY", {}}});
        return;
    }
    RendererUnderTest renderer(true, GetParam());
    EXPECT_FALSE(renderer.m_valid);
    EXPECT_EQ(renderer.m_context, nullptr);
    EXPECT_EQ(renderer.m_surface, nullptr);
    EXPECT_EQ(renderer.m_functions, nullptr);
    EXPECT_EQ(logMessages(), QStringList("200 opengl version is not valid") + noContextLines(GetParam()));
    expectNoPictures(renderer, {});
}

TEST_P(BothPipelinesTest, NoProbeSurfaceWhileAnotherRendererLives)
{
    RendererUnderTest healthy;
    const SurfaceWatch watch([](QOffscreenSurface& surface, int) { surface.destroy(); });
    {
        RendererUnderTest renderer(true, GetParam());
        EXPECT_FALSE(renderer.m_valid);
        EXPECT_EQ(logMessages(), QStringList("208 opengl surface is not valid") + noContextLines(GetParam()));
        EXPECT_TRUE(healthy.isCurrent());
        expectNoPictures(renderer, {});
    }
    EXPECT_TRUE(healthy.isCurrent());
    expectRightPicture(healthy);
}

/// Makes a context invalid: no OpenGL is available as OpenVG. The first context is the probe's.
void breakContext(std::size_t index)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenVG);
    QOpenGLContext* context = ContextWatch::contexts().at(index);
    context->setFormat(format);
    EXPECT_FALSE(context->create());
}

/// What breaks while a surface is created; the probe's surface is the first one, the render context's the second.
struct BreakCase {
    const char* name;
    int surfaceIndex;
    void (*breakIt)(QOffscreenSurface& surface);
    bool hasContext;
    QStringList firstLines;
    bool reachesShaders;
};

const BreakCase kBreakCases[] = {
    {"NoProbeSurface",
     0,
     [](QOffscreenSurface& surface) { surface.destroy(); },
     false,
     {"208 opengl surface is not valid"},
     true},
    {"ProbeContextIsNotCurrent",
     0,
     [](QOffscreenSurface&) { breakContext(0); },
     true,
     {"46  throw ", "241 not has opengl context", "242  throw ", "115 Builder function failed\topenGLContextErr"},
     false},
    {"NoRenderSurface", 1, [](QOffscreenSurface& surface) { surface.destroy(); }, true, {}, true},
    {"RenderContextIsNotValid", 1, [](QOffscreenSurface&) { breakContext(1); }, true, {}, true},
    {"BothContextsBreak",
     1,
     [](QOffscreenSurface&) {
         breakContext(0);
         breakContext(1);
     },
     true,
     {},
     true},
};

class BrokenContextTest : public RendererFailureTest,
                          public ::testing::WithParamInterface<std::tuple<BreakCase, Pipeline>>
{
};

TEST_P(BrokenContextTest, GivesNoPicturesAndLeavesLaterRenderersAlone)
{
    const auto& [row, pipeline] = GetParam();
    const ContextWatch contexts;
    const SurfaceWatch watch([&row = row](QOffscreenSurface& surface, int index) {
        if (index == row.surfaceIndex)
            row.breakIt(surface);
    });
    RendererUnderTest renderer(true, pipeline);
    EXPECT_FALSE(renderer.m_valid);
    EXPECT_EQ(renderer.m_context != nullptr, row.hasContext);
    EXPECT_EQ(renderer.m_surface != nullptr, row.hasContext);
    EXPECT_EQ(renderer.m_functions != nullptr, row.surfaceIndex == 1);
    EXPECT_EQ(QOpenGLContext::currentContext(), nullptr);
    EXPECT_EQ(logMessages(), row.firstLines + (row.reachesShaders ? noContextLines(pipeline) : QStringList()));
    expectNoPictures(renderer, {});

    // The failed renderer must not draw with the context that a later one makes current.
    RendererUnderTest healthy;
    expectNoPictures(renderer, {});
    EXPECT_TRUE(healthy.isCurrent());
    expectRightPicture(healthy);
}

INSTANTIATE_TEST_SUITE_P(Pipelines, BrokenContextTest,
                         ::testing::Combine(::testing::ValuesIn(kBreakCases),
                                            ::testing::Values(Pipeline::Plain, Pipeline::GeometryShader)),
                         [](const auto& row) {
                             return std::string(std::get<0>(row.param).name) +
                                    (std::get<1>(row.param) == Pipeline::Plain ? "Plain" : "GeometryShader");
                         });

struct StepCase {
    const char* name;
    void (*failStep)(RendererUnderTest& renderer);
    const char* key;
    QStringList lines;
};

class FailedStepTest : public RendererFailureTest, public ::testing::WithParamInterface<StepCase>
{
};

TEST_P(FailedStepTest, LogsAndThrowsItsKey)
{
    const StepCase& row = GetParam();
    RendererUnderTest renderer;
    try {
        row.failStep(renderer);
        ADD_FAILURE() << "no key was thrown";
    } catch (const QString& key) {
        EXPECT_EQ(key, QString(row.key));
    }
    EXPECT_EQ(logMessages(), row.lines);
}

INSTANTIATE_TEST_SUITE_P(Steps, FailedStepTest,
                         ::testing::Values(StepCase{"NoFunctionTable",
                                                    [](RendererUnderTest& renderer) {
                                                        renderer.requireFunctions(nullptr);
                                                    },
                                                    "openFunNotVaild",
                                                    {"238  throw "}},
                                           StepCase{"ProbeWithoutContext",
                                                    [](RendererUnderTest& renderer) {
                                                        renderer.m_context->doneCurrent();
                                                        renderer.probeGlsl();
                                                    },
                                                    "not has opengl context",
                                                    {"46  throw "}},
                                           StepCase{"ProgramCannotBeBound",
                                                    [](RendererUnderTest& renderer) {
                                                        renderer.m_program = std::make_unique<QOpenGLShaderProgram>();
                                                        renderer.bindProgram();
                                                    },
                                                    "shaderBindErr",
                                                    {"302 ", "303  throw "}}),
                         [](const auto& row) { return std::string(row.param.name); });

constexpr char kBroken[] = "#version 130\nthis is not a shader\n";
// Compiles, but its input has another type than the vertex text's output.
constexpr char kOtherInput[] = "#version 130\nin highp vec4 vert;\nout highp vec4 fragColor;\n"
                               "void main() {\n   fragColor = vert;\n}\n";

struct TextCase {
    const char* name;
    Pipeline pipeline;
    const char* ShaderTexts::*changed;
    const char* text;
    QStringList lines;       ///< when each text is compiled as it is added
    QStringList cachedLines; ///< when Qt's cache puts compiling off until the program is linked
};

const QStringList kLinkLines = {"296 ...", "297  throw ", "115 Builder function failed\tshaderLinkErr"};

const TextCase kTextCases[] = {
    {"PlainVertex",
     Pipeline::Plain,
     &ShaderTexts::plainVertex,
     kBroken,
     {"278 ...", "279  throw ", "115 Builder function failed\tvertexShaderErr"},
     kLinkLines},
    {"PlainFragment",
     Pipeline::Plain,
     &ShaderTexts::fragment,
     kBroken,
     {"284 ...", "285  throw ", "115 Builder function failed\tfragmentShaderErr"},
     kLinkLines},
    {"PlainLink", Pipeline::Plain, &ShaderTexts::fragment, kOtherInput, kLinkLines, kLinkLines},
    {"GeometryVertex",
     Pipeline::GeometryShader,
     &ShaderTexts::geometryVertex,
     kBroken,
     {"256 ...", "260 ...", "115 Builder function failed\tvertexShaderErr"},
     kLinkLines},
    {"Geometry",
     Pipeline::GeometryShader,
     &ShaderTexts::geometry,
     kBroken,
     {"266 ...", "267  throw ", "115 Builder function failed\tgeometryShaderErr"},
     kLinkLines},
    {"GeometryFragment",
     Pipeline::GeometryShader,
     &ShaderTexts::fragment,
     kBroken,
     {"272 ...", "273  throw ", "115 Builder function failed\tfragmentShaderErr"},
     kLinkLines},
    {"GeometryLink", Pipeline::GeometryShader, &ShaderTexts::fragment, kOtherInput, kLinkLines, kLinkLines},
};

ShaderTexts changedTexts(const TextCase& row)
{
    ShaderTexts texts = builtInShaderTexts();
    texts.*row.changed = row.text;
    return texts;
}

class ShaderTextFailureTest : public RendererFailureTest, public ::testing::WithParamInterface<TextCase>
{
};

INSTANTIATE_TEST_SUITE_P(Texts, ShaderTextFailureTest, ::testing::ValuesIn(kTextCases),
                         [](const auto& row) { return std::string(row.param.name); });

/// While it lives, Qt compiles each text as it is added, and stores no program.
struct ProgramCacheOff {
    ProgramCacheOff() { QCoreApplication::setAttribute(Qt::AA_DisableShaderDiskCache); }
    ~ProgramCacheOff() { QCoreApplication::setAttribute(Qt::AA_DisableShaderDiskCache, false); }
    ProgramCacheOff(const ProgramCacheOff&) = delete;
    ProgramCacheOff& operator=(const ProgramCacheOff&) = delete;
};

TEST_P(ShaderTextFailureTest, WithoutProgramCache)
{
    const TextCase& row = GetParam();
    const ProgramCacheOff cacheOff;
    RendererUnderTest renderer(true, row.pipeline, changedTexts(row));
    EXPECT_FALSE(renderer.m_valid);
    EXPECT_TRUE(renderer.isCurrent());
    EXPECT_EQ(logWithoutDriverTexts(), row.lines);
    expectNoPictures(renderer, kBufferLines);
    expectNoPictures(renderer, kBufferLines);
}

/// The linked programs that Qt has stored.
QStringList programCacheFiles()
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    QStringList files;
    for (const QString& subfolder : folder.entryList({"qtshadercache*"}, QDir::Dirs))
        files += QDir(folder.filePath(subfolder)).entryList(QDir::Files);
    return files;
}

bool hasProgramCache(const RendererUnderTest& renderer)
{
    GLint formats = 0;
    renderer.m_functions->glGetIntegerv(kProgramBinaryFormatCount, &formats);
    return formats > 0;
}

/// Runs the current test with caches that work, but are its own.
void runCurrentTestWithCache(const QTemporaryDir& cache)
{
    runCurrentTestInChild({{"MESA_SHADER_CACHE_DISABLE", {}}, {"XDG_CACHE_HOME", cache.path().toLocal8Bit()}});
}

TEST_P(ShaderTextFailureTest, WithProgramCache)
{
    if (!isChildProcess()) {
        const QTemporaryDir cache;
        runCurrentTestWithCache(cache);
        return;
    }
    const TextCase& row = GetParam();
    RendererUnderTest renderer(true, row.pipeline, changedTexts(row));
    EXPECT_FALSE(renderer.m_valid);
    EXPECT_EQ(logWithoutDriverTexts(), hasProgramCache(renderer) ? row.cachedLines : row.lines);
    expectNoPictures(renderer, kBufferLines);
}

TEST_F(RendererFailureTest, ProgramComesFromTheCache)
{
    if (!isChildProcess()) {
        const QTemporaryDir cache;
        runCurrentTestWithCache(cache);
        runCurrentTestWithCache(cache);
        return;
    }
    RendererUnderTest renderer;
    EXPECT_TRUE(renderer.m_valid);
    EXPECT_EQ(!programCacheFiles().isEmpty(), hasProgramCache(renderer));
    expectRightPicture(renderer);
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(RendererFailureTest, SecondTryWithoutPositionDeclaration)
{
    ShaderTexts texts = builtInShaderTexts();
    const QByteArray declared =
        QByteArray(texts.geometryVertex).replace("void main() {", "vec4 gl_Position;\nvoid main() {");
    texts.geometryVertex = declared.constData();
    const ProgramCacheOff cacheOff;
    const RendererUnderTest renderer(true, Pipeline::GeometryShader, texts);
    EXPECT_TRUE(renderer.m_valid);
    EXPECT_EQ(logWithoutDriverTexts(), QStringList("256 ..."));
}

TEST_F(RendererFailureTest, InvalidRendererDrawsAndHandsNothingOut)
{
    RendererUnderTest renderer;
    renderer.m_valid = false;
    EXPECT_TRUE(renderer.render(m_mesh).isNull());
    EXPECT_NE(renderer.m_fbo, nullptr);
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(RendererFailureTest, BufferOfAContextThatIsNotCurrent)
{
    RendererUnderTest older;
    RendererUnderTest younger;
    EXPECT_TRUE(younger.isCurrent());
    expectNoPictures(older, kBufferLines);
    EXPECT_TRUE(younger.isCurrent());
    expectRightPicture(younger);
}

TEST_F(RendererFailureTest, NoContextIsCurrent)
{
    RendererUnderTest renderer;
    renderer.m_context->doneCurrent();
    expectNoPictures(renderer, {});
}

TEST_F(RendererFailureTest, DestroyedWhileItsContextIsNotCurrent)
{
    {
        RendererUnderTest renderer;
        expectRightPicture(renderer);
        renderer.m_context->doneCurrent();
    }
    EXPECT_EQ(QOpenGLContext::currentContext(), nullptr);
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(RendererFailureTest, OlderRendererIsDestroyedFirst)
{
    auto older = std::make_unique<RendererUnderTest>();
    expectRightPicture(*older);
    RendererUnderTest younger;
    expectRightPicture(younger);
    older.reset();
    EXPECT_TRUE(younger.isCurrent());
    expectRightPicture(younger);
    EXPECT_EQ(logMessages(), QStringList());
}

TEST_F(RendererFailureTest, YoungerRendererIsDestroyedFirst)
{
    RendererUnderTest older;
    {
        RendererUnderTest younger;
        expectRightPicture(younger);
    }
    EXPECT_EQ(QOpenGLContext::currentContext(), nullptr);
    expectNoPictures(older, {});
}

TEST_F(RendererFailureTest, ManyRenderersLiveAtOnce)
{
    constexpr int kCount = 50;
    const QImage picture = RendererUnderTest().render(m_mesh);
    expectSamePicture(picture, rasterise(m_mesh));
    std::vector<std::unique_ptr<RendererUnderTest>> renderers;
    for (int i = 0; i < kCount; ++i) {
        renderers.push_back(std::make_unique<RendererUnderTest>());
        ASSERT_EQ(renderers.back()->render(m_mesh), picture);
    }
    EXPECT_EQ(logMessages(), QStringList());
}

} // namespace
} // namespace zr::test
