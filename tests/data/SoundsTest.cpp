// The alarm sounds: plain PCM that any back-end plays, looping without a click.

#include "BaseReader.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtEndian>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

struct WaveFile {
    bool valid = false;
    quint32 rate = 0;
    QList<qint16> samples;
};

/// Reads a .wav of one format chunk and one data chunk; `valid` is false for any other layout or
/// for anything but 16-bit mono.
WaveFile ParseWave(const QByteArray& bytes) {
    WaveFile wave;
    const auto* data = bytes.constData();
    const auto word = [data](int at) { return qFromLittleEndian<quint16>(data + at); };
    const auto longWord = [data](int at) { return qFromLittleEndian<quint32>(data + at); };
    if (bytes.size() < 44 || bytes.mid(0, 4) != "RIFF" || bytes.mid(8, 8) != "WAVEfmt " ||
        bytes.mid(36, 4) != "data") {
        return wave;
    }
    wave.rate = longWord(24);
    constexpr quint16 Pcm = 1, Mono = 1, Bits = 16;
    const auto length = longWord(40);
    wave.valid = longWord(4) == quint32(bytes.size() - 8) && word(20) == Pcm && word(22) == Mono &&
                 word(34) == Bits && longWord(28) == wave.rate * 2 &&
                 length == quint32(bytes.size() - 44);
    for (quint32 i = 0; wave.valid && i + 1 < length; i += 2) {
        wave.samples.append(qint16(word(int(44 + i))));
    }
    return wave;
}

QByteArray Content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(Sounds, ArePcmThatIsHeardAndLoopsWithoutAClick) {
    BaseReader base;
    const auto rows = base.Query("SELECT ID, Size, Content, Extension FROM T_Sounds ORDER BY ID");
    EXPECT_GE(rows.size(), 9);
    QSet<QByteArray> contents;
    for (int number = 0; number < rows.size(); ++number) {
        SCOPED_TRACE(number);
        const QVariantList& row = rows[number];
        EXPECT_EQ(row[0].toInt(), number) << "sounds are stepped through without gaps";
        const QByteArray bytes = row[2].toByteArray();
        contents += bytes;
        EXPECT_EQ(bytes, Content(DataFolder + QStringLiteral("/sounds/%1.wav").arg(number)));
        EXPECT_EQ(row[1].toLongLong(), bytes.size());
        EXPECT_EQ(row[3].toString(), "wav");
        const WaveFile wave = ParseWave(bytes);
        ASSERT_TRUE(wave.valid);
        const double seconds = double(wave.samples.size()) / wave.rate;
        EXPECT_TRUE(seconds >= 1 && seconds <= 3) << seconds;
        EXPECT_LT(bytes.size(), 150 * 1024);
        // Value and slope are zero on both sides of the seam.
        EXPECT_EQ(wave.samples.first(), 0);
        EXPECT_EQ(wave.samples.last(), 0);
        EXPECT_LT(std::abs(wave.samples[1]), 64);
        EXPECT_LT(std::abs(wave.samples[wave.samples.size() - 2]), 64);
        const auto [low, high] = std::minmax_element(wave.samples.begin(), wave.samples.end());
        if (number == 0) {
            EXPECT_TRUE(*low == 0 && *high == 0) << "number 0 is silent";
        } else {
            EXPECT_TRUE(*low < -8000 && *high > 8000) << *low << ' ' << *high;
        }
    }
    EXPECT_EQ(contents.size(), rows.size()) << "two sound alike";
}

TEST(Sounds, ScriptMakesTheKeptFiles) {
    const QString python = QStandardPaths::findExecutable("python3");
    if (python.isEmpty()) {
        GTEST_SKIP() << "no python3";
    }
    const QTemporaryDir folder;
    ASSERT_EQ(
        QProcess::execute(python, {DataFolder + QStringLiteral("/make_sounds.py"), folder.path()}),
        0);
    const QStringList made = QDir(folder.path()).entryList(QDir::Files);
    EXPECT_EQ(made, QDir(DataFolder + QStringLiteral("/sounds")).entryList(QDir::Files));
    for (const QString& name : made) {
        EXPECT_EQ(Content(folder.filePath(name)),
                  Content(DataFolder + QStringLiteral("/sounds/") + name))
            << name.toStdString();
    }
}

} // namespace
