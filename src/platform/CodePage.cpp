#include "platform/CodePage.h"

#include <algorithm>
#include <array>

namespace platform {

namespace {

constexpr int FirstOwnCode = 0x80;
constexpr int FirstLatinCode = 0xA0;

// Codes 80 to 9F; all others stand for the character of the same number.
constexpr std::array<char16_t, 32> OwnCharacters = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char ToByte(char16_t character) {
    if (character < FirstOwnCode || (character >= FirstLatinCode && character <= 0xFF))
        return char(character);
    const auto* found = std::find(OwnCharacters.begin(), OwnCharacters.end(), character);
    return found == OwnCharacters.end() ? '?'
                                        : char(FirstOwnCode + (found - OwnCharacters.begin()));
}

} // namespace

QString FromCodePage(const QByteArray& bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    std::transform(bytes.begin(), bytes.end(), text.begin(), [](char byte) {
        const auto code = static_cast<unsigned char>(byte);
        const bool own = code >= FirstOwnCode && code < FirstLatinCode;
        return QChar(own ? OwnCharacters[code - FirstOwnCode] : char16_t(code));
    });
    return text;
}

QByteArray ToCodePage(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        bytes.append(ToByte(text[i].unicode()));
        // A pair of surrogates is one character and gives one "?".
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
    }
    return bytes;
}

bool FitsCodePage(const QString& text) {
    return FromCodePage(ToCodePage(text)) == text;
}

QString WithoutForeign(QString text) {
    return text.removeIf([](QChar character) { return !FitsCodePage(QString(character)); });
}

} // namespace platform
