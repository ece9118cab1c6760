// SPDX-License-Identifier: MIT
// A host that is a Qt program: its copy of Qt and the server's are independent.

#include "tests/shell/server_test.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <QApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QTimer>
#include <QWindow>

namespace zr::test
{
namespace
{

class QtHostTest : public ServerTest
{
};

TEST_F(QtHostTest, BothDraw)
{
    QOpenGLContext context;
    QOffscreenSurface surface;
    surface.create();
    ASSERT_TRUE(context.create());
    ASSERT_TRUE(context.makeCurrent(&surface));
    auto* const current = wglGetCurrentContext();
    ASSERT_TRUE(current);

    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        const QImage picture = request(writeSource(sample.name, sample.make()));
        EXPECT_FALSE(picture.isNull()) << sample.name;
        EXPECT_EQ(wglGetCurrentContext(), current) << sample.name;
        EXPECT_EQ(QOpenGLContext::currentContext(), &context) << sample.name;
        // The context still works.
        context.functions()->glClearColor(0.5F, 0.0F, 0.0F, 1.0F);
        EXPECT_EQ(context.functions()->glGetError(), GLenum(GL_NO_ERROR)) << sample.name;
    }
}

TEST_F(QtHostTest, ItsWindowsAndTimersKeepWorking)
{
    QWindow window;
    window.setGeometry(0, 0, 100, 100);
    window.show();
    EXPECT_FALSE(request(writeSource("a.stl", sampleBytes("gear.stl"))).isNull());
    window.setTitle("after");
    bool fired = false;
    QTimer::singleShot(10, &window, [&fired] {
        fired = true;
        QCoreApplication::quit();
    });
    QCoreApplication::exec();
    EXPECT_TRUE(fired);
    EXPECT_TRUE(window.isVisible());
    EXPECT_NE(QCoreApplication::arguments().first(), "platformplugin") << "the application object is still the host's";
}

} // namespace
} // namespace zr::test
