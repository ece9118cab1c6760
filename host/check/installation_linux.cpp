// SPDX-License-Identifier: MIT
#include "host/check/installation.h"

#include "host/check/desktops.h"

#include <QFile>
#include <QLibraryInfo>
#include <QStandardPaths>

#include <algorithm>

namespace zr
{
namespace
{

const QString kThumbnailer = QStringLiteral("thumbnailer");

// The files of our name in the folders of data, the one that counts first.
class Registration
{
public:
    Registration() : m_files(filesOfData(QStringLiteral("thumbnailers/zrthumb.thumbnailer"))) {}

    bool isMissing() const { return m_files.isEmpty(); }

    Findings check() const
    {
        const QVector<Thumbnailer> thumbnailers = registeredThumbnailers();
        Findings findings;
        for (const QString& path : m_files) {
            const Thumbnailer* const registered = std::find_if(
                thumbnailers.cbegin(), thumbnailers.cend(), [&](const Thumbnailer& each) { return each.path == path; });
            if (registered == thumbnailers.cend()) {
                findings += fault(path, QStringLiteral("is damaged or cannot be read"));
            } else if (!registered->isOurs()) {
                findings += fault(path, QStringLiteral("runs %1 and not zrthumbnailer").arg(registered->program));
            } else {
                findings += checkProgram(*registered);
                return findings.last().verdict == Verdict::Fail ? findings : findings + checkSuffixes(thumbnailers);
            }
        }
        return findings;
    }

private:
    Finding checkProgram(const Thumbnailer& ours) const
    {
        const QString found = QStandardPaths::findExecutable(ours.program);
        if (found.isEmpty())
            return fault(ours.path,
                         QStringLiteral("runs %1, which is not %2")
                             .arg(ours.program, ours.program.contains(QLatin1Char('/')) ? QStringLiteral("there")
                                                                                        : QStringLiteral("in PATH")));
        if (!isSeenByGnome(ours.program))
            return {Verdict::Note, kThumbnailer,
                    QStringLiteral("%1 runs %2, which GNOME does not see, since it is not below /usr: for GNOME, "
                                   "install the package zrthumb")
                        .arg(ours.path, found)};
        return {Verdict::Ok, kThumbnailer, QStringLiteral("%1 runs %2").arg(ours.path, found)};
    }

    // With what to do about the file.
    Finding fault(const QString& path, const QString& what) const
    {
        QString remedy = QStringLiteral("install the package zrthumb again");
        if (isOfUser(path))
            remedy = m_files.size() > 1 ? QStringLiteral("delete it")
                                        : QStringLiteral("delete it, and install the package zrthumb");
        return {Verdict::Fail, kThumbnailer, QStringLiteral("%1 %2: %3").arg(path, what, remedy)};
    }

    QStringList m_files;
};

// As Qt looks for them. QCoreApplication has a list as well, but one that stays as it is once asked for.
QStringList pluginFolders()
{
    QStringList folders = QFile::decodeName(qgetenv("QT_PLUGIN_PATH")).split(QLatin1Char(':'), Qt::SkipEmptyParts);
    folders += QLibraryInfo::location(QLibraryInfo::PluginsPath);
    return folders;
}

} // namespace

Findings checkInstallation()
{
    const Registration registration;
    if (registration.isMissing())
        return {{Verdict::Note, kThumbnailer,
                 QStringLiteral("zrthumb.thumbnailer is in none of the folders of data, so no file manager shows "
                                "thumbnails: install the package zrthumb")}};
    Findings findings = registration.check();
    findings += checkKde(pluginFolders());
    return findings;
}

} // namespace zr
