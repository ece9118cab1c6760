// SPDX-License-Identifier: MIT
#include "host/name_codec.h"

#include <QTextCodec>

#include <cstring>

#include <langinfo.h>

namespace zr
{
namespace
{

constexpr ushort kFirstOfBytes = 0xDC00;
constexpr ushort kLeastByte = 0x80; // the others are characters

// The number of bytes that the lead byte promises; 0 when no character begins with it.
int lengthAfter(uchar lead)
{
    if (lead < 0x80)
        return 1;
    return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 0;
}

// Appends the character at `at` and returns its length in bytes; a byte that is not part of any counts as one.
int appendNext(QString& text, const char* at, int left)
{
    const auto lead = static_cast<uchar>(*at);
    const int length = lengthAfter(lead);
    if (length > 0 && length <= left) {
        // A mark at the start of a text is dropped, but not within one.
        const QString character = QString::fromUtf8(QByteArray("-") + QByteArray(at, length)).mid(1);
        if (character.toUtf8() == QByteArray::fromRawData(at, length)) {
            text += character;
            return length;
        }
    }
    text += QChar(static_cast<ushort>(kFirstOfBytes + lead));
    return 1;
}

bool isByte(QChar letter)
{
    return letter.unicode() >= kFirstOfBytes + kLeastByte && letter.unicode() <= kFirstOfBytes + 0xFF;
}

class NameCodec final : public QTextCodec
{
public:
    QByteArray name() const override { return "zrthumb-names"; }
    int mibEnum() const override { return -1; }

protected:
    QString convertToUnicode(const char* bytes, int length, ConverterState*) const override
    {
        const QByteArray whole = QByteArray::fromRawData(bytes, length);
        QString text = QString::fromUtf8(whole);
        if (text.toUtf8() == whole)
            return text;
        text.clear();
        for (int i = 0; i < length;)
            i += appendNext(text, bytes + i, length - i);
        return text;
    }

    QByteArray convertFromUnicode(const QChar* letters, int length, ConverterState*) const override
    {
        const QString text = QString::fromRawData(letters, length);
        QByteArray bytes;
        int start = 0;
        for (int i = 0; i < length; ++i) {
            const bool isPair = letters[i].isHighSurrogate() && i + 1 < length && letters[i + 1].isLowSurrogate();
            if (isPair)
                ++i;
            else if (isByte(letters[i])) {
                bytes += text.midRef(start, i - start).toUtf8();
                bytes += static_cast<char>(letters[i].unicode() - kFirstOfBytes);
                start = i + 1;
            }
        }
        return start == 0 ? text.toUtf8() : bytes + text.midRef(start).toUtf8();
    }
};

} // namespace

void keepNamesThatAreNotText()
{
    const char* const codeset = nl_langinfo(CODESET);
    // "C" has this one, and Qt would lose all of its names that are more than ASCII.
    const bool isAscii = std::strcmp(codeset, "ANSI_X3.4-1968") == 0;
    if (!isAscii && std::strcmp(codeset, "UTF-8") != 0)
        return;
    // Qt owns it.
    static auto* const codec = new NameCodec;
    QTextCodec::setCodecForLocale(codec);
}

} // namespace zr
