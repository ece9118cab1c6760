#include "host/progress.h"

#include "host/platform.h"

#include <cstdio>

namespace zr
{
namespace
{

constexpr int kFewFiles = 3;
constexpr int kMaxNameLength = 40;

} // namespace

Progress::Progress(int total, bool quiet) : m_total(total), m_shown(!quiet && total > kFewFiles && stderrIsTerminal())
{
}

void Progress::show(int done, const QString& name, int failures) const
{
    if (!m_shown)
        return;
    QString line = QStringLiteral("\r[%1/%2] %3").arg(done).arg(m_total).arg(name.left(kMaxNameLength));
    if (failures > 0)
        line += QStringLiteral(" (%1 failed)").arg(failures);
    std::fputs((line + QLatin1String("\x1b[K")).toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
}

void Progress::clear() const
{
    if (!m_shown)
        return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
}

} // namespace zr
