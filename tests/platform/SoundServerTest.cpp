// The horn on a sound server of its own, whose output is recorded.

#include "platform/Sound.h"
#include "platform/TestFiles.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>
#include <tuple>

using namespace platform;

namespace {

class SoundServerTest : public ::testing::Test {
protected:
    SoundServerTest() {
        qputenv("PULSE_SERVER", "unix:" + Path("socket").toUtf8());
        qputenv("PULSE_RUNTIME_PATH", folder_.path().toUtf8());
        // The machine's own device is no way out.
        qputenv("ALSA_CONFIG_PATH", Path("none").toUtf8());
    }
    ~SoundServerTest() override {
        Kill();
        for (const char* name : {"PULSE_SERVER", "PULSE_RUNTIME_PATH", "ALSA_CONFIG_PATH"})
            qunsetenv(name);
    }

    QString Path(const char* name) const { return folder_.filePath(Text(name)); }

    /// A server with one output that leads nowhere.
    bool Start() {
        QFile::remove(Path("socket"));
        server_.setProcessChannelMode(QProcess::MergedChannels);
        server_.start(
            Text("pulseaudio"),
            {Text("-n"), Text("--daemonize=no"), Text("--exit-idle-time=-1"),
             Text("--use-pid-file=no"), Text("-L"),
             Text("module-native-protocol-unix auth-anonymous=1 socket=") + Path("socket"),
             Text("-L"), Text("module-null-sink sink_name=horn")});
        return server_.waitForStarted() && Until([this] {
                   return QFile::exists(Path("socket")) || server_.state() != QProcess::Running;
               }) &&
               server_.state() == QProcess::Running;
    }
    void Kill() {
        server_.kill();
        server_.waitForFinished();
    }
    /// What the server says to a command.
    static QString Control(const QString& words) {
        QProcess control;
        control.start(Text("pactl"), words.split(u' '));
        EXPECT_TRUE(control.waitForFinished()) << words.toStdString();
        EXPECT_EQ(control.exitCode(), 0) << words.toStdString();
        return Text(control.readAllStandardOutput());
    }
    /// Waits until something loud is recorded.
    static bool IsHeard() {
        constexpr int Loud = 500;
        QProcess recorder;
        bool heard = false;
        Until([&] {
            if (recorder.state() == QProcess::NotRunning)
                recorder.start(Text("parec"), Text("-d horn.monitor --raw --format=s16le "
                                                   "--channels=1")
                                                  .split(u' '));
            const QByteArray bytes = recorder.readAllStandardOutput();
            for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
                heard = heard || qFromLittleEndian<qint16>(bytes.constData() + i) > Loud;
            return heard;
        });
        recorder.kill();
        recorder.waitForFinished();
        return heard;
    }
    /// Waits until the last that was told is whether the horn is heard.
    bool Tells(bool canBeHeard) {
        return Until([&] { return !told_.isEmpty() && told_.last() == canBeHeard; });
    }

    QTemporaryDir folder_;
    QProcess server_;
    QList<bool> told_;
};

} // namespace

TEST_F(SoundServerTest, ASilenceIsToldAndEndsByItself) {
    if (!Start())
        GTEST_SKIP() << "no sound server can be started";
    Kill();
    const auto sound = MakeSound({[this](bool canBeHeard) { told_ += canBeHeard; }, nullptr});
    EXPECT_TRUE(Tells(false)) << "ahead of any alarm";
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Tells(true));
    sound->StartLooped(Path("none"), nullptr);
    EXPECT_TRUE(IsHeard());

    Kill();
    EXPECT_TRUE(Tells(false));
    ASSERT_TRUE(Start());
    EXPECT_TRUE(Tells(true));
    EXPECT_TRUE(IsHeard());

    Control(Text("unload-module module-null-sink"));
    EXPECT_TRUE(Tells(false));
    // What a server offers in the place of a device that has gone can't be heard.
    Control(Text("load-module module-null-sink sink_name=auto_null"));
    const QDeadlineTimer longEnough(2000);
    Until([&] { return longEnough.hasExpired(); });
    EXPECT_FALSE(told_.last());
    Control(Text("unload-module module-null-sink"));
    Control(Text("load-module module-null-sink sink_name=horn"));
    EXPECT_TRUE(Tells(true));
    EXPECT_TRUE(IsHeard());

    const std::tuple<const char*, const char*, const char*> ways[] = {
        {"set-sink-mute horn", "1", "0"},
        {"set-sink-volume horn", "0", "65536"},
        {"set-sink-input-mute $", "1", "0"},
        {"set-sink-input-volume $", "0", "65536"}};
    for (const auto& [command, silent, loud] : ways) {
        for (const char* value : {silent, loud}) {
            const QString input = Control(Text("list short sink-inputs")).section(u'\t', 0, 0);
            Control(Text(command).replace(u'$', input) + u' ' + Text(value));
            EXPECT_TRUE(Tells(value == loud)) << command << ' ' << value;
        }
    }
    sound->Stop();
    EXPECT_TRUE(Until([] { return Control(Text("list short sink-inputs")).isEmpty(); }));
}
