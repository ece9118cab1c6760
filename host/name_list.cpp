// SPDX-License-Identifier: MIT
#include "host/name_list.h"

#include "core/printable.h"
#include "host/output_file.h"
#include "host/platform.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace zr
{
namespace
{

constexpr qint64 kBlockBytes = 1 << 16;

// More than any system's paths have; what is longer is no list of names.
constexpr int kMaxNameBytes = 1 << 17;

// Splits blocks of bytes into names.
class NameSplitter
{
public:
    NameSplitter(char separator, const std::function<void(const QString&)>& onName)
        : m_separator(separator), m_onName(onName)
    {
    }

    /// Takes the next bytes. False when a name is too long.
    bool add(const QByteArray& block)
    {
        int start = 0;
        for (int end = block.indexOf(m_separator); end >= 0; end = block.indexOf(m_separator, start)) {
            m_name += QByteArray::fromRawData(block.constData() + start, end - start);
            endName();
            start = end + 1;
        }
        m_name += QByteArray::fromRawData(block.constData() + start, block.size() - start);
        return m_name.size() <= kMaxNameBytes;
    }

    /// The last name needs no separator.
    void endName()
    {
        // Lines of a file from Windows end with two bytes.
        if (m_separator == '\n' && isWindowsText() && m_name.endsWith('\r'))
            m_name.chop(1);
        if (!m_name.isEmpty())
            m_onName(fileNameFromBytes(m_name));
        m_name.clear();
    }

private:
    static bool isWindowsText() { return QDir::separator() == QLatin1Char('\\'); }

    const char m_separator;
    const std::function<void(const QString&)>& m_onName;
    QByteArray m_name;
};

// Qt on Windows takes the end of a pipe for an error.
QByteArray readStdin()
{
    QByteArray block(static_cast<int>(kBlockBytes), Qt::Uninitialized);
    block.truncate(static_cast<int>(std::fread(block.data(), 1, static_cast<std::size_t>(kBlockBytes), stdin)));
    return block;
}

QString opened(QFile& file, const QString& path)
{
    if (QFileInfo(path).isDir())
        return QStringLiteral("it is a folder");
    file.setFileName(path);
    return file.open(QIODevice::ReadOnly) ? QString() : file.errorString();
}

// Takes the mark of an encoding from the start of a list of lines. False when that is UTF-16. Lists with zero bytes
// come from programs, and may begin with a name that begins so.
bool takeMark(QByteArray& block)
{
    if (block.startsWith("\xEF\xBB\xBF"))
        block.remove(0, 3);
    return !block.startsWith("\xFF\xFE") && !block.startsWith("\xFE\xFF");
}

} // namespace

QString readNames(const QString& path, char separator, const std::function<void(const QString&)>& onName)
{
    const auto fault = [&path](const QString& reason) {
        return QLatin1String("--files-from ") + printable(path) + QLatin1String(": ") + reason;
    };
    const bool isStdin = path == QLatin1String(kStdoutName);
    if (isStdin)
        makeStdinBinary();
    QFile file;
    const QString reason = isStdin ? QString() : opened(file, path);
    if (!reason.isEmpty())
        return fault(reason);
    const auto readBlock = [&] { return isStdin ? readStdin() : file.read(kBlockBytes); };
    NameSplitter names(separator, onName);
    bool isFirst = true;
    for (QByteArray block = readBlock(); !block.isEmpty(); block = readBlock()) {
        if (isFirst && separator == '\n' && !takeMark(block))
            return fault(QStringLiteral("its names are in UTF-16; save them as UTF-8"));
        isFirst = false;
        if (separator != '\0' && block.contains('\0'))
            return fault(QStringLiteral("its names end with zero bytes: add -0"));
        if (!names.add(block))
            return fault(QStringLiteral("this is not a list of names, or they do not end as -0 says"));
    }
    if (file.error() != QFileDevice::NoError)
        return fault(file.errorString());
    if (isStdin && std::ferror(stdin) != 0)
        return fault(QStringLiteral("it cannot be read"));
    names.endName();
    return {};
}

} // namespace zr
