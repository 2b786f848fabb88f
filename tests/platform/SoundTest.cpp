// Which sound plays, and that it goes on playing. Here there is no sound server, and the device is
// a file.

#include "platform/Sound.h"
#include "platform/TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>
#include <gmock/gmock.h>

using namespace platform;
using ::testing::ElementsAre;

namespace {

template <class Number> QByteArray Bytes(std::initializer_list<Number> numbers) {
    QByteArray bytes;
    for (const Number number : numbers) {
        const auto place = bytes.size();
        bytes.resize(place + qsizetype(sizeof(Number)));
        qToLittleEndian(number, bytes.data() + place);
    }
    return bytes;
}

QByteArray Chunk(const QByteArray& name, const QByteArray& content) {
    return name + Bytes({quint32(content.size())}) + content + QByteArray(content.size() % 2, '\0');
}

QByteArray Riff(const QByteArray& chunks) {
    return Chunk("RIFF", "WAVE" + chunks);
}

QByteArray Format(int kind, int channels, int bits, int rate = 8000) {
    const int frame = channels * bits / 8;
    return Bytes({quint16(kind), quint16(channels)}) +
           Bytes({quint32(rate), quint32(rate) * quint32(frame)}) +
           Bytes({quint16(frame), quint16(bits)});
}

QByteArray WaveOf(const QByteArray& format, const QByteArray& data) {
    return Riff(Chunk("fmt ", format) + Chunk("LIST", "odd") + Chunk("data", data));
}

/// A rectangle of 16 bits.
QByteArray Tone(qint16 height, int frames = 800) {
    QByteArray data;
    for (int i = 0; i < frames; ++i)
        data += Bytes({qint16(i % 20 < 10 ? height : -height)});
    return WaveOf(Format(1, 1, 16), data);
}

int Height(const SoundChoice& choice) {
    return *std::max_element(choice.wave.samples.begin(), choice.wave.samples.end());
}

std::vector<qint16> Samples(const QByteArray& bytes) {
    const std::optional<Wave> wave = ReadWave(bytes);
    return wave ? wave->samples : std::vector<qint16>();
}

class SoundTest : public ::testing::Test {
protected:
    SoundTest() {
        qputenv("PULSE_SERVER", "unix:" + Path("none").toUtf8());
        qputenv("ALSA_CONFIG_PATH", Path("alsa.conf").toUtf8());
        SetDevice(true);
    }
    ~SoundTest() override {
        qunsetenv("PULSE_SERVER");
        qunsetenv("ALSA_CONFIG_PATH");
    }

    QString Path(const char* name) const { return folder_.filePath(Text(name)); }

    /// What is played goes into the file "heard".
    void SetDevice(bool isThere) const {
        PutBytes(Path("alsa.conf"), isThere ? "pcm.!default { type file format raw slave.pcm "
                                              "{ type null } file \"" +
                                                  Path("heard").toUtf8() + "\" }\n"
                                            : QByteArray("# no device\n"));
    }

    QTemporaryDir folder_;
};

} // namespace

TEST_F(SoundTest, WavesOfAllWidthsAreRead) {
    EXPECT_THAT(Samples(WaveOf(Format(1, 1, 8), QByteArray("\x80\xFF\x00", 3))),
                ElementsAre(0, 127 * 256, -32768));
    EXPECT_THAT(Samples(WaveOf(Format(1, 2, 16), Bytes<qint16>({1, -2, 300, -400}))),
                ElementsAre(1, -2, 300, -400));
    EXPECT_THAT(Samples(WaveOf(Format(1, 1, 24), QByteArray("\x99\x02\x01\x99\xFE\xFF", 6))),
                ElementsAre(0x102, -2));
    EXPECT_THAT(Samples(WaveOf(Format(3, 1, 32), Bytes<float>({1, -0.5F, 7, float(qQNaN())}))),
                ElementsAre(32767, -16383, 32767, 0));
    // Of more channels than two the first two, and the kind at the head of the GUID.
    EXPECT_THAT(Samples(WaveOf(Format(0xFFFE, 3, 16) + QByteArray(8, '\0') + Bytes<quint16>({1}) +
                                   QByteArray(14, '\0'),
                               Bytes<qint16>({1, 2, 3, 4, 5, 6}))),
                ElementsAre(1, 2, 4, 5));
}

TEST_F(SoundTest, WhatIsNoWholeWaveIsRefused) {
    const QByteArray good = Tone(9000);
    ASSERT_TRUE(ReadWave(good));
    EXPECT_TRUE(IsAudible(*ReadWave(good)));
    for (const qsizetype size : {0, 3, 12, 20, 36, 60, int(good.size()) - 1})
        EXPECT_FALSE(ReadWave(good.left(size))) << size;
    const QByteArray samples(64, '\x55');
    for (const QByteArray& bad :
         {QByteArray(5000, 'x'), "X" + good.mid(1), good.left(8) + "X" + good.mid(9),
          Riff(Chunk("fmt ", Format(1, 1, 16))), Riff(Chunk("data", samples)),
          WaveOf(Format(1, 1, 16), QByteArray()), WaveOf(Format(85, 1, 16), samples),
          WaveOf(Format(1, 0, 16), samples), WaveOf(Format(1, 1, 12), samples),
          WaveOf(Format(1, 1, 16, 0), samples), WaveOf(Format(1, 1, 16, 2'000'000'000), samples),
          WaveOf(Format(1, 1, 16).left(12), samples)})
        EXPECT_FALSE(ReadWave(bad)) << bad.left(60).toHex().toStdString();
    EXPECT_FALSE(IsAudible(*ReadWave(Tone(20))));
    EXPECT_FALSE(IsAudible(*ReadWave(WaveOf(Format(1, 1, 16), samples)))) << "a constant";
}

TEST_F(SoundTest, TheBestSoundThereIsPlays) {
    const QString wanted = Path("AlarmSound5.wav");
    const auto choose = [&](const QByteArray& reserve) {
        return ChooseSound(wanted, [&] { return reserve; });
    };
    EXPECT_EQ(choose({}).standIn, Text("BEEP"));
    EXPECT_TRUE(IsAudible(choose({}).wave));
    EXPECT_EQ(ChooseSound(wanted, nullptr).standIn, Text("BEEP"));

    PutBytes(Path("AlarmSound1.wav"), "RIFF");
    PutBytes(Path("AlarmSound2.wav"), Tone(0));
    PutBytes(Path("AlarmSound3.wav"), Tone(3000));
    EXPECT_EQ(choose("no wave").standIn, Text("AlarmSound3.wav"));
    EXPECT_EQ(Height(choose("no wave")), 3000);

    EXPECT_EQ(choose(Tone(4000)).standIn, Text("BASE"));
    EXPECT_EQ(Height(choose(Tone(4000))), 4000);

    PutBytes(wanted, Tone(0));
    EXPECT_EQ(Height(choose(Tone(4000))), 4000) << "a silent file is no alarm";
    EXPECT_EQ(choose(Tone(0)).standIn, QString()) << "silence is what it is to be";
    EXPECT_EQ(Height(choose(Tone(0))), 0);

    PutBytes(wanted, Tone(5000));
    EXPECT_EQ(choose(Tone(4000)).standIn, QString());
    EXPECT_EQ(Height(choose(Tone(4000))), 5000);
}

TEST_F(SoundTest, LoopsOnTheDeviceUntilStopped) {
    QStringList replaced;
    const auto sound = MakeSound({nullptr, [&](const QString& file, const QString& standIn) {
                                      replaced += file + u' ' + standIn;
                                  }});
    PutBytes(Path("AlarmSound5.wav"), Tone(5000));
    sound->Stop();
    sound->StartLooped(Path("AlarmSound5"), nullptr);
    EXPECT_EQ(replaced, QStringList());
    const QByteArray once = Tone(5000).right(1600);
    ASSERT_TRUE(Until([&] { return BytesOf(Path("heard")).size() > 10 * once.size(); }));
    EXPECT_EQ(BytesOf(Path("heard")).left(10 * once.size()), once.repeated(10));

    sound->StartLooped(Path("AlarmSound6.WAV"), [] { return Tone(6000); });
    EXPECT_EQ(replaced, TextList({"AlarmSound6.WAV BASE"}));
    const QByteArray other = Tone(6000).right(1600);
    ASSERT_TRUE(Until([&] { return BytesOf(Path("heard")).startsWith(other); }));

    sound->Stop();
    qint64 before = -1;
    EXPECT_TRUE(Until([&] {
        QThread::msleep(300);
        return std::exchange(before, BytesOf(Path("heard")).size()) == before;
    }));
}

TEST_F(SoundTest, ASilenceIsToldOnceAndItsEnd) {
    SetDevice(false);
    QList<bool> told;
    const auto sound = MakeSound({[&](bool canBeHeard) { told += canBeHeard; }, nullptr});
    sound->StartLooped(Path("AlarmSound5"), nullptr);
    EXPECT_EQ(told, QList<bool>());
    ASSERT_TRUE(Until([&] { return !told.isEmpty(); }));
    sound->StartLooped(Path("AlarmSound6"), nullptr);
    sound->Stop();
    sound->StartLooped(Path("AlarmSound7"), nullptr);
    for (int i = 0; i < 50; ++i) {
        QCoreApplication::processEvents();
        QThread::msleep(10);
    }
    EXPECT_THAT(told, ElementsAre(false)) << "nothing has changed";
    SetDevice(true);
    ASSERT_TRUE(Until([&] { return told.size() > 1; }));
    EXPECT_THAT(told, ElementsAre(false, true));
    EXPECT_FALSE(BytesOf(Path("heard")).isEmpty());
}
