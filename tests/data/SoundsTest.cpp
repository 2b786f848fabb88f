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
    if (bytes.size() < 44 || bytes.mid(0, 4) != "RIFF" || bytes.mid(8, 8) != "WAVEfmt " ||
        bytes.mid(36, 4) != "data") {
        return wave;
    }
    wave.rate = qFromLittleEndian<quint32>(data + 24);
    const auto length = qFromLittleEndian<quint32>(data + 40);
    wave.valid = qFromLittleEndian<quint32>(data + 4) == quint32(bytes.size() - 8) &&
                 qFromLittleEndian<quint16>(data + 20) == 1 &&  // PCM
                 qFromLittleEndian<quint16>(data + 22) == 1 &&  // channels
                 qFromLittleEndian<quint16>(data + 34) == 16 && // bits
                 qFromLittleEndian<quint32>(data + 28) == wave.rate * 2 &&
                 length == quint32(bytes.size() - 44);
    for (quint32 i = 0; wave.valid && i + 1 < length; i += 2) {
        wave.samples.append(qFromLittleEndian<qint16>(data + 44 + i));
    }
    return wave;
}

QByteArray Content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

class Sounds : public ::testing::Test {
protected:
    void SetUp() override {
        base_test::BaseReader base(base_test::BasePath());
        rows_ = base.Query(
            QStringLiteral("SELECT ID, Size, Content, Extension FROM T_Sounds ORDER BY ID"));
        ASSERT_FALSE(rows_.isEmpty());
    }
    QList<QVariantList> rows_;
};

TEST_F(Sounds, BaseHoldsTheFilesUnchanged) {
    for (const QVariantList& row : rows_) {
        const QString name = QStringLiteral("/sounds/%1.wav").arg(row[0].toInt());
        EXPECT_EQ(row[2].toByteArray(), Content(base_test::DataFolder() + name));
        EXPECT_EQ(row[1].toLongLong(), row[2].toByteArray().size());
        EXPECT_EQ(row[3].toString(), QStringLiteral("wav"));
    }
}

TEST_F(Sounds, AreShortPcmThatLoopsWithoutAClick) {
    for (const QVariantList& row : rows_) {
        SCOPED_TRACE(row[0].toInt());
        const WaveFile wave = ParseWave(row[2].toByteArray());
        ASSERT_TRUE(wave.valid);
        const double seconds = double(wave.samples.size()) / wave.rate;
        EXPECT_GE(seconds, 1.0);
        EXPECT_LE(seconds, 3.0);
        EXPECT_LT(row[1].toInt(), 150 * 1024);
        // Value and slope are zero on both sides of the seam.
        EXPECT_EQ(wave.samples.first(), 0);
        EXPECT_EQ(wave.samples.last(), 0);
        EXPECT_LT(std::abs(wave.samples[1]), 64);
        EXPECT_LT(std::abs(wave.samples[wave.samples.size() - 2]), 64);
    }
}

TEST_F(Sounds, NumberZeroIsSilentAndTheOthersAreHeardAndDiffer) {
    QSet<QByteArray> contents;
    for (const QVariantList& row : rows_) {
        SCOPED_TRACE(row[0].toInt());
        const WaveFile wave = ParseWave(row[2].toByteArray());
        const auto [low, high] = std::minmax_element(wave.samples.begin(), wave.samples.end());
        if (row[0].toInt() == 0) {
            EXPECT_EQ(*low, 0);
            EXPECT_EQ(*high, 0);
        } else {
            EXPECT_GT(*high, 8000);
            EXPECT_LT(*low, -8000);
        }
        contents.insert(row[2].toByteArray());
    }
    EXPECT_EQ(contents.size(), rows_.size());
    EXPECT_EQ(rows_.first()[0].toInt(), 0);
    EXPECT_GE(rows_.size(), 9);
    EXPECT_EQ(rows_.last()[0].toInt(), rows_.size() - 1)
        << "sounds are stepped through without gaps";
}

TEST_F(Sounds, ScriptMakesTheKeptFiles) {
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty()) {
        GTEST_SKIP() << "no python3";
    }
    const QTemporaryDir folder;
    ASSERT_EQ(
        QProcess::execute(
            python, {base_test::DataFolder() + QStringLiteral("/make_sounds.py"), folder.path()}),
        0);
    const QStringList made = QDir(folder.path()).entryList(QDir::Files);
    EXPECT_EQ(made,
              QDir(base_test::DataFolder() + QStringLiteral("/sounds")).entryList(QDir::Files));
    for (const QString& name : made) {
        EXPECT_EQ(Content(folder.filePath(name)),
                  Content(base_test::DataFolder() + QStringLiteral("/sounds/") + name))
            << name.toStdString();
    }
}

} // namespace
