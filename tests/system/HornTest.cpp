// The horn of the program on a sound server of its own, whose output is recorded.

#include "system/Processes.h"

#include <cstring>

namespace {

/// A sound server with one output that leads nowhere.
class SoundServer {
public:
    SoundServer() {
        qputenv("PULSE_SERVER", "unix:" + Socket().toUtf8());
        qputenv("PULSE_RUNTIME_PATH", folder_.path().toUtf8());
        // The machine's own device is no way out.
        qputenv("ALSA_CONFIG_PATH", folder_.filePath("none").toUtf8());
    }
    ~SoundServer() {
        Kill();
        for (const char* name : {"PULSE_SERVER", "PULSE_RUNTIME_PATH", "ALSA_CONFIG_PATH"})
            qunsetenv(name);
    }

    bool Start() {
        QFile::remove(Socket());
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.start(
            "pulseaudio",
            {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
             QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") + Socket(),
             "-L", "module-null-sink sink_name=horn"});
        return process_.waitForStarted() && Eventually([this] {
                   return QFile::exists(Socket()) || process_.waitForFinished(0);
               }) &&
               process_.state() == QProcess::Running;
    }
    void Kill() {
        process_.kill();
        process_.waitForFinished();
    }
    static void Control(const QStringList& words) {
        EXPECT_EQ(QProcess::execute("pactl", words), 0) << words.join(u' ').toStdString();
    }

    /// Waits until something loud is recorded.
    static bool IsHeard() {
        constexpr int Loud = 500;
        QProcess recorder;
        bool loud = false;
        const bool heard = Eventually([&] {
            if (recorder.state() == QProcess::NotRunning)
                recorder.start("parec",
                               {"-d", "horn.monitor", "--raw", "--format=s16le", "--channels=1"});
            recorder.waitForReadyRead(50);
            const QByteArray bytes = recorder.readAllStandardOutput();
            for (qsizetype i = 0; i + 1 < bytes.size(); i += 2) {
                qint16 sample = 0;
                std::memcpy(&sample, bytes.constData() + i, sizeof sample);
                loud = loud || sample > Loud;
            }
            return loud;
        });
        recorder.kill();
        recorder.waitForFinished();
        return heard;
    }

private:
    QString Socket() const { return folder_.filePath("socket"); }

    QTemporaryDir folder_;
    QProcess process_;
};

class HornTest : public PlantTest {
protected:
    HornTest()
        : simulator_(folder.Bus(), {"1=Q7100"}) {
        for (int bit = 0; bit <= 4; ++bit)
            site.setOptionKlaxon(bit, true);
        ChannelClass& channel = Put(1).Channel(2);
        channel.setKlaxon(true);
        channel.setAlmPrio(5);
        site.setAlarmPrioSound(5, 8);
        Save();
    }

    void SetUp() override {
        if (!server_.Start())
            GTEST_SKIP() << "no sound server can be started";
    }
    void Alarm() {
        ASSERT_TRUE(Comes("SYNCHR"));
        simulator_.Do("active 1 2");
    }

    SimulatorProcess simulator_;
    SoundServer server_;
};

} // namespace

TEST_F(HornTest, ABadFileIsReplacedByTheSoundOfTheBase) {
    QFile file(folder.Path("AlarmSound8.wav"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(Config::Sound(8).value().left(20'000));
    file.close();
    ProgramProcess program(folder);
    Alarm();
    EXPECT_TRUE(SoundServer::IsHeard());
    EXPECT_TRUE(Comes("SOUND AlarmSound8.wav NOT PLAYABLE, IN ITS PLACE BASE"));
}

TEST_F(HornTest, ASilenceIsToldAndEndsByItself) {
    ProgramProcess program(folder);
    Alarm();
    EXPECT_TRUE(SoundServer::IsHeard());

    server_.Kill();
    EXPECT_TRUE(Comes("FAULT BEGINS NO HORN", 1));
    ASSERT_TRUE(server_.Start());
    EXPECT_TRUE(SoundServer::IsHeard());
    EXPECT_TRUE(Comes("FAULT ENDS   NO HORN", 1));

    SoundServer::Control({"unload-module", "module-null-sink"});
    EXPECT_TRUE(Comes("FAULT BEGINS NO HORN", 2));
    // What a server offers in the place of a device that has gone can't be heard.
    SoundServer::Control({"load-module", "module-null-sink", "sink_name=auto_null"});
    QThread::sleep(2);
    EXPECT_EQ(Traced("FAULT ENDS   NO HORN").size(), 1);
    SoundServer::Control({"unload-module", "module-null-sink"});
    SoundServer::Control({"load-module", "module-null-sink", "sink_name=horn"});
    EXPECT_TRUE(SoundServer::IsHeard());
    EXPECT_TRUE(Comes("FAULT ENDS   NO HORN", 2));

    SoundServer::Control({"set-sink-mute", "horn", "1"});
    EXPECT_TRUE(Comes("FAULT BEGINS NO HORN", 3));
    EXPECT_EQ(program.Terminate(), 0);
}

TEST_F(HornTest, AMissingLoudspeakerIsToldBeforeTheAlarm) {
    server_.Kill();
    ProgramProcess program(folder);
    EXPECT_TRUE(Comes("FAULT BEGINS NO HORN"));
    ASSERT_TRUE(server_.Start());
    EXPECT_TRUE(Comes("FAULT ENDS   NO HORN"));
    Alarm();
    EXPECT_TRUE(SoundServer::IsHeard());
}
