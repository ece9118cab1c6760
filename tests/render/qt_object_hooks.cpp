// SPDX-License-Identifier: MIT
#include "tests/render/qt_object_hooks.h"

#include <QCoreApplication>
#include <QOffscreenSurface>
#include <QPlatformSurfaceEvent>

#include <algorithm>
#include <mutex>

// Qt's hook table, which its debugging tools link against in the same way; indices 3 and 4 have been those of
// made and destroyed objects since Qt 5.3.
QT_BEGIN_NAMESPACE
extern Q_CORE_EXPORT quintptr qtHookData[];
QT_END_NAMESPACE

namespace zr::test
{
namespace
{

constexpr int kAddObjectHook = 3;
constexpr int kRemoveObjectHook = 4;

struct LiveObjects {
    std::mutex mutex;
    std::vector<QObject*> objects;
};

LiveObjects& liveObjects()
{
    static LiveObjects live;
    return live;
}

void onObjectMade(QObject* object)
{
    const std::lock_guard<std::mutex> guard(liveObjects().mutex);
    liveObjects().objects.push_back(object);
}

void onObjectDestroyed(QObject* object)
{
    const std::lock_guard<std::mutex> guard(liveObjects().mutex);
    auto& objects = liveObjects().objects;
    objects.erase(std::remove(objects.begin(), objects.end(), object), objects.end());
}

} // namespace

ContextWatch::ContextWatch()
{
    qtHookData[kAddObjectHook] = reinterpret_cast<quintptr>(&onObjectMade);
    qtHookData[kRemoveObjectHook] = reinterpret_cast<quintptr>(&onObjectDestroyed);
}

ContextWatch::~ContextWatch()
{
    qtHookData[kAddObjectHook] = 0;
    qtHookData[kRemoveObjectHook] = 0;
    const std::lock_guard<std::mutex> guard(liveObjects().mutex);
    liveObjects().objects.clear();
}

std::vector<QOpenGLContext*> ContextWatch::contexts()
{
    const std::lock_guard<std::mutex> guard(liveObjects().mutex);
    std::vector<QOpenGLContext*> contexts;
    for (QObject* object : liveObjects().objects)
        if (auto* context = qobject_cast<QOpenGLContext*>(object))
            contexts.push_back(context);
    return contexts;
}

SurfaceWatch::SurfaceWatch(Action action) : m_action(std::move(action))
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool SurfaceWatch::eventFilter(QObject* watched, QEvent* event)
{
    auto* surface = qobject_cast<QOffscreenSurface*>(watched);
    const bool isCreation =
        surface && event->type() == QEvent::PlatformSurface &&
        static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() == QPlatformSurfaceEvent::SurfaceCreated;
    if (isCreation)
        m_action(*surface, m_count++);
    return false;
}

} // namespace zr::test
