// SPDX-License-Identifier: MIT
// No exception leaves the object, which is the server's own. The extractor is replaced by one that throws: errors such
// as lack of memory cannot be provoked by a file.

#include "request/thumbnail_extractor.h"
#include "tests/shell/server_dll.h"

#include "shell/class_factory.h"
#include "shell/module.h"

#include <functional>
#include <new>

#include <gtest/gtest.h>

#include <shobjidl.h>

namespace zr
{
namespace
{

void (*raise)() = nullptr;

} // namespace

bool ThumbnailExtractor::load(const QString&)
{
    raise();
    return true;
}

QImage ThumbnailExtractor::extract() const
{
    raise();
    return QImage(1, 1, QImage::Format_ARGB32);
}

namespace test
{
namespace
{

struct ErrorRow {
    const char* name;
    void (*raise)();
};

const ErrorRow kErrors[] = {
    {"a call of an empty function", [] { throw std::bad_function_call(); }},
    {"no memory", [] { throw std::bad_alloc(); }},
    {"a key", [] { throw QString("filePrevErr"); }},
    {"anything", [] { throw 1; }},
};

ComPtr<IPersistFile> makeObject()
{
    ComPtr<IPersistFile> object;
    EXPECT_EQ(ClassFactory::instance().CreateInstance(nullptr, IID_PPV_ARGS(object.GetAddressOf())), S_OK);
    return object;
}

TEST(ExceptionsTest, LoadReturnsSFalse)
{
    for (const ErrorRow& row : kErrors) {
        raise = row.raise;
        EXPECT_EQ(makeObject()->Load(L"C:\\a.vrx", STGM_READ), S_FALSE) << row.name;
    }
    raise = [] {};
    EXPECT_EQ(makeObject()->Load(L"C:\\a.vrx", STGM_READ), S_OK);
}

TEST(ExceptionsTest, ExtractReturnsNoBitmap)
{
    ComPtr<IExtractImage> extractor;
    ASSERT_EQ(makeObject().As(&extractor), S_OK);
    for (const ErrorRow& row : kErrors) {
        raise = row.raise;
        auto* bitmap = reinterpret_cast<HBITMAP>(1);
        EXPECT_EQ(extractor->Extract(&bitmap), S_OK) << row.name;
        EXPECT_EQ(bitmap, nullptr) << row.name;
    }
    raise = [] {};
    HBITMAP bitmap = nullptr;
    EXPECT_EQ(extractor->Extract(&bitmap), S_OK);
    EXPECT_NE(bitmap, nullptr);
    DeleteObject(bitmap);
}

} // namespace
} // namespace test
} // namespace zr
