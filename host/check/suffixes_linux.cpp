// SPDX-License-Identifier: MIT
#include "host/check/desktops.h"

#include "host/check/mime_types.h"
#include "readers/reader_table.h"

#include <QFileInfo>

#include <algorithm>

namespace zr
{
namespace
{

const QString kOurTypes = QStringLiteral("mime/packages/zrthumb.xml");

// How the desktop learns the types of our files.
QString howToTeachTypes()
{
    const QString definitions = filesOfData(kOurTypes).value(0);
    if (definitions.isEmpty())
        return QStringLiteral("install the packages shared-mime-info and zrthumb again");
    return QStringLiteral("type '%1update-mime-database %2'")
        .arg(isOfUser(definitions) ? QString() : QStringLiteral("sudo "),
             QFileInfo(QFileInfo(definitions).path()).path());
}

// The thumbnailers of each suffix.
class SuffixCheck
{
public:
    explicit SuffixCheck(const QVector<Thumbnailer>& thumbnailers)
        : m_thumbnailers(thumbnailers), m_types(typesOfSuffixes(supportedSuffixes()))
    {
    }

    Finding check(const QString& suffix) const
    {
        const QString what = QLatin1Char('.') + suffix;
        const QVector<TypeOfSuffix> types = m_types.value(suffix);
        if (types.isEmpty())
            return {
                Verdict::Fail, what,
                QStringLiteral("has no type here, so no program is asked for thumbnails: %1").arg(howToTeachTypes())};
        const QStringList ours = heaviestOfOurs(types);
        if (ours.isEmpty())
            return {Verdict::Fail, what, describeOtherType(types)};
        Finding finding = {Verdict::Ok, what, QStringLiteral("ZRThumbnail makes the thumbnails")};
        for (const QString& type : ours) {
            const Finding next = checkType(what, type);
            if (next.verdict != Verdict::Ok && finding.verdict != Verdict::Fail)
                finding = next;
        }
        return finding;
    }

private:
    bool isOurs(const QString& type) const
    {
        return std::any_of(m_thumbnailers.cbegin(), m_thumbnailers.cend(),
                           [&](const Thumbnailer& each) { return each.isOurs() && each.types.contains(type); });
    }

    QStringList heaviestOfOurs(const QVector<TypeOfSuffix>& types) const
    {
        QStringList ours;
        for (const TypeOfSuffix& each : types) {
            if (each.weight == types.first().weight && isOurs(each.type))
                ours += each.type;
        }
        return ours;
    }

    // Either our types are not in the database, or another package's definition outweighs them.
    QString describeOtherType(const QVector<TypeOfSuffix>& types) const
    {
        const bool isDefined =
            std::any_of(types.cbegin(), types.cend(), [&](const TypeOfSuffix& each) { return isOurs(each.type); });
        const QString remedy =
            isDefined ? QStringLiteral("remove the file that says so from %1/packages").arg(types.first().folder)
                      : howToTeachTypes();
        return QStringLiteral("is taken for another type, %1, so ZRThumbnail is not asked for thumbnails: %2")
            .arg(types.first().type, remedy);
    }

    Finding checkType(const QString& what, const QString& type) const
    {
        const auto firstThat = [&](bool isOurs) {
            return std::find_if(m_thumbnailers.cbegin(), m_thumbnailers.cend(), [&](const Thumbnailer& each) {
                return each.isOurs() == isOurs && each.types.contains(type);
            });
        };
        const Thumbnailer* const other = firstThat(false);
        if (other == m_thumbnailers.cend())
            return {Verdict::Ok, what, QString()};
        const Thumbnailer* const ours = firstThat(true);
        if (other < ours)
            return {Verdict::Fail, what,
                    QStringLiteral("another program makes the thumbnails, %1, by %2: %3")
                        .arg(other->program, other->path, remedy(*other, *ours))};
        return {
            Verdict::Note, what,
            QStringLiteral("ZRThumbnail makes the thumbnails; another program is registered, too, %1, by %2: if its "
                           "pictures show, %3")
                .arg(other->program, other->path, remedy(*other, *ours))};
    }

    // What is in the user's folder comes first, whatever its name.
    static QString remedy(const Thumbnailer& other, const Thumbnailer& ours)
    {
        if (isOfUser(other.path))
            return QStringLiteral("delete that file");
        if (isOfUser(ours.path))
            return QStringLiteral("remove its package");
        return QStringLiteral("remove its package, or copy %1 to %2/thumbnailers")
            .arg(ours.path, dataFolders().value(0));
    }

    QVector<Thumbnailer> m_thumbnailers;
    QHash<QString, QVector<TypeOfSuffix>> m_types;
};

} // namespace

Findings checkSuffixes(const QVector<Thumbnailer>& thumbnailers)
{
    const SuffixCheck check(thumbnailers);
    Findings findings;
    for (const QString& suffix : supportedSuffixes())
        findings += check.check(suffix);
    return findings;
}

} // namespace zr
