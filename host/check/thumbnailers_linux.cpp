// SPDX-License-Identifier: MIT
#include "host/check/thumbnailers.h"

#include "host/check/key_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <iterator>
#include <optional>

namespace zr
{
namespace
{

// The first word of a command line as shells read it.
QString firstWord(const QString& command)
{
    QString word;
    QChar quote;
    for (int i = 0; i < command.size(); ++i) {
        const QChar letter = command[i];
        if (letter == QLatin1Char('\\') && quote != QLatin1Char('\'') && i + 1 < command.size())
            word += command[++i];
        else if (quote.isNull() && (letter == QLatin1Char('"') || letter == QLatin1Char('\'')))
            quote = letter;
        else if (letter == quote)
            quote = QChar();
        else if (quote.isNull() && letter.isSpace())
            break;
        else
            word += letter;
    }
    return word;
}

// Nothing when the desktops do not use the file either. They pay no regard to its TryExec.
std::optional<Thumbnailer> readThumbnailer(const QString& path)
{
    const auto group = readKeyFile(path, "Thumbnailer Entry");
    if (!group || !group->contains("Exec") || !group->contains("MimeType"))
        return std::nullopt;
    return Thumbnailer{path, firstWord(keyFileText(group->value("Exec")).trimmed()),
                       keyFileList(group->value("MimeType"))};
}

// Whether GNOME's sandbox has the file's folder.
bool isOfSystem(const QString& path)
{
    const QString roots[] = {QStringLiteral("/usr/"), QStringLiteral("/bin/"), QStringLiteral("/sbin/")};
    return std::any_of(std::begin(roots), std::end(roots), [&](const QString& root) { return path.startsWith(root); });
}

} // namespace

bool Thumbnailer::isOurs() const
{
    return QFileInfo(program).fileName() == QLatin1String("zrthumbnailer");
}

QStringList dataFolders()
{
    QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
    for (QString& folder : folders)
        folder = QDir::cleanPath(folder);
    folders.removeDuplicates();
    return folders;
}

bool isOfUser(const QString& path)
{
    return path.startsWith(dataFolders().value(0) + QLatin1Char('/'));
}

QStringList filesOfData(const QString& name)
{
    QStringList files;
    for (const QString& folder : dataFolders()) {
        const QString path = folder + QLatin1Char('/') + name;
        if (QFileInfo::exists(path) || QFileInfo(path).isSymLink())
            files += path;
    }
    return files;
}

QVector<Thumbnailer> registeredThumbnailers()
{
    QVector<Thumbnailer> thumbnailers;
    for (const QString& folder : dataFolders()) {
        // Not sorted, since the desktops take the files as they come.
        const QDir files(folder + QLatin1String("/thumbnailers"), QStringLiteral("*.thumbnailer"), QDir::Unsorted,
                         QDir::Files | QDir::Hidden | QDir::CaseSensitive);
        for (const QString& name : files.entryList()) {
            if (const auto thumbnailer = readThumbnailer(files.filePath(name)))
                thumbnailers += *thumbnailer;
        }
    }
    return thumbnailers;
}

bool isSeenByGnome(const QString& program)
{
    QStringList folders = {QFileInfo(program).path()};
    if (!program.contains(QLatin1Char('/')))
        folders = QFile::decodeName(qgetenv("PATH")).split(QLatin1Char(':'), Qt::SkipEmptyParts);
    const QString name = QFileInfo(program).fileName();
    return std::any_of(folders.cbegin(), folders.cend(), [&](const QString& folder) {
        const QString path = folder + QLatin1Char('/') + name;
        return isOfSystem(QDir::cleanPath(path)) && isOfSystem(QFileInfo(path).canonicalFilePath()) &&
               !QStandardPaths::findExecutable(path).isEmpty();
    });
}

} // namespace zr
