#include "platform/WaveFile.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <cmath>

namespace platform {

namespace {

constexpr int Pcm = 1;
constexpr int Float = 3;
/// The kind stands further behind, at the head of a GUID.
constexpr int Extensible = 0xFFFE;
constexpr qsizetype SubFormat = 24;
constexpr qsizetype PlainFormat = 16;
constexpr int MostKept = 2;
/// Under it, of 32768, a sample is taken for silence.
constexpr int Faintest = 128;

struct Format {
    int kind = 0;
    int channels = 0;
    int rate = 0;
    int bits = 0;
    int FrameSize() const { return channels * bits / 8; }
};

template <class Number> Number At(const QByteArray& bytes, qsizetype place) {
    return qFromLittleEndian<Number>(bytes.constData() + place);
}

/// Nothing for a format that can't be read.
std::optional<Format> ReadFormat(const QByteArray& chunk) {
    if (chunk.size() < PlainFormat)
        return std::nullopt;
    Format format{At<quint16>(chunk, 0), At<quint16>(chunk, 2),
                  int(qMin(At<quint32>(chunk, 4), 1'000'000U)), At<quint16>(chunk, 14)};
    if (format.kind == Extensible && chunk.size() >= SubFormat + 2)
        format.kind = At<quint16>(chunk, SubFormat);
    const bool known =
        (format.kind == Pcm && format.bits % 8 == 0 && format.bits >= 8 && format.bits <= 32) ||
        (format.kind == Float && format.bits == 32);
    const bool playable = format.channels >= 1 && format.channels <= 32 && format.rate >= 1000 &&
                          format.rate <= 192'000 && At<quint16>(chunk, 12) == format.FrameSize();
    return known && playable ? std::optional(format) : std::nullopt;
}

qint16 SampleAt(const char* place, const Format& format) {
    if (format.kind == Float) {
        const auto value = qFromLittleEndian<float>(place);
        return std::isfinite(value) ? qint16(std::clamp(value, -1.0F, 1.0F) * 32767.0F) : qint16(0);
    }
    // 8 bits alone count from 0; of wider ones the upper two bytes stand last.
    if (format.bits == 8)
        return qint16((quint8(*place) - 128) * 256);
    return qFromLittleEndian<qint16>(place + format.bits / 8 - 2);
}

Wave Convert(const QByteArray& data, const Format& format) {
    const qsizetype frames = data.size() / format.FrameSize();
    Wave wave{format.rate, qMin(format.channels, MostKept), {}};
    wave.samples.reserve(size_t(frames * wave.channels));
    for (qsizetype frame = 0; frame < frames; ++frame) {
        const char* place = data.constData() + frame * format.FrameSize();
        for (int channel = 0; channel < wave.channels; ++channel)
            wave.samples.push_back(SampleAt(place + channel * format.bits / 8, format));
    }
    return wave;
}

} // namespace

std::optional<Wave> ReadWave(const QByteArray& bytes) {
    constexpr qsizetype Head = 12;
    constexpr qsizetype ChunkHead = 8;
    if (bytes.size() < Head || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE")
        return std::nullopt;
    std::optional<Format> format;
    for (qsizetype place = Head; place + ChunkHead <= bytes.size();) {
        const QByteArray name = bytes.mid(place, 4);
        const qsizetype size = At<quint32>(bytes, place + 4);
        place += ChunkHead;
        if (size > bytes.size() - place)
            return std::nullopt;
        const QByteArray chunk = bytes.mid(place, size);
        if (name == "fmt ")
            format = ReadFormat(chunk);
        if (name == "data") {
            if (!format || size < format->FrameSize())
                return std::nullopt;
            return Convert(chunk, *format);
        }
        place += size + size % 2;
    }
    return std::nullopt;
}

bool IsAudible(const Wave& wave) {
    if (wave.samples.empty())
        return false;
    // A constant is as silent as zero.
    const auto [low, high] = std::minmax_element(wave.samples.begin(), wave.samples.end());
    return *high - *low >= 2 * Faintest;
}

Wave Beep() {
    constexpr int Rate = 22050;
    // Whole periods of both tones fit into half a second, so nothing clicks.
    constexpr std::array<double, 2> Tones{880, 660};
    constexpr double Loudness = 0.6 * 32767;
    constexpr double TwoPi = 6.283185307179586;
    Wave wave{Rate, 1, {}};
    for (const double tone : Tones) {
        for (int i = 0; i < Rate / 2; ++i)
            wave.samples.push_back(qint16(Loudness * std::sin(TwoPi * tone * i / Rate)));
    }
    return wave;
}

} // namespace platform
