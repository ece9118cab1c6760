#include "host/console.h"

namespace zr
{

void printLine(std::FILE* stream, const QString& text)
{
    std::fputs((text + QLatin1Char('\n')).toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

QString printable(QString text)
{
    for (QChar& character : text) {
        if (!character.isPrint() && !character.isSurrogate())
            character = QLatin1Char('?');
    }
    return text;
}

} // namespace zr
