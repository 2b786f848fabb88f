// The alarm sounds: plain PCM that any back-end plays, looping without a click.

#include "BaseReader.h"
#include "platform/WaveFile.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>

namespace {

QByteArray Content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

TEST(Sounds, ArePcmThatIsHeardAndLoopsWithoutAClick) {
    const auto rows = BaseTable("T_Sounds").ReadAll();
    EXPECT_GE(rows.size(), 9);
    QSet<QByteArray> contents;
    for (int number = 0; number < rows.size(); ++number) {
        SCOPED_TRACE(number);
        const platform::Record row = rows.value(number);
        ASSERT_EQ(row.size(), 4) << "sounds are stepped through without gaps";
        const QByteArray bytes = row[2].toByteArray();
        contents += bytes;
        EXPECT_EQ(bytes, Content(DataFolder + QStringLiteral("/sounds/%1.wav").arg(number)));
        EXPECT_EQ(row[1].toLongLong(), bytes.size());
        EXPECT_EQ(row[3].toString(), "wav");
        const std::optional<platform::Wave> wave = platform::ReadWave(bytes);
        ASSERT_TRUE(wave && wave->channels == 1);
        const auto& samples = wave->samples;
        EXPECT_EQ(bytes.size(), 44 + 2 * qsizetype(samples.size())) << "16 bits, nothing else";
        const double seconds = double(samples.size()) / wave->rate;
        EXPECT_TRUE(seconds >= 1 && seconds <= 3) << seconds;
        EXPECT_LT(bytes.size(), 150 * 1024);
        // Value and slope are zero on both sides of the seam.
        EXPECT_EQ(samples.front(), 0);
        EXPECT_EQ(samples.back(), 0);
        EXPECT_LT(std::abs(samples[1]), 64);
        EXPECT_LT(std::abs(samples[samples.size() - 2]), 64);
        const auto [low, high] = std::minmax_element(samples.begin(), samples.end());
        if (number == 0)
            EXPECT_TRUE(*low == 0 && *high == 0) << "number 0 is silent";
        else
            EXPECT_TRUE(*low < -8000 && *high > 8000) << *low << ' ' << *high;
    }
    EXPECT_EQ(contents.size(), rows.size()) << "two sound alike";
}

TEST(Sounds, ScriptMakesTheKeptFiles) {
    const QTemporaryDir folder;
    if (QProcess::execute("python3", {DataFolder + "/make_sounds.py", folder.path()}) == -2)
        GTEST_SKIP() << "no python3";
    const QStringList made = QDir(folder.path()).entryList(QDir::Files);
    EXPECT_EQ(made, QDir(DataFolder + QStringLiteral("/sounds")).entryList(QDir::Files));
    for (const QString& name : made) {
        EXPECT_EQ(Content(folder.filePath(name)),
                  Content(DataFolder + QStringLiteral("/sounds/") + name))
            << name.toStdString();
    }
}

} // namespace
