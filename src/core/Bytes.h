#pragma once

#include <QString>
#include <algorithm>
#include <cstdint>

/// Byte, hexadecimal and numeric helpers.
namespace Bytes {

constexpr quint8 HighByte(quint16 word) {
    return quint8(word >> 8);
}
constexpr quint8 LowByte(quint16 word) {
    return quint8(word & 0xFF);
}
constexpr quint16 MakeWord(quint8 high, quint8 low) {
    return quint16((high << 8) | low);
}

/// `digits` upper-case hexadecimal digits of the low end of `value`.
inline QString Hex(quint32 value, int digits) {
    static constexpr char16_t Digits[] = u"0123456789ABCDEF";
    QString text(digits, u'0');
    for (int i = digits - 1; i >= 0; --i, value >>= 4)
        text[i] = QChar(Digits[value & 0xF]);
    return text;
}
inline QString Hex2(int value) {
    return Hex(quint32(value), 2);
}
inline QString Hex4(int value) {
    return Hex(quint32(value), 4);
}
inline QString Hex8(qint32 value) {
    return Hex(quint32(value), 8);
}

/// A number with zeros in front, as wide as `digits` or wider.
inline QString Padded(qint64 value, int digits) {
    return value < 0 ? u'-' + QString::number(-value).rightJustified(digits, u'0')
                     : QString::number(value).rightJustified(digits, u'0');
}

template <class T> constexpr T Greater(T a, T b) {
    return std::max(a, b);
}
template <class T> constexpr T Less(T a, T b) {
    return std::min(a, b);
}
template <class T> constexpr T Limit(T value, T low, T high) {
    return std::min(std::max(value, low), high);
}

/// Reads the number at the head of a text and ignores what follows, 0 when there is none.
double Val(const QString& text);
/// The same as a 16-bit number, limited to its range.
qint16 ShortVal(const QString& text);
/// The same as a 32-bit number, limited to its range.
qint32 LongVal(const QString& text);

} // namespace Bytes
