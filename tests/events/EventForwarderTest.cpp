// Events on their way out: the lines, and what becomes of them while the server comes and goes.

#include "events/EventForwarder.h"

#include "core/Rehearsal.h"
#include "model/ConfigClass.h"
#include "support/Bench.h"
#include "support/FakeLogServer.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using platform::LogServerError;
using Phase = EventForwarder::Phase;

namespace {

class Forwarding : public Bench {
protected:
    Forwarding() {
        auto fake = std::make_unique<FakeLogServer>();
        server = fake.get();
        forwarder = std::make_unique<EventForwarder>(
            std::move(fake), std::make_unique<platform::Journal>(Path("journal")),
            platform::Spool::Limits{10000, 2000});
    }
    void SwitchOn(bool syslog = true, bool journal = false) {
        ForwardSettings settings;
        settings.syslog = syslog;
        settings.journal = journal;
        settings.server.host = "logs";
        settings.Write();
        forwarder->Start();
    }
    static EventClass Event(int number, qint16 chnl = 7, qint16 param = 0, qint16 aff = 1) {
        EventClass event(12, chnl, param, aff);
        event.setGDH(DateTimes::Now());
        event.setNum(number);
        return event;
    }
    void Send(int from, int to) {
        for (int number = from; number <= to; ++number)
            forwarder->Forward(Event(number));
        QCoreApplication::processEvents();
    }
    void Pass(int seconds) {
        for (; seconds > 0; --seconds) {
            clock.Advance(1000);
            forwarder->Tick();
        }
    }
    qint64 Waiting() const { return forwarder->Present().waiting; }
    static QString Fault() {
        for (const Faults::Fault& fault : Faults::Standing()) {
            if (fault.kind == Faults::Kind::NotForwarded)
                return fault.detail;
        }
        return QStringLiteral("none");
    }

    FakeLogServer* server;
    std::unique_ptr<EventForwarder> forwarder;
};

} // namespace

TEST_F(Forwarding, ALineHoldsTheEventEscapedAndMarked) {
    Site().Panel(12).Channel(7).setScreenText(Text("Größe \"a\\b]\"\r\nc"));
    // The first of two hours of that name.
    clock.Set(2026, 10, 25, 2, 30);
    clock.setOffsetFromUtc(7200);
    EventClass event = Event(123456);
    event.setClock(77);
    const QString line = QString::fromUtf8(SyslogLine::Format(SyslogLine::EntryOf(event)));
    const QRegularExpression pattern(
        "^<130>1 2026-10-25T02:30:00\\.000\\+02:00 \\S+ korvanelle \\d+ ACTIVE "
        "\\[event@32473 panel=\"12\" channel=\"7\" kind=\"ACTIVE\" number=\"123456\" param=\"0\" "
        "clock=\"77\" common=\"[^\"]*\" specific=\"Größe \\\\\"a\\\\\\\\b\\\\\\]\\\\\"  c\"\\] "
        "\uFEFFP12-C07 .*Größe \"a\\\\b\\]\"  c$");
    EXPECT_TRUE(pattern.match(line).hasMatch()) << line.toStdString();
    EXPECT_EQ(SyslogLine::Framed("<1>x"), "4 <1>x");

    // Kinds and severities, as PRI of local0.
    const std::tuple<qint16, qint16, qint16, const char*, int> kinds[] = {
        {7, 0, 0, "NORMAL", 133},       {7, 1, 1, "ACKLGD", 133},
        {7, 0, 2, "CABLE-FAULT", 132},  {7, 0, 4, "SECOND-FAULT", 131},
        {0, 0, 3, "CLEAR", 133},        {255, 1, 0, "PANEL-LOST", 131},
        {255, 1, 1, "PANEL-BACK", 133}, {254, 0, 0, "ACK-PC", 133},
        {254, 0, 5, "COMM-STOP", 134},  {254, 7, 7, "OUT-OF-SERVICE", 133},
        {254, 0, 60, "SYSTEM", 134}};
    for (const auto& [chnl, param, aff, word, priority] : kinds) {
        const QByteArray text = SyslogLine::Format(SyslogLine::EntryOf(Event(1, chnl, param, aff)));
        EXPECT_TRUE(text.startsWith('<' + QByteArray::number(priority) + ">1 ")) << text.data();
        EXPECT_EQ(text.split(' ')[5], word);
    }
}

TEST_F(Forwarding, NothingHappensUnlessItIsSwitchedOnNorInARehearsal) {
    for (const bool rehearses : {false, true}) {
        Rehearsal::Override(rehearses);
        rehearses ? SwitchOn(true, true) : forwarder->Start();
        Send(1, 3);
        Pass(100);
    }
    Rehearsal::Override(false);
    EXPECT_TRUE(server->tries.isEmpty());
    EXPECT_FALSE(QFile::exists(Path("Forward")));
    EXPECT_EQ(Fault(), "none");
}

TEST_F(Forwarding, AnEntryIsInDoubtUntilTheConnectionHasStoodLonger) {
    SwitchOn();
    Send(1, 2);
    server->Accept();
    Send(3, 3);
    EXPECT_EQ(server->Numbers(), (QList<int>{1, 2, 3}));
    server->unsent = 10;
    Pass(5);
    EXPECT_EQ(Waiting(), 1) << "the last one isn't with the server's machine";
    server->unsent = 0;
    Pass(2);
    clock.Advance(90000);
    forwarder->Tick();
    EXPECT_EQ(Fault(), "none") << "while nobody looked";
    server->Fail(LogServerError::Closed);
    EXPECT_EQ(Waiting(), 1) << "who knows for how long it stood";
    Send(4, 4);
    Pass(1);
    server->Accept();
    EXPECT_EQ(server->Numbers(), (QList<int>{3, 4})) << "again, with the number that it had";
    forwarder->Stop();
    SwitchOn();
    server->Accept();
    EXPECT_EQ(server->Numbers(), (QList<int>{3, 4})) << "over a restart";
    Pass(5);
    EXPECT_EQ(Waiting(), 0);
    EXPECT_EQ(server->tries.last().host, "logs");
}

TEST_F(Forwarding, TriesGrowRareAndAMinuteOutOfReachIsAFault) {
    SwitchOn();
    Send(1, 2);
    for (int second = 0; second < 200; ++second) {
        if (forwarder->Present().phase == Phase::Connects)
            server->Fail(LogServerError::Refused);
        Pass(1);
        EXPECT_EQ(Fault(), second < 59 ? "none" : "2") << second;
    }
    EXPECT_EQ(server->tries.size(), 9) << "after 1, 2, 4, 8, 16, 32, 60 and 60 s";
    EXPECT_EQ(forwarder->Present().error, LogServerError::Refused);
    while (forwarder->Present().phase != Phase::Connects)
        Pass(1);
    server->Accept();
    // One that takes nothing is no better.
    server->unsent = 100000;
    Pass(61);
    EXPECT_EQ(Fault(), "2");
    server->unsent = 0;
    Pass(4);
    EXPECT_EQ(Fault(), "none");
    const auto tries = server->tries.size();
    server->Fail(LogServerError::Closed);
    Pass(1);
    EXPECT_EQ(server->tries.size(), tries + 1) << "one that stood long is tried again soon";
    Pass(15);
    EXPECT_EQ(forwarder->Present().error, LogServerError::NoAnswer) << "not even a refusal";
}

TEST_F(Forwarding, WhatIsDroppedIsAFaultAndALine) {
    ASSERT_TRUE(QFile(Path("Forward")).open(QIODevice::WriteOnly));
    SwitchOn();
    server->Accept();
    Send(1, 2);
    Pass(1);
    EXPECT_EQ(Fault(), "0 (-2)") << "no folder to write to";
    QFile::remove(Path("Forward"));
    Pass(1);
    QCoreApplication::processEvents();
    EXPECT_TRUE(server->taken.contains("EVENTS-LOST - \xEF\xBB\xBF"
                                       "2 EVENTS"));
    for (int number = 1; number <= 6; ++number) {
        Send(number, number);
        Pass(1);
    }
    EXPECT_GT(Waiting(), 0);
    EXPECT_EQ(Fault(), "none") << "the line is through, though events go on";
    Pass(4);
    server->taken.clear();
    server->Fail(LogServerError::Closed);
    Send(1, 100);
    Pass(1);
    const qsizetype kept = Waiting();
    EXPECT_TRUE(QRegularExpression("^\\d+ \\(-\\d+\\)$").match(Fault()).hasMatch())
        << Fault().toStdString();
    server->Accept();
    while (forwarder->Present().waiting > 0) {
        QCoreApplication::processEvents();
        server->onWritten();
        Pass(1);
    }
    const qsizetype at = server->taken.lastIndexOf("EVENTS-LOST");
    EXPECT_GT(at, 0);
    const QList<int> numbers = server->Numbers();
    EXPECT_EQ(numbers.last(), 100);
    EXPECT_EQ(numbers, [&] {
        QList<int> following;
        for (int number = numbers.first(); number <= 100; ++number)
            following += number;
        return following;
    }()) << "the oldest went, and nothing in between";
    EXPECT_LT(numbers.size(), kept) << "lines tell of it";
    Pass(1);
    EXPECT_EQ(Fault(), "none");
}

TEST_F(Forwarding, AJournalThatStandsStillHoldsUpNothingAndLosesNothing) {
    SwitchOn(false, true);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(Path("journal"));
    std::copy(path.begin(), path.end(), address.sun_path);
    const int journal = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
    ASSERT_EQ(bind(journal, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    Send(1, 600);
    int came = 0;
    char entry[2000] = {};
    for (int i = 0; i < 1000; ++i) {
        for (ssize_t size; (size = recv(journal, entry, sizeof entry, 0)) > 0;) {
            EXPECT_TRUE(QByteArray(entry, size)
                            .contains("\nKORVANELLE_NUMBER=" + QByteArray::number(++came) + '\n'));
        }
        if (came < 600)
            forwarder->Tick();
    }
    EXPECT_EQ(came, 600);
    EXPECT_TRUE(QByteArray(entry).contains("\nPRIORITY=2\nSYSLOG_IDENTIFIER=korvanelle\n"));
    close(journal);
    QFile::remove(Path("journal"));
    Send(1, 3);
    Pass(61);
    EXPECT_EQ(Fault(), "3");
    SwitchOn(true, true);
    server->Accept();
    for (int second = 0; second < 61; ++second) {
        Send(second, second);
        Pass(1);
    }
    EXPECT_NE(Fault(), "none") << "though the server gets all";
    SwitchOn(true, false);
    server->Accept();
    Pass(4);
    EXPECT_EQ(Fault(), "none") << "nothing waits for what is off";
}
