// The inputs that once broke something, or reach what others don't, go through the fuzz functions
// at each run of the tests.

#include "fuzz/Targets.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <utility>

namespace {

using Target = std::pair<const char*, int (*)(const uint8_t*, size_t)>;

class Replay : public ::testing::TestWithParam<Target> {};

} // namespace

TEST_P(Replay, Corpus) {
    const auto [target, function] = GetParam();
    const QDir folder(QStringLiteral(KORVANELLE_SOURCE_DIR "/fuzz/corpus/") +
                      QString::fromLatin1(target));
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    EXPECT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        // A function that finds a fault ends the process: the last name printed is its input.
        std::printf("%s\n", name.toLocal8Bit().constData());
        std::fflush(stdout);
        EXPECT_EQ(
            function(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size())), 0);
    }
    EXPECT_EQ(function(nullptr, 0), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Fuzz, Replay,
    ::testing::Values(Target{"Exchange", FuzzExchange}, Target{"Panels", FuzzPanels},
                      Target{"Site", FuzzSite}, Target{"Settings", FuzzSettings},
                      Target{"HistoLine", FuzzHistoLine}, Target{"Command", FuzzCommand},
                      Target{"AlarmList", FuzzAlarmList}, Target{"Printer", FuzzPrinter},
                      Target{"Sheet", FuzzSheet}),
    [](const auto& given) { return std::string(given.param.first); });
