#include "bus/CommFunctions.h"

#include "bus/BusDiagnosis.h"
#include "bus/Registers.h"

#include "core/Bytes.h"
#include "core/ErrorHandling.h"
#include "platform/Clock.h"
#include "platform/ServiceManager.h"

#include <QStringList>
#include <array>

namespace CommFunctions {

using ErrorHandling::Guard;

namespace {

using Outcome = BusDiagnosis::Outcome;

BusDiagnosis* listener = nullptr;

void AppendWord(QByteArray& frame, quint16 word) {
    frame += char(Bytes::HighByte(word));
    frame += char(Bytes::LowByte(word));
}

QByteArray FrameHead(quint8 module, quint8 function, qint32 registerNo) {
    QByteArray frame;
    frame += char(module);
    frame += char(function);
    AppendWord(frame, quint16(registerNo));
    return frame;
}

constexpr std::array<quint16, 256> MakeCrcTable() {
    std::array<quint16, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte) {
        unsigned crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xA001 : crc >> 1;
        table[byte] = quint16(crc);
    }
    return table;
}

quint16 CrcOf(QByteArrayView bytes) {
    static constexpr std::array<quint16, 256> Table = MakeCrcTable();
    unsigned crc = 0xFFFF;
    for (const char byte : bytes)
        crc = (crc >> 8) ^ Table[(crc ^ quint8(byte)) & 0xFF];
    return quint16(crc);
}

void AppendCrc(QByteArray& frame) {
    const quint16 crc = CrcOf(frame);
    frame += char(Bytes::LowByte(crc));
    frame += char(Bytes::HighByte(crc));
}

quint16 WordAt(const QByteArray& bytes, int offset) {
    return Bytes::MakeWord(quint8(bytes[offset]), quint8(bytes[offset + 1]));
}

/// Without a port, as after bad settings or with its adapter pulled out, nothing is sent and so
/// nothing answers: each poll would tell the operator of it in a box otherwise.
void Send(platform::SerialLink& link, const QByteArray& frame) {
    // What follows one another without the event loop, as a synchronisation does, is alive.
    platform::ServiceManager::Current().Beat();
    platform::Clock::Current().Sleep(FrameGap);
    link.setRTSEnable(true);
    link.ClearBuffers();
    if (link.PortOpen()) {
        link.Output(frame);
        if (listener != nullptr)
            listener->Sent(frame);
    } else if (listener != nullptr) {
        listener->NotSent(quint8(frame[0]));
    }
}

bool CrcIsRight(const QByteArray& reply) {
    const int length = int(reply.size()) - 2;
    const quint16 received = Bytes::MakeWord(quint8(reply[length + 1]), quint8(reply[length]));
    return received == CrcOf(QByteArrayView(reply).first(length));
}

struct Reply {
    QByteArray bytes;   // all that came
    bool whole = false; // as many as expected
    Outcome outcome = Outcome::NoAnswer;

    /// Address and function are those of the frame.
    bool IsTo(const QByteArray& frame) const {
        return whole && bytes[1] == frame[1] && bytes[0] == frame[0];
    }
};

Outcome OutcomeOf(const QByteArray& frame, const Reply& reply) {
    constexpr int ShortestFrame = 4;
    constexpr int ExceptionLength = 5;
    constexpr quint8 ExceptionBit = 0x80;
    const QByteArray& bytes = reply.bytes;
    if (bytes.isEmpty())
        return Outcome::NoAnswer;
    if (bytes.size() < ShortestFrame || !CrcIsRight(bytes))
        return Outcome::BadCrc;
    if (bytes[0] != frame[0])
        return Outcome::OtherAddress;
    if (bytes.size() == ExceptionLength && quint8(bytes[1]) == (quint8(frame[1]) | ExceptionBit))
        return Outcome::Exception;
    return reply.IsTo(frame) ? Outcome::Answered : Outcome::BadCrc;
}

/// The reply to a frame. Of one that isn't whole the bytes are taken only to tell what came.
Reply Receive(platform::SerialLink& link, const QByteArray& frame, int expected, int deadline) {
    Reply reply;
    if (!link.PortOpen())
        return reply;
    link.WaitForInput(expected, platform::Clock::Current().MonotonicMs() + deadline);
    reply.bytes = link.Input();
    reply.whole = reply.bytes.size() == expected;
    reply.outcome = OutcomeOf(frame, reply);
    if (listener != nullptr)
        listener->Replied(reply.outcome, reply.bytes);
    return reply;
}

/// A write and its reply of eight bytes, of which only address and function count.
bool Write(platform::SerialLink& link, QByteArray frame) {
    constexpr int ReplyLength = 8;
    AppendCrc(frame);
    Send(link, frame);
    if (frame[0] == 0)
        return true;
    return Receive(link, frame, ReplyLength, WriteDeadline).IsTo(frame);
}

} // namespace

void ReportTo(BusDiagnosis* diagnosis) {
    listener = diagnosis;
}

int ReadDeadline(int words, int speed) {
    return int(1000 + double(words) * speed * 0.003);
}

qint16 CRC16(const QByteArray& buffer, int length) {
    if (length >= buffer.size() - 1)
        return 1;
    return qint16(CrcOf(QByteArrayView(buffer).first(qMax(0, length))));
}

void WaitForSilence(platform::SerialLink& link) {
    constexpr int Most = 3000;
    // Longer than the pauses of a slow line and of an adapter that hands on in pieces.
    constexpr int Pause = 50;
    Guard("CommFunctions.WaitForSilence", [&] {
        const platform::Clock& clock = platform::Clock::Current();
        const qint64 end = clock.MonotonicMs() + Most;
        while (link.PortOpen() && clock.MonotonicMs() < end) {
            link.ClearBuffers();
            link.WaitForInput(1, clock.MonotonicMs() + Pause);
            if (link.InBufferCount() == 0)
                return;
        }
    });
}

bool LitMots(platform::SerialLink& link, quint8 module, qint32 registerNo, Words& values) {
    bool done = false;
    Guard("CommFunctions.LitMots", [&] {
        const int count = int(values.size());
        QByteArray frame = FrameHead(module, ReadRegisters, registerNo);
        AppendWord(frame, quint16(count));
        AppendCrc(frame);
        Send(link, frame);
        const int speed = Bytes::LongVal(link.Settings().section(u',', 0, 0));
        const Reply reply = Receive(link, frame, 5 + 2 * count, ReadDeadline(count, speed));
        if (reply.outcome != Outcome::Answered)
            return;
        for (int i = 0; i < count; ++i)
            values[i] = qint16(WordAt(reply.bytes, 3 + 2 * i));
        done = true;
    });
    return done;
}

bool EcritMots(platform::SerialLink& link, quint8 module, qint32 registerNo, const Words& values) {
    bool done = false;
    Guard("CommFunctions.EcritMots", [&] {
        QByteArray frame = FrameHead(module, WriteRegisters, registerNo);
        AppendWord(frame, quint16(values.size()));
        frame += char(2 * values.size());
        for (const qint16 value : values)
            AppendWord(frame, quint16(value));
        done = Write(link, frame);
    });
    return done;
}

bool EcritUnMot(platform::SerialLink& link, quint8 module, qint32 registerNo, qint16 value) {
    bool done = false;
    Guard("CommFunctions.EcritUnMot", [&] {
        QByteArray frame = FrameHead(module, WriteRegister, registerNo);
        AppendWord(frame, quint16(value));
        done = Write(link, frame);
    });
    return done;
}

int GetModuleType(platform::SerialLink& link, quint8 module) {
    int type = 0;
    Guard("CommFunctions.GetModuleType", [&] {
        Words word(1);
        if (!LitMots(link, module, Registers::ModelFamily, word))
            return;
        type = word[0] == 1 || word[0] == 2 ? word[0] : 0;
        if (type != 1)
            return;
        if (!LitMots(link, module, Registers::ModelVariant, word))
            type = 3;
        else if (word[0] == 2)
            type = 5;
    });
    return type;
}

} // namespace CommFunctions
