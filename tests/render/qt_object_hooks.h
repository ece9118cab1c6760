// SPDX-License-Identifier: MIT
#pragma once

#include <QOpenGLContext>

#include <functional>
#include <vector>

class QOffscreenSurface;

namespace zr::test
{

/// While it lives, knows each OpenGL context that the process has made since. Qt reports each QObject to the hooks
/// that its debugging tools use.
class ContextWatch
{
public:
    ContextWatch();
    ~ContextWatch();
    ContextWatch(const ContextWatch&) = delete;
    ContextWatch& operator=(const ContextWatch&) = delete;

    /// In the order in which they were made.
    static std::vector<QOpenGLContext*> contexts();
};

/// While it lives, calls `action` each time that an offscreen surface has just been created, before its creator sees
/// whether it is valid; `index` counts them from 0.
class SurfaceWatch : public QObject
{
public:
    using Action = std::function<void(QOffscreenSurface& surface, int index)>;

    explicit SurfaceWatch(Action action);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Action m_action;
    int m_count = 0;
};

} // namespace zr::test
