// The horn of the program on a device that is a file.

#include "system/Processes.h"

namespace {

class HornTest : public PlantTest {
protected:
    HornTest() {
        for (int bit = 0; bit <= 4; ++bit)
            site.setOptionKlaxon(bit, true);
        ChannelClass& channel = Put(1).Channel(2);
        channel.setKlaxon(true);
        channel.setAlmPrio(5);
        site.setAlarmPrioSound(5, 8);
        Save();
    }
    void Write(const QString& name, const QByteArray& bytes) const {
        QFile file(folder.Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
};

} // namespace

TEST_F(HornTest, AMissingLoudspeakerIsToldBeforeTheAlarmAndABadFileReplaced) {
    SimulatorProcess simulator(folder.Bus(), {"1=Q7100"});
    Write("AlarmSound8.wav", Config::Sound(8).value().left(20'000));
    Write("alsa.conf", "# no device\n");
    const ProgramProcess program(folder, {{"PULSE_SERVER", "unix:" + folder.Path("none")},
                                          {"ALSA_CONFIG_PATH", folder.Path("alsa.conf")}});
    EXPECT_TRUE(Comes("FAULT BEGINS NO HORN"));
    Write("alsa.conf", "pcm.!default { type file format raw slave.pcm { type null } file \"" +
                           folder.Path("heard").toUtf8() + "\" }\n");
    EXPECT_TRUE(Comes("FAULT ENDS   NO HORN"));
    ASSERT_TRUE(Comes("SYNCHR"));
    simulator.Do("active 1 2");
    EXPECT_TRUE(Comes("SOUND AlarmSound8.wav NOT PLAYABLE, IN ITS PLACE BASE"));
    EXPECT_TRUE(Eventually([&] { return QFile(folder.Path("heard")).size() > 0; }));
}
