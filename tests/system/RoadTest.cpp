// The road of one alarm: the real engine over a pseudo-terminal, with the simulator at its far end
// and the console on the screen.

#include "system/Processes.h"

#include "bus/AlarmConsole.h"
#include "bus/wPolling.h"
#include "core/Config.h"
#include "core/Forms.h"
#include "core/Global.h"
#include "core/Message.h"
#include "core/Trace.h"
#include "model/Models.h"
#include "screens/Screens.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QTest>
#include <QWidget>

namespace {

/// The machine's clock with a lead, so that waits of minutes pass at once.
class LeadingClock : public platform::Clock {
public:
    LeadingClock()
        : machine_(platform::Clock::Current()) {
        platform::Clock::Install(this);
    }
    ~LeadingClock() override { platform::Clock::Install(nullptr); }
    LeadingClock(const LeadingClock&) = delete;
    LeadingClock& operator=(const LeadingClock&) = delete;

    DateTime Now() const override { return machine_.Now() + lead_; }
    qint64 MonotonicMs() const override { return machine_.MonotonicMs(); }
    void Sleep(int milliseconds) override { machine_.Sleep(milliseconds); }
    void Lead(DateTime time) { lead_ += time; }

private:
    platform::Clock& machine_;
    DateTime lead_ = 0;
};

class RoadTest : public ::testing::Test {
protected:
    RoadTest()
        : simulator_(folder_.Bus(), {QStringLiteral("1=Q7100"), QStringLiteral("2=Q6200XT"),
                                     QStringLiteral("3=Q7000"), QStringLiteral("4=P5000"),
                                     QStringLiteral("5=P5500")}) {
        EXPECT_TRUE(Config::OpenConfigBase());
        Global::Get() = Global::State();
        Global::ReadMarks();
        Global::Get().sound = std::make_unique<platform::SilentSound>();
        Global::setConfiguration(std::make_unique<ConfigClass>());
        MakeSite();
        RegisterScreens();
        Messages::Install([this](const QString& text, int, bool) {
            boxes_ += text;
            return int(Messages::Ok);
        });
        Trace::OpenToday();
        engine_ = std::make_unique<wPolling>(
            platform::MakeSerialPort([this](int) { return folder_.Bus(); }));
        engine_->Form_Load();
        engine_->setRun(true);
        Forms::Show(QStringLiteral("wRunAlarms"));
    }
    ~RoadTest() override {
        engine_->Form_Unload();
        Forms::UnloadAllBut({});
        engine_.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        Messages::Install(nullptr);
        Global::setConfiguration(nullptr);
    }

    static void MakeSite() {
        ConfigClass& site = Global::Configuration();
        for (int bit = 0; bit <= 4; ++bit) {
            site.setOptionScreen(bit, bit != 3);
            site.setOptionHisto(bit, true);
            site.setOptionKlaxon(bit, true);
        }
        site.setBiblio(2, QStringLiteral("Hochwasser"));
        for (int address = 1; address <= 5; ++address) {
            PanelClass& panel = site.Panel(address);
            panel.setModel(quint8(address));
            panel.setActive(true);
            ChannelClass& channel = panel.Channel(7);
            channel.setScreenText(QStringLiteral("Schacht S\u00FCd"));
            channel.setBibNum(2);
            channel.setScrAlm(true);
            channel.setKlaxon(true);
            channel.setAlmPrio(qint16(10 + address));
        }
    }

    /// Lets the bus run until a condition holds, at most 20 s.
    bool Until(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 20000); }
    static bool Holds(const QStringList& lines, const QString& part) {
        return !lines.filter(part).isEmpty();
    }
    static QStringList Rows() {
        QStringList rows;
        const AlarmConsole* console = AlarmConsole::Loaded();
        for (int row = 0; console != nullptr && row < console->RowCount(); ++row)
            rows += console->RowText(row);
        return rows;
    }
    static const platform::SilentSound& Horn() {
        return static_cast<const platform::SilentSound&>(*Global::Get().sound);
    }

    RunFolder folder_;
    LeadingClock clock_;
    SimulatorProcess simulator_;
    std::unique_ptr<wPolling> engine_;
    QStringList boxes_;
};

} // namespace

TEST_F(RoadTest, AnAlarmOfEachModelArrivesEverywhere) {
    struct Case {
        const char* command;
        const char* origin;
        const char* display;
    };
    const Case cases[] = {
        {"active 1 7", "P01-C07", "Active"},
        {"active 3 7", "P03-C07", "Active"},
        {"active 4 7", "P04-C07", "Active"},
        {"active 5 7", "P05-C07", "Active"},
    };
    for (const Case& alarm : cases) {
        simulator_.Do(alarm.command);
        const QString origin = QString::fromLatin1(alarm.origin);
        ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), origin); })) << alarm.command;
        const QString trace = folder_.Trace().filter(origin).last();
        EXPECT_EQ(trace.mid(44, 21), origin + QStringLiteral(" State  ACTIVE"));
        EXPECT_EQ(trace.mid(66), QStringLiteral("Hochwasser                 Schacht S\u00FCd"));
        const QString history = folder_.History().filter(origin).last();
        ASSERT_EQ(history.size(), 138);
        EXPECT_EQ(history.mid(35, 7), origin);
        EXPECT_EQ(history.mid(55, 15).trimmed(), QString::fromLatin1(alarm.display));
        EXPECT_EQ(history.mid(71).trimmed(),
                  QStringLiteral("Hochwasser                 Schacht S\u00FCd"));
        EXPECT_EQ(Rows().filter(origin).value(0).mid(28),
                  origin + QStringLiteral(" Hochwasser   ") +
                      QStringLiteral("Schacht S\u00FCd").leftJustified(25));
    }
    simulator_.Do("ack 2");
    ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), QStringLiteral("P02-ACK")); }));
    EXPECT_TRUE(Holds(folder_.History(), QStringLiteral("P02-ACK")));
    EXPECT_TRUE(Holds(folder_.Trace().filter(QStringLiteral("P02-ACK")), QStringLiteral("ACK CL")));
    EXPECT_TRUE(Horn().playing.endsWith(QStringLiteral("AlarmSound1")));
    EXPECT_EQ(Global::Get().currentPriority, 13); // models 4 and 5 never sound the horn
    EXPECT_TRUE(boxes_.isEmpty()) << boxes_.join(u'\n').toStdString();
}

TEST_F(RoadTest, TheOperatorAcknowledgesByTouch) {
    simulator_.Do("fault 1 7 first");
    ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), QStringLiteral("1stFLT")); }));
    EXPECT_FALSE(Horn().playing.isEmpty());
    auto* console = dynamic_cast<QWidget*>(Forms::Find(QStringLiteral("wRunAlarms")));
    ASSERT_NE(console, nullptr);
    QTest::mouseClick(console->findChild<QWidget*>(QStringLiteral("imgAcquit")), Qt::LeftButton);
    EXPECT_TRUE(Horn().playing.isEmpty());
    ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), QStringLiteral("ACKLGD")); }));
    EXPECT_TRUE(Holds(folder_.Trace(), QStringLiteral("WRITE  COMMAND P01:0043 0002")));
    EXPECT_TRUE(Holds(folder_.Trace(), QStringLiteral("ACK PC")));
    EXPECT_EQ(Rows().size(), 1);
    simulator_.Do("normal 1 7");
    EXPECT_TRUE(Until([] { return Rows().isEmpty(); }));
}

TEST_F(RoadTest, ASilentModuleIsToldOnceAndComesBack) {
    const QString gone = QStringLiteral("DISAPP");
    simulator_.Do("mute 3");
    ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), gone); }));
    EXPECT_EQ(Global::Get().currentPriority, 99);
    ASSERT_EQ(Rows().size(), 1);
    EXPECT_TRUE(Rows()[0].contains(QStringLiteral("P03-Q70")));
    clock_.Lead(1.1 * platform::OneMinute);
    ASSERT_TRUE(Until([&] { return Global::Configuration().Panel(3).ErrCptr(2) == 2; }));
    EXPECT_EQ(folder_.Trace().filter(gone).size(), 1);
    simulator_.Do("unmute 3");
    clock_.Lead(1.1 * platform::OneMinute);
    ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), QStringLiteral("APPEAR")); }));
    EXPECT_TRUE(Rows().isEmpty());
    EXPECT_EQ(folder_.Trace().filter(gone).size(), 1);
}

TEST_F(RoadTest, SpoiledRepliesLoseNoEvent) {
    simulator_.Do("corrupt 1 2");
    simulator_.Do("active 1 7");
    ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), QStringLiteral("ACTIVE")); }));
    simulator_.Do("surplus 1");
    simulator_.Do("normal 1 7");
    ASSERT_TRUE(Until([&] { return Holds(folder_.Trace(), QStringLiteral("NORMAL")); }));
    simulator_.Do("alien 1");
    simulator_.Do("active 1 7");
    ASSERT_TRUE(
        Until([&] { return folder_.Trace().filter(QStringLiteral("ACTIVE")).size() == 2; }));
    simulator_.Do("short 1");
    simulator_.Do("normal 1 7");
    ASSERT_TRUE(
        Until([&] { return folder_.Trace().filter(QStringLiteral("NORMAL")).size() == 2; }));
    EXPECT_FALSE(Holds(folder_.Trace(), QStringLiteral("DISAPP")));
    EXPECT_TRUE(Until([&] { return simulator_.Ask("show 1", "show 1").contains("waiting=0"); }));
}
