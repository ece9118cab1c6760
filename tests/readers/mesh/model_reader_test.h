// SPDX-License-Identifier: MIT
#pragma once

#include "tests/readers/mesh/logged_test.h"
#include "tests/readers/mesh/mesh_files.h"
#include "tests/render/sample_meshes.h"
#include "tests/support/qt_printers.h"
#include "tests/support/software_rasteriser.h"

#include <QImage>

namespace zr::test
{

/// Solids of many sizes and places, thin ones, and one that is seen from its inside.
const std::vector<SampleSolid>& modelCases();

/// For parameterised tests.
inline std::string caseName(const ::testing::TestParamInfo<SampleSolid>& test)
{
    return test.param.name;
}

/// The triangles of a mesh with normals.
std::vector<Triangle> trianglesOf(const SampleMesh& mesh);

/// A reader whose file the test can look at.
template <typename Reader>
class OpenModel final : public Reader
{
public:
    using Reader::Reader;
    QFile& file() { return Reader::m_file; }
};

/// Tests of one model reader.
class ModelReaderTest : public LoggedTest
{
protected:
    /// The picture of a file with this content; the log holds what the reader wrote.
    template <typename Reader>
    QImage pictureOf(const QByteArray& content)
    {
        const SourceFile source(content);
        restartLog();
        OpenModel<Reader> reader(source.path());
        QImage picture = reader.getImage();
        EXPECT_FALSE(reader.file().isOpen());
        return picture;
    }

    /// A file that cannot be opened, and a folder: `log` is all that the reader writes.
    template <typename Reader>
    void expectOpenFailures(const QStringList& log)
    {
        const QTemporaryDir folder;
        for (const QString& path : {folder.filePath("missing"), folder.path()}) {
            restartLog();
            OpenModel<Reader> reader(path);
            EXPECT_TRUE(reader.getImage().isNull());
            EXPECT_FALSE(reader.file().isOpen());
            EXPECT_EQ(logMessages(), log);
        }
    }
};

} // namespace zr::test
