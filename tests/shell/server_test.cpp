// SPDX-License-Identifier: MIT
#include "tests/shell/server_test.h"

#include "host/bitmap_to_image.h"
#include "tests/support/files.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QFileInfo>

#include <atomic>

namespace zr::test
{
namespace
{

// Whether this process has made a request, with which Qt started.
std::atomic<bool> hasLoaded{false};

} // namespace

QByteArray sampleBytes(const char* name)
{
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        if (qstrcmp(sample.name, name) == 0)
            return sample.make();
    }
    ADD_FAILURE() << "there is no sample " << name;
    return {};
}

void ServerTest::SetUp()
{
    DataFolderTest::SetUp();
    createDataFolder();
}

// The log is open from Load to Extract, and a folder with an open file cannot be removed.
void ServerTest::TearDown()
{
    if (hasLoaded)
        extract(m_server.make<IPersistFile>());
    EXPECT_EQ(m_server.canUnloadNow(), S_OK);
    DataFolderTest::TearDown();
}

QString ServerTest::writeSource(const QString& name, const QByteArray& bytes) const
{
    const QString path = m_folder.filePath(name);
    EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    return QDir::toNativeSeparators(writeFile(path, bytes));
}

HRESULT ServerTest::load(const ComPtr<IPersistFile>& object, const QString& path)
{
    hasLoaded = true;
    return object->Load(reinterpret_cast<LPCOLESTR>(path.utf16()), STGM_READ);
}

QImage ServerTest::extract(const ComPtr<IPersistFile>& object)
{
    ComPtr<IExtractImage> extractor;
    EXPECT_EQ(object.As(&extractor), S_OK);
    auto* bitmap = reinterpret_cast<HBITMAP>(1);
    EXPECT_EQ(extractor->Extract(&bitmap), S_OK);
    if (!bitmap)
        return {};
    QImage image = bitmapToImage(bitmap);
    EXPECT_FALSE(image.isNull());
    EXPECT_TRUE(DeleteObject(bitmap));
    return image;
}

QImage ServerTest::request(const QString& path) const
{
    const auto object = m_server.make<IPersistFile>();
    EXPECT_EQ(load(object, path), S_OK);
    return extract(object);
}

QString ServerTest::inCodePage(const QString& text)
{
    return QString::fromLocal8Bit(text.toLocal8Bit());
}

} // namespace zr::test
