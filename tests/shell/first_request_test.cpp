// SPDX-License-Identifier: MIT
// Qt starts once per process, so this program has one test.

#include "tests/shell/server_test.h"
#include "tests/support/qt_printers.h"

#include <QCoreApplication>

#include <objbase.h>

namespace zr::test
{
namespace
{

class FirstRequestTest : public ServerTest
{
};

TEST_F(FirstRequestTest, StartsQtOnceAndKeepsTheServerLoaded)
{
    const QString source = writeSource("a.vrx", sampleBytes("rook.vrx"));
    auto object = m_server.make<IPersistFile>();

    EXPECT_EQ(load(object, source), S_OK);
    EXPECT_TRUE(QCoreApplication::startingUp()) << "the server has its own Qt";
    EXPECT_FALSE(extract(object).isNull());
    EXPECT_EQ(logMessages(), QStringList({"37 in 2 " + source, "61 app start", "63 app after", "84  throw "}));

    restartLog();
    EXPECT_EQ(load(object, source), S_OK);
    EXPECT_FALSE(request(source).isNull());
    const QStringList hit = {"37 in 2 " + source, "63 app after"};
    EXPECT_EQ(logMessages(), hit + hit);

    // Windows calls into the application object, which the server keeps in memory.
    object.Reset();
    EXPECT_EQ(m_server.canUnloadNow(), S_OK);
    FreeLibrary(GetModuleHandleW(L"ZRThumbnail.dll"));
    CoFreeUnusedLibraries();
    ASSERT_TRUE(ServerDll::isLoaded());
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    EXPECT_FALSE(request(source).isNull());
}

} // namespace
} // namespace zr::test
