// SPDX-License-Identifier: MIT
#include "host/console.h"

#include "host/platform.h"

#include <cerrno>

namespace zr
{
namespace
{

QString fault;

// Uses errno, so it has to come right after the failed call.
void noteFault()
{
    if (fault.isEmpty())
        fault = qt_error_string(errno);
}

bool endsLine(QChar letter)
{
    return letter.category() == QChar::Separator_Line || letter.category() == QChar::Separator_Paragraph;
}

} // namespace

void printText(std::FILE* stream, const QString& text)
{
    if (!writeText(stream, text) && stream == stdout)
        noteFault();
}

void printLine(std::FILE* stream, const QString& text)
{
    printText(stream, text + QLatin1Char('\n'));
}

QString writeStdout(const QByteArray& bytes)
{
    makeStdoutBinary();
    const auto size = static_cast<std::size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, size, stdout) == size && std::fflush(stdout) == 0)
        return {};
    return qt_error_string(errno);
}

QString stdoutFault()
{
    return fault;
}

QString printable(QString text)
{
    QChar* const letters = text.data();
    for (int i = 0; i < text.size(); ++i) {
        const bool isPair = QChar::isHighSurrogate(letters[i].unicode()) && i + 1 < text.size() &&
                            QChar::isLowSurrogate(letters[i + 1].unicode());
        if (isPair && QChar::isPrint(QChar::surrogateToUcs4(letters[i], letters[i + 1])))
            ++i;
        else if (isPair || !letters[i].isPrint() || endsLine(letters[i]))
            letters[i] = QLatin1Char('?');
    }
    return text;
}

} // namespace zr
