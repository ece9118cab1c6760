// SPDX-License-Identifier: MIT
#include "core/printable.h"

namespace zr
{
namespace
{

bool endsLine(QChar letter)
{
    return letter.category() == QChar::Separator_Line || letter.category() == QChar::Separator_Paragraph;
}

} // namespace

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
