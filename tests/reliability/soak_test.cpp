// SPDX-License-Identifier: MIT
// One process with many requests: the resources that it holds at the end.

#include "core/data_location.h"
#include "core/log_file.h"
#include "readers/mesh/stl_mesh.h"
#include "render/offscreen_renderer.h"
#include "request/thumbnail_extractor.h"
#include "tests/reliability/setting.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/files.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QFileInfo>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include <malloc.h>

namespace zr::test
{
namespace
{

constexpr qint64 kKiB = 1024;

// The mesh of a sample and its renderer, including the OpenGL driver's memory.
constexpr qint64 kMaxKiBPerStl = 12 * kKiB;

// The resources that a process holds.
struct Footprint {
    int handles = 0;
    int threads = 0;
    qint64 heapKiB = 0;     ///< allocated
    qint64 residentKiB = 0; ///< in physical memory
};

int entriesOf(const char* folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size();
}

qint64 residentKiB()
{
    const QList<QByteArray> lines = readFile(QStringLiteral("/proc/self/status")).split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return 0;
}

Footprint footprint()
{
    const auto heap = mallinfo2();
    return {entriesOf("/proc/self/fd"), entriesOf("/proc/self/task"),
            static_cast<qint64>(heap.uordblks + heap.hblkhd) / kKiB, residentKiB()};
}

void print(const char* what, int requests, const Footprint& held)
{
    std::printf("%-24s %6d requests %4d handles %4d threads %8lld KiB allocated %8lld KiB resident\n", what, requests,
                held.handles, held.threads, static_cast<long long>(held.heapKiB),
                static_cast<long long>(held.residentKiB));
    std::fflush(stdout);
}

bool isStl(const QString& name)
{
    return name.endsWith(QLatin1String(".stl"));
}

class SoakTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        restartLog();
        QDir().mkpath(thumbnailImageFolder());
    }

    QString source(const QString& name, const QByteArray& bytes) const
    {
        return writeFile(m_folder.filePath(name), bytes);
    }

    // One request as the COM object and zrthumb make it. True if there is a picture.
    static bool request(const QString& path)
    {
        ThumbnailExtractor extractor;
        try {
            extractor.load(path);
        } catch (const std::exception&) { // a hostile file; extract() still ends the log
        }
        return !extractor.extract().isNull();
    }

    // A damaged copy of the bytes: truncated, overwritten in places or filled with other bytes.
    QByteArray damaged(QByteArray bytes)
    {
        std::uniform_int_distribution<int> place(0, bytes.size() - 1);
        switch (m_random() % 3) {
        case 0:
            return bytes.left(place(m_random));
        case 1:
            for (int i = 0; i < 20; ++i)
                bytes[place(m_random) % 400] = static_cast<char>(m_random());
            return bytes;
        default:
            std::generate(bytes.begin(), bytes.end(), [this] { return static_cast<char>(m_random()); });
            return bytes;
        }
    }

    std::minstd_rand m_random{1};
    QTemporaryDir m_folder;
};

QByteArray binaryStl(int triangles)
{
    QByteArray bytes(80, ' ');
    const auto count = qToLittleEndian(static_cast<quint32>(triangles));
    bytes.append(reinterpret_cast<const char*>(&count), sizeof count);
    for (int i = 0; i < triangles; ++i) {
        const auto x = static_cast<float>(i % 100);
        const auto y = static_cast<float>(i / 100); // NOLINT(bugprone-integer-division): whole rows
        const float values[12] = {0, 0, 1, x, y, 0, x + 1, y, 0, x, y + 1, 1};
        bytes.append(reinterpret_cast<const char*>(values), sizeof values);
        bytes.append(2, '\0');
    }
    return bytes;
}

// The growth caused by requests for one file whose picture is made each time. The first requests fill caches and pools.
Footprint growthBy(const std::function<void()>& oneRequest, int requests)
{
    constexpr int kFirst = 5;
    for (int i = 0; i < kFirst; ++i)
        oneRequest();
    const Footprint before = footprint();
    for (int i = 0; i < requests; ++i)
        oneRequest();
    const Footprint after = footprint();
    return {after.handles - before.handles, after.threads - before.threads, after.heapKiB - before.heapKiB,
            after.residentKiB - before.residentKiB};
}

TEST_F(SoakTest, OnlyStlFilesKeepResources)
{
    const int requests = setting("ZRTHUMB_SOAK_REQUESTS_PER_FORMAT", 6);
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        const QString path = source(sample.name, sample.make());
        const Footprint growth = growthBy(
            [&path] {
                moveTimeStamp(path, 1000);
                EXPECT_TRUE(request(path));
            },
            requests);
        print(sample.name, requests, growth);
        EXPECT_EQ(growth.handles, 0) << sample.name;
        if (!isStl(sample.name)) {
            EXPECT_EQ(growth.threads, 0) << sample.name;
            EXPECT_LT(growth.heapKiB, 100 + requests) << sample.name;
        } else {
            EXPECT_LT(growth.heapKiB, requests * kMaxKiBPerStl) << sample.name;
        }
    }
}

// Keeps an object on purpose, as the STL reader keeps its renderer. Reachable, so that leak checkers do not report it.
template <typename Object>
Object& keep(std::unique_ptr<Object> object)
{
    static auto* const kept = new std::vector<std::unique_ptr<Object>>;
    kept->push_back(std::move(object));
    return *kept->back();
}

void keepContext()
{
    auto& surface = keep(std::make_unique<QOffscreenSurface>());
    surface.create();
    auto& context = keep(std::make_unique<QOpenGLContext>());
    ASSERT_TRUE(context.create());
    ASSERT_TRUE(context.makeCurrent(&surface));
    context.functions()->glClear(GL_COLOR_BUFFER_BIT);
    context.functions()->glFinish();
}

void keepRenderer(const StlMesh& mesh)
{
    const auto [min, max] = mesh.boundingBox();
    auto& renderer = keep(std::make_unique<OffscreenRenderer>(true));
    EXPECT_FALSE(renderer.render(mesh.chunks(), min.data(), max.data()).isNull());
}

TEST_F(SoakTest, StlFilesKeepTheirMeshAndRenderer)
{
    const int requests = setting("ZRTHUMB_SOAK_REQUESTS_PER_FORMAT", 6);
    const Footprint context = growthBy(keepContext, requests);
    print("bare OpenGL context", requests, context);

    constexpr int kTriangles = 20000;
    constexpr qint64 kMeshKiB = qint64{kTriangles} * 18 * static_cast<qint64>(sizeof(float)) / kKiB;
    const QString path = source("triangles.stl", binaryStl(kTriangles));
    StlMesh mesh(ChunkLayout::PositionsAndNormals);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    mesh.parse(file);
    const Footprint renderer = growthBy([&mesh] { keepRenderer(mesh); }, requests);
    print("renderer of 20000", requests, renderer);

    const Footprint stl = growthBy(
        [&path] {
            moveTimeStamp(path, 1000);
            EXPECT_TRUE(request(path));
        },
        requests);
    print("STL file of 20000", requests, stl);
    const auto expected = static_cast<double>(renderer.heapKiB + requests * kMeshKiB);
    EXPECT_NEAR(static_cast<double>(stl.heapKiB), expected, 0.05 * expected);
    EXPECT_LT(context.heapKiB, renderer.heapKiB);
}

TEST_F(SoakTest, RequestsInRandomOrderWithHostileFiles)
{
    const int requests = setting("ZRTHUMB_SOAK_REQUESTS", 120);
    constexpr int kHostilePercent = 10;
    constexpr int kStlPerThousand = 4; // few, since their resources stay on purpose

    std::vector<samples::SampleFile> stlFiles;
    std::vector<samples::SampleFile> otherFiles;
    for (const samples::SampleFile& sample : samples::sampleFiles())
        (isStl(sample.name) ? stlFiles : otherFiles).push_back(sample);
    for (const samples::SampleFile& sample : samples::sampleFiles())
        EXPECT_TRUE(request(source(sample.name, sample.make())));
    const Footprint before = footprint();
    print("each format once", static_cast<int>(samples::sampleFiles().size()), before);

    int hostile = 0;
    int stl = 0;
    int pictures = 0;
    for (int i = 1; i <= requests; ++i) {
        const bool takesStl = static_cast<int>(m_random() % 1000) < kStlPerThousand;
        const auto& files = takesStl ? stlFiles : otherFiles;
        const samples::SampleFile& sample = files[m_random() % files.size()];
        if (static_cast<int>(m_random() % 100) < kHostilePercent) {
            ++hostile;
            stl += takesStl ? 1 : 0;
            const QString path =
                source(QStringLiteral("hostile-%1-%2").arg(i).arg(sample.name), damaged(sample.make()));
            request(path);
            QFile::remove(path);
        } else {
            const QString path = m_folder.filePath(sample.name);
            const bool changed = m_random() % 4 != 0;
            if (changed)
                moveTimeStamp(path, 1000);
            stl += takesStl && changed ? 1 : 0;
            pictures += request(path) ? 1 : 0;
        }
        if (i % 500 == 0)
            print("mixed", i, footprint());
    }
    const Footprint after = footprint();
    print("mixed", requests, after);
    std::printf("%d hostile files, %d STL files read\n", hostile, stl);
    EXPECT_EQ(pictures, requests - hostile);
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_LT(after.heapKiB - before.heapKiB, 1024 + qint64{stl} * kMaxKiBPerStl);
}

} // namespace
} // namespace zr::test
