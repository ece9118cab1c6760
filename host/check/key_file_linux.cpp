// SPDX-License-Identifier: MIT
#include "host/check/key_file.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zr
{
namespace
{

constexpr qint64 kMaxKeyFileBytes = 1 << 16;

char unescaped(char letter)
{
    switch (letter) {
    case 's':
        return ' ';
    case 'n':
        return '\n';
    case 't':
        return '\t';
    case 'r':
        return '\r';
    default:
        return letter;
    }
}

// The parts of a value between the separators, without its escapes. No byte is '\0' in a path or a type.
QList<QByteArray> parts(const QByteArray& value, char separator)
{
    QList<QByteArray> all = {QByteArray()};
    for (int i = 0; i < value.size(); ++i) {
        if (value[i] == '\\' && i + 1 < value.size())
            all.last() += unescaped(value[++i]);
        else if (value[i] == separator)
            all += QByteArray();
        else
            all.last() += value[i];
    }
    return all;
}

// Reads lines one after the other.
class KeyFileParser
{
public:
    explicit KeyFileParser(const QByteArray& group) : m_wanted(group) {}

    // False when the line belongs to nothing.
    bool take(const QByteArray& line)
    {
        if (line.isEmpty() || line.startsWith('#'))
            return true;
        if (line.startsWith('[') && line.endsWith(']')) {
            m_hasGroup = true;
            m_isWanted = line == '[' + m_wanted + ']';
            m_isFound = m_isFound || m_isWanted;
            return true;
        }
        const int sign = line.indexOf('=');
        if (sign <= 0 || !m_hasGroup)
            return false;
        if (m_isWanted)
            m_found.insert(line.left(sign).trimmed(), line.mid(sign + 1).trimmed());
        return true;
    }

    std::optional<KeyFileGroup> found() const
    {
        return m_isFound ? std::optional<KeyFileGroup>(m_found) : std::nullopt;
    }

private:
    QByteArray m_wanted;
    bool m_hasGroup = false;
    bool m_isWanted = false;
    bool m_isFound = false;
    KeyFileGroup m_found;
};

} // namespace

std::optional<QByteArray> readBeginning(const QString& path, qint64 maxBytes)
{
    // Does not wait for a pipe's other end.
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor == -1)
        return std::nullopt;
    QFile file;
    struct stat status = {};
    if (!file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)) {
        close(descriptor);
        return std::nullopt;
    }
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    QByteArray bytes = file.read(maxBytes);
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    return bytes;
}

std::optional<KeyFileGroup> readKeyFile(const QString& path, const QByteArray& group)
{
    const std::optional<QByteArray> bytes = readBeginning(path, kMaxKeyFileBytes);
    if (!bytes)
        return std::nullopt;
    QList<QByteArray> lines = bytes->split('\n');
    // The last one may be cut.
    if (bytes->size() == kMaxKeyFileBytes && lines.size() > 1)
        lines.removeLast();
    KeyFileParser parser(group);
    for (const QByteArray& line : qAsConst(lines)) {
        if (!parser.take(line.trimmed()))
            return std::nullopt;
    }
    return parser.found();
}

QString keyFileText(const QByteArray& value)
{
    return QString::fromUtf8(parts(value, '\0').first());
}

QStringList keyFileList(const QByteArray& value)
{
    QStringList texts;
    for (const QByteArray& part : parts(value, ';'))
        texts += QString::fromUtf8(part);
    texts.removeAll(QString());
    return texts;
}

} // namespace zr
