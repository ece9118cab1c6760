// SPDX-License-Identifier: MIT
#include "host/check/mime_types.h"

#include "host/check/key_file.h"
#include "host/check/thumbnailers.h"

#include <QSet>

#include <algorithm>

namespace zr
{
namespace
{

// A system full of programs has less than a tenth of it.
constexpr qint64 kMaxDatabaseBytes = 1 << 22;

using Types = QHash<QString, QVector<TypeOfSuffix>>;

// Reads the lines WEIGHT:TYPE:PATTERN[:FLAGS] of one database after the other, the most important first.
class GlobReader
{
public:
    explicit GlobReader(const QStringList& suffixes) : m_suffixes(suffixes) {}

    void read(const QString& folder)
    {
        m_folder = folder;
        const QByteArray bytes = readBeginning(folder + QLatin1String("/globs2"), kMaxDatabaseBytes).value_or("");
        QSet<QString> closed;
        for (const QByteArray& line : bytes.split('\n')) {
            const QList<QByteArray> fields = line.split(':');
            if (line.startsWith('#') || fields.size() < 3)
                continue;
            const QString type = QString::fromUtf8(fields[1]);
            if (m_closed.contains(type))
                continue;
            // Less important databases have no say about this type.
            if (fields[2] == "__NOGLOBS__")
                closed += type;
            else
                add(fields[0].toInt(), type, QString::fromUtf8(fields[2]));
        }
        m_closed += closed;
    }

    const Types& types() const { return m_types; }

private:
    void add(int weight, const QString& type, const QString& pattern)
    {
        if (!pattern.startsWith(QLatin1String("*.")) || !m_suffixes.contains(pattern.mid(2)))
            return;
        QVector<TypeOfSuffix>& types = m_types[pattern.mid(2)];
        const auto isLighter = [weight](const TypeOfSuffix& other) { return other.weight < weight; };
        types.insert(std::find_if(types.begin(), types.end(), isLighter), {weight, type, m_folder});
    }

    QStringList m_suffixes;
    QString m_folder;
    QSet<QString> m_closed;
    Types m_types;
};

} // namespace

Types typesOfSuffixes(const QStringList& suffixes)
{
    GlobReader reader(suffixes);
    for (const QString& folder : dataFolders())
        reader.read(folder + QLatin1String("/mime"));
    return reader.types();
}

} // namespace zr
