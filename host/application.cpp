// SPDX-License-Identifier: MIT
#include "host/application.h"

#include <QGuiApplication>

namespace zr
{
namespace
{

template <typename Application>
void makeIfNone()
{
    static int argc = 1;
    static char name[] = "zrthumb";
    static char* argv[] = {name, nullptr};
    static auto* const application = QCoreApplication::startingUp() ? new Application(argc, argv) : nullptr;
    Q_UNUSED(application)
}

} // namespace

void makePlainApplication()
{
    makeIfNone<QCoreApplication>();
}

void makeDrawingApplication()
{
    makeIfNone<QGuiApplication>();
}

} // namespace zr
