// Events from a module on the bus to a log server that isn't ours, which is stopped, started,
// starved and disguised, and the program killed in between.

#include "core/FormNames.h"
#include "events/ForwardSettings.h"
#include "support/Road.h"
#include "support/Rsyslog.h"
#include "support/Script.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

namespace {

const QString Form = FormNames::wSysForward;

QList<int> UpTo(int last) {
    QList<int> numbers;
    for (int number = 1; number <= last; ++number)
        numbers += number;
    return numbers;
}

ForwardSettings SettingsFor(const RunFolder& folder, const Rsyslog& server) {
    ForwardSettings settings;
    settings.syslog = true;
    settings.server.host = "localhost";
    settings.server.port = quint16(server.Port());
    settings.server.authority = folder.Path("ca.pem");
    return settings;
}

class ForwardRoad : public Road {
protected:
    ForwardRoad()
        : Road({"1=Q7100"})
        , server(folder.Path(".")) {}

    void SetUp() override {
        if (Rsyslog::Program().isEmpty())
            GTEST_SKIP() << "rsyslogd isn't installed";
    }
    void Type(const QString& control, const QString& text) {
        script.On(FormNames::dlgKeyboard, [text] {
            Find<QLineEdit>(FormNames::dlgKeyboard, "txtValue_0")->setText(text);
            Tap(FormNames::dlgKeyboard, "imgControl_1");
        });
        Tap(Form, control);
    }
    void TakeFile(const QString& control, const QString& name) {
        script.On(FormNames::dlgFilePicker, [name] {
            auto* files = Find<QListWidget>(FormNames::dlgFilePicker, "lstFiles");
            const QListWidgetItem* file = files->findItems(name, Qt::MatchExactly).value(0);
            files->scrollToItem(file);
            QTest::mouseClick(files->viewport(), Qt::LeftButton, {},
                              files->visualItemRect(file).center());
            QCoreApplication::processEvents();
            Tap(FormNames::dlgFilePicker, "imgControl_1");
        });
        Tap(Form, control);
    }
    static QString Words(const char* label) { return Find<QLabel>(Form, label)->text(); }
    qint64 Waiting() const { return engine->Forwarder().Present().waiting; }
    bool Connects() const {
        return Until([&] {
            return engine->Forwarder().Present().phase == EventForwarder::Phase::Connected;
        });
    }
    /// So many events of a channel that comes and goes, without the road over the line.
    void Send(int events) {
        for (int i = 0; i < events; ++i) {
            EventClass event(1, 3, 0, qint16(i % 2));
            engine->SendEvent(event);
        }
    }

    Rsyslog server;
    Script script;
};

class ForwardPlant : public PlantTest {
protected:
    void SetUp() override {
        if (Rsyslog::Program().isEmpty())
            GTEST_SKIP() << "rsyslogd isn't installed";
    }
};

} // namespace

TEST_F(ForwardRoad, EventsReachTheServerHoweverItComesAndGoes) {
    server.Start();
    Forms::Show(FormNames::wMain);
    script.On(FormNames::dlgMenuSystem, [] { Tap(FormNames::dlgMenuSystem, "cmdButtons_6"); });
    Tap(FormNames::wMain, "imgMenu_2");
    ASSERT_NE(Forms::Find(Form), nullptr);
    EXPECT_EQ(Words("lblState"), GetText(717020));
    Tap(Form, "chkSyslog");
    Tap(Form, "imgControl_1");
    EXPECT_EQ(boxes.last(), GetText(20006)) << "no server yet";
    Type("txtServer", "localhost");
    Type("lblPort", QString::number(server.Port()));
    Tap(Form, "imgControl_1");
    EXPECT_TRUE(Until([] { return Words("lblError").endsWith(GetText(717036)); }))
        << Words("lblError").toStdString();
    TakeFile("imgAuthority_0", "ca.pem");
    Tap(Form, "imgControl_1");
    QFile::rename(folder.Path("ca.pem"), folder.Path("stick-went.pem"));
    ASSERT_TRUE(Connects());
    EXPECT_TRUE(Words("lblState").startsWith(GetText(717023)));
    Tap(Form, "imgTest");
    EXPECT_TRUE(Until([&] { return server.Received().filter("korvanelle TEST - ").size() == 1; }));

    engine->setRun(true);
    ASSERT_TRUE(Until([&] { return engine->State() == BusState::Running; }));
    simulator.Do("active 1 7");
    EXPECT_TRUE(Until([&] {
        return server.Received().filter(" ACTIVE [event@32473 panel=\"1\" channel=\"7\" ").size() ==
               1;
    })) << server.Received().join('\n').toStdString();
    engine->setRun(false);

    // Stopped, it finds all when it starts again; starved, it gets all when it goes on.
    QFile::rename(folder.Path("stick-went.pem"), folder.Path("ca.pem"));
    server.Stop();
    Send(50);
    EXPECT_GE(Waiting(), 50);
    server.Start();
    const auto all = [&] {
        return server.Numbers().size() == IniRead("General", "LastEvent", "").toInt();
    };
    EXPECT_TRUE(Until(all));
    server.Signal(SIGSTOP);
    Send(1000);
    EXPECT_TRUE(Until([&] { return Waiting() > 0; }));
    server.Signal(SIGCONT);
    EXPECT_TRUE(Until(all));
    QList<int> numbers = server.Numbers();
    EXPECT_EQ(numbers, UpTo(int(numbers.size()))) << "none is missing, each stands in its place";
}

TEST_F(ForwardRoad, ADisguisedServerIsRefusedAndTold) {
    using platform::LogServerError;
    const auto errorOf = [&](const ForwardSettings& settings) {
        settings.Write();
        engine->Forwarder().Start();
        EXPECT_TRUE(
            Until([&] { return engine->Forwarder().Present().error != LogServerError::None; }));
        return engine->Forwarder().Present().error;
    };
    ForwardSettings settings = SettingsFor(folder, server);
    EXPECT_EQ(errorOf(settings), LogServerError::Refused);
    server.Start("elsewhere");
    ASSERT_TRUE(Until([&] { return errorOf(settings) != LogServerError::Refused; }));
    EXPECT_EQ(errorOf(settings), LogServerError::WrongName);
    settings.server.authority = folder.Path("other.pem");
    EXPECT_EQ(errorOf(settings), LogServerError::Untrusted);
    settings.server.authority = folder.Path("ca.key");
    EXPECT_EQ(errorOf(settings), LogServerError::FileUnreadable);
    Send(3);
    EXPECT_EQ(Waiting(), 3);
    EXPECT_TRUE(server.Received().isEmpty());

    // One that asks for a certificate.
    server.Stop();
    server.Start("localhost", true);
    settings = SettingsFor(folder, server);
    ASSERT_TRUE(Until([&] { return errorOf(settings) != LogServerError::Refused; }));
    EXPECT_TRUE(server.Received().isEmpty()) << "and gets none";
    settings.server.certificate = folder.Path("own.pem");
    settings.Write();
    engine->Forwarder().Start();
    EXPECT_TRUE(Until([&] { return server.Numbers().size() == 3; }));
}

// What the trace holds was spooled before.
TEST_F(ForwardPlant, AKillInTheMiddleLosesNothing) {
    Rsyslog server(folder.Path("."));
    SettingsFor(folder, server).Write();
    Put(1);
    Save();
    const SimulatorProcess simulator(folder.Bus(), {"1=Q7100"});
    const auto traced = [&] {
        QList<int> numbers;
        for (const QString& line : folder.Trace()) {
            if (const int number = line.mid(20, 6).toInt(); number > 0)
                numbers += number;
        }
        return numbers;
    };
    for (const bool reachable : {false, true, false}) {
        if (reachable)
            server.Start();
        const auto before = traced().size();
        ProgramProcess program(folder);
        EXPECT_TRUE(Eventually([&] {
            return traced().size() >= before + 2 &&
                   (!reachable || server.Numbers().size() >= before);
        }));
        program.Kill();
        server.Stop();
    }
    const QList<int> killed = traced();
    EXPECT_EQ(killed, UpTo(killed.last()));
    server.Start();
    const ProgramProcess program(folder);
    EXPECT_TRUE(Eventually([&] { return server.Numbers().size() > killed.size(); }));
    EXPECT_EQ(server.Numbers().mid(0, killed.size()), killed);
}
