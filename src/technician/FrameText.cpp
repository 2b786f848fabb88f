#include "technician/FrameText.h"

#include "bus/CommFunctions.h"
#include "core/Bytes.h"
#include "core/Config.h"

#include <QStringList>

namespace FrameText {

namespace {

enum Texts { AddressWord = 850020, FunctionWord, RegisterWord, CountWord, BadCrcWord, Refusal };

/// Modbus: set in the function of a reply that refuses.
constexpr int ExceptionBit = 0x80;
constexpr int ShortestFrame = 4;
constexpr int CrcLength = 2;

int ByteAt(const QByteArray& bytes, qsizetype at) {
    return quint8(bytes[at]);
}

int WordAt(const QByteArray& bytes, qsizetype at) {
    return ByteAt(bytes, at) << 8 | ByteAt(bytes, at + 1);
}

bool IsRight(const QByteArray& bytes) {
    if (bytes.size() < ShortestFrame)
        return false;
    const auto crc = quint16(CommFunctions::CRC16(bytes, int(bytes.size()) - CrcLength));
    return bytes.endsWith(QByteArray(1, char(Bytes::LowByte(crc))) + char(Bytes::HighByte(crc)));
}

QString Named(int word, int value) {
    return GetText(word) + u' ' + QString::number(value);
}

/// The words of a payload from an offset up to its CRC.
QString WordsFrom(const QByteArray& bytes, qsizetype at) {
    QStringList words;
    for (; at + 1 < bytes.size() - CrcLength; at += 2)
        words += QString::number(WordAt(bytes, at));
    return QStringLiteral("= ") + words.join(u' ');
}

QStringList Request(const QByteArray& bytes) {
    const QString first = Named(RegisterWord, WordAt(bytes, 2));
    switch (ByteAt(bytes, 1)) {
    case CommFunctions::ReadRegisters:
        return {first, Named(CountWord, WordAt(bytes, 4))};
    case CommFunctions::WriteRegister:
        return {first, WordsFrom(bytes, 4)};
    default:
        return {first, Named(CountWord, WordAt(bytes, 4)), WordsFrom(bytes, 7)};
    }
}

QStringList Reply(const QByteArray& bytes, int askedRegister) {
    constexpr qsizetype WriteReply = 8;
    constexpr qsizetype ReadOverhead = 5;
    const int function = ByteAt(bytes, 1);
    if ((function & ExceptionBit) != 0)
        return {Named(Refusal, ByteAt(bytes, 2))};
    if (function == CommFunctions::ReadRegisters &&
        bytes.size() == ReadOverhead + ByteAt(bytes, 2)) {
        const QString words = WordsFrom(bytes, 3);
        return askedRegister < 0 ? QStringList{words}
                                 : QStringList{Named(RegisterWord, askedRegister), words};
    }
    if (function == CommFunctions::WriteRegister && bytes.size() == WriteReply)
        return {Named(RegisterWord, WordAt(bytes, 2)), WordsFrom(bytes, 4)};
    if (function == CommFunctions::WriteRegisters && bytes.size() == WriteReply)
        return {Named(RegisterWord, WordAt(bytes, 2)), Named(CountWord, WordAt(bytes, 4))};
    return {};
}

} // namespace

TracedFrame Traced(const BusDiagnosis& diagnosis, quint64 number) {
    constexpr int RequestLength = 8;
    TracedFrame traced;
    traced.frame = diagnosis.FrameAt(number);
    traced.time = diagnosis.TimeOf(traced.frame);
    if (traced.frame.direction != BusDiagnosis::Direction::Received ||
        number == diagnosis.FirstFrame())
        return traced;
    const BusDiagnosis::Frame& asked = diagnosis.FrameAt(number - 1);
    const QByteArray bytes = asked.Bytes();
    if (asked.direction == BusDiagnosis::Direction::Sent && bytes.size() == RequestLength &&
        ByteAt(bytes, 1) == CommFunctions::ReadRegisters)
        traced.askedRegister = WordAt(bytes, 2);
    return traced;
}

QString Time(const TracedFrame& traced) {
    return DateTimes::TimeOf(traced.time).toString(QStringLiteral("HH:mm:ss.zzz"));
}

QString Direction(const TracedFrame& traced) {
    const bool sent = traced.frame.direction == BusDiagnosis::Direction::Sent;
    return sent ? QStringLiteral("TX") : QStringLiteral("RX");
}

QString Hex(const TracedFrame& traced) {
    QString hex = QString::fromLatin1(traced.frame.Bytes().toHex(' ').toUpper());
    if (traced.frame.length > BusDiagnosis::FrameSize)
        hex += QStringLiteral(" ...");
    return hex;
}

QString Decoded(const TracedFrame& traced) {
    const QByteArray bytes = traced.frame.Bytes();
    if (!IsRight(bytes))
        return GetText(BadCrcWord);
    const int function = ByteAt(bytes, 1) & ~ExceptionBit;
    const QStringList head{Named(AddressWord, ByteAt(bytes, 0)), Named(FunctionWord, function)};
    const bool sent = traced.frame.direction == BusDiagnosis::Direction::Sent;
    return (head + (sent ? Request(bytes) : Reply(bytes, traced.askedRegister)))
        .join(QStringLiteral("  "));
}

} // namespace FrameText
