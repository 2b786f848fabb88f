#include "bus/CommFunctions.h"
#include "fuzz/Targets.h"
#include "fuzz/support/Bench.h"
#include "fuzz/support/Reply.h"

#include <algorithm>

using Fuzz::Require;

namespace {

constexpr int MaxWords = 125;

/// A link that notes what it gave last.
struct Line {
    explicit Line(Input& input) {
        link.setSettings(input.Text(input.Byte() & 15));
        link.setPortOpen((input.Byte() & 15) != 0);
        link.answer = [this, &input](const QByteArray& frame) {
            const int length = int(frame.size()) - 2;
            const auto crc = quint16(CommFunctions::CRC16(frame, length));
            Require(quint8(frame[length]) == (crc & 0xFF) && quint8(frame[length + 1]) == crc >> 8,
                    "a frame ends with its CRC");
            return last = Fuzz::ReplyTo(frame, input);
        };
    }
    bool FitsLast(int size, quint8 module, quint8 function) const {
        return last.size() == size && quint8(last[0]) == module && quint8(last[1]) == function;
    }

    FakeLink link;
    QByteArray last;
};

void Read(Input& input, Line& line) {
    const quint8 module = input.Byte();
    const qint32 registerNo = input.Word();
    const int count = input.Byte() % (MaxWords + 1);
    constexpr qint16 Mark = 0x5A5A;
    Words words(count, Mark);
    if (!LitMots(line.link, module, registerNo, words)) {
        Require(words == Words(count, Mark), "a read that fails leaves the values");
        return;
    }
    Require(line.FitsLast(5 + 2 * count, module, CommFunctions::ReadRegisters),
            "a read that succeeds had a whole reply of the module");
    Require(words.size() == count, "a read gives as many words as it was asked for");
    for (int i = 0; i < count; ++i) {
        const int high = quint8(line.last[3 + 2 * i]);
        const int low = quint8(line.last[4 + 2 * i]);
        Require(words[i] == qint16(quint16(high << 8 | low)), "words are the reply's");
    }
}

void Write(Input& input, Line& line) {
    const quint8 module = input.Byte();
    const qint32 registerNo = input.Word();
    const int count = input.Byte() % (MaxWords + 1);
    bool done = false;
    const quint8 function =
        count == 1 ? CommFunctions::WriteRegister : CommFunctions::WriteRegisters;
    if (count == 1) {
        done = EcritUnMot(line.link, module, registerNo, qint16(input.Word()));
    } else {
        Words words;
        for (int i = 0; i < count; ++i)
            words += qint16(input.Word());
        done = EcritMots(line.link, module, registerNo, words);
    }
    Require(module != 0 || done, "a broadcast succeeds");
    Require(module == 0 || !done || line.FitsLast(8, module, function),
            "a write that succeeds had a whole reply of the module");
}

} // namespace

int FuzzExchange(const uint8_t* data, size_t size) {
    Fuzz::Prepare();
    Input input(data, size);
    Line line(input);
    do {
        line.link.sent.clear();
        line.last.clear();
        switch (input.Byte() & 3) {
        case 0:
        case 1:
            Read(input, line);
            break;
        case 2:
            Write(input, line);
            break;
        default:
            const int type = GetModuleType(line.link, input.Byte());
            Require(type >= 0 && type <= 5 && type != 4, "a type is one of the models");
            Require(line.link.sent.size() <= 2, "a type costs two frames at most");
        }
    } while (!input.IsEmpty());
    return 0;
}
