// The alarm console on its screen, worked by touches.

#include "events/Klaxon.h"
#include "screens/AlarmConsoleFixture.h"
#include "screens/touch/Colours.h"

TEST_F(ConsoleTest, EngineReachesTheRowsAndAReactivatedAlarmTakesItsRow) {
    Load();
    EXPECT_EQ(AlarmConsole::Loaded(), console);
    Site().setOptionScreen(0, false);
    Bus(2, 255, 1, 0);
    EXPECT_EQ(console->RowCount(), 0) << "the site doesn't want panels on the screen";
    Bus(1, 7, 0, 1);
    Bus(1, 7, 1, 1);
    Bus(1, 8, 0, 1);
    EXPECT_FALSE(Child("txtNoAlarm").isVisible());
    clock.Advance(61000);
    EventClass event;
    event.setID(console->RowData(1));
    event.setAff(ReactivatedAff);
    event.setGDH(clock.Now());
    event.setNum(77);
    AlarmConsole::Loaded()->TakeEvent(event);
    EXPECT_EQ(Places(), QStringList({"P01-C08", "P01-C07"}));
    EXPECT_EQ(console->RowText(1).left(27), "     77 2024-03-15 12:01:01")
        << "the row's time begins anew";
    EXPECT_EQ(console->RowData(1), EventClass(1, 7, 1, 255).ID());
    const AlarmRows& rows = Grid().Rows();
    EXPECT_EQ(Colours::FromBgr(rows.Row(1).colour).name(), "#ff00ff");

    EXPECT_EQ(SelectedPlace(), "P01-C07");
    Click("imgAcquit");
    EXPECT_EQ(console->RowCount(), 2);
    EXPECT_EQ(rows.Row(1).colour, AlarmRows::White);
    EXPECT_EQ(engine->Commands().Count(), 0);

    AlarmConsole::Loaded()->EmptyList();
    EXPECT_EQ(console->RowCount(), 0);
    EXPECT_EQ(console->RowText(0), "");
    EXPECT_TRUE(Child("txtNoAlarm").isVisible());
    console->Unload();
    EXPECT_EQ(AlarmConsole::Loaded(), nullptr);
}

TEST_F(ConsoleTest, AcknowledgementByKindOfRow) {
    struct Case {
        const char* what;
        EventClass event;
        bool stays;
        bool onBus;
    };
    const Case cases[] = {
        {"lost panel", {1, 255, 1, 0}, false, false},
        {"state", {1, 7, 0, 1}, false, false},
        {"panel as a whole", {1, 0, 0, 2}, false, false},
        {"acknowledged already", {1, 7, 1, 1}, true, false},
        {"cable fault", {1, 7, 1, 2}, true, true},
        {"first fault", {4, 24, 1, 3}, true, true},
        {"second fault", {3, 1, 1, 4}, true, true},
        {"first fault of a Q6200XT", {2, 7, 1, 3}, true, false},
        {"clearing of a panel, qualified", {1, 0, 1, 3}, true, false},
    };
    Load();
    QList<EventClass> routed;
    QObject::connect(engine.get(), &wPolling::BusEvent,
                     [&](const EventClass& event) { routed.append(event); });
    int queued = 0;
    for (const Case& one : cases) {
        console->EmptyList();
        console->TakeEvent(one.event);
        ASSERT_EQ(console->RowCount(), 1) << one.what;
        routed.clear();
        Alarme(5);
        Click("imgAcquit");
        EXPECT_EQ(horn->playing, "") << one.what;
        EXPECT_EQ(console->RowCount(), one.stays ? 1 : 0) << one.what;
        ASSERT_EQ(engine->Commands().Count(), queued + int(one.onBus)) << one.what;
        ASSERT_EQ(routed.size(), qsizetype(one.onBus)) << one.what;
        if (!one.onBus)
            continue;
        const CommandPtr command = engine->Commands().Item(++queued);
        EXPECT_EQ(std::tuple(command->CmdType(), command->Module(), command->Address()),
                  std::tuple(CommandTypes::Write, one.event.Panel(), 67));
        EXPECT_EQ(command->Values(), Words{2});
        EXPECT_EQ(routed[0].ID(), EventClass(one.event.Panel(), 254, 0, 0).ID());
    }
}

TEST_F(ConsoleTest, AcknowledgingAsksForTheOperatorAndSilencingDoesNot) {
    Load();
    Bus(1, 7, 0, 1);
    Global::Get().userLevel = 0;
    const auto click = [&](const char* image, int rowsLeft, bool sounds) {
        Alarme(5);
        Click(image);
        EXPECT_EQ(console->RowCount(), rowsLeft) << image;
        EXPECT_EQ(!horn->playing.isEmpty(), sounds) << image;
    };
    GiveUp();
    click("imgAcquit", 1, true);
    click("imgArretKlaxon", 1, false);
    // Asked until the level is there.
    for (const char* code : {"WRONG", "", "OP-1"})
        Enter(code);
    click("imgAcquit", 0, false);
    EXPECT_EQ(Text("lblLogin_0"), "1");
    // A site without an operator is open.
    Bus(1, 7, 0, 1);
    Global::Get().userLevel = 0;
    Site().setUserLevel(1, 2);
    click("imgAcquit", 0, false);
    click("imgAcquit", 0, true); // no alarm, no acknowledgement
}

TEST_F(ConsoleTest, InstructionOfTheSelectedAlarm) {
    Site().setConsigne(4, "  Close the valve  ");
    for (const auto& [channel, helpNum] : {std::pair(7, 4), std::pair(8, 5), std::pair(24, 4)})
        Site().Panel(1).Channel(channel).setHelpNum(helpNum);
    const QString none = GetText(710021);
    Load();
    EXPECT_EQ(ReadInstruction("wRunAlarms"), QStringList());
    const std::pair<qint16, QString> cases[] = {
        {7, "Close the valve"}, {8, none}, {9, {}}, {24, {}}, {255, {}}};
    for (const auto& [chnl, words] : cases) {
        console->EmptyList();
        console->TakeEvent({1, chnl, 1, chnl == 255 ? qint16(0) : qint16(3)});
        const QStringList told = ReadInstruction("wRunAlarms");
        EXPECT_EQ(told, words.isEmpty() ? QStringList() : QStringList({console->RowText(0), words}))
            << chnl;
    }
    EXPECT_EQ(boxes, QStringList(3, none));
    EXPECT_EQ(styles, QList<int>(3, 16));

    // An alarm sends every other screen away, and a user who stays away the console too.
    script.On("dlgConsigne", [] { Forms::UnloadAllBut({}); });
    console->EmptyList();
    Bus(1, 7, 1, 3);
    Click("imgConsigne");
    EXPECT_EQ(Forms::Find("wRunAlarms"), nullptr);
}

TEST_F(ConsoleTest, TouchesAndScrollButtonsMoveTheSelection) {
    Load();
    for (qint16 channel = 1; channel <= 20; ++channel)
        Bus(3, channel, 0, 1);
    const int page = Grid().height() / Grid().RowHeight();
    EXPECT_GE(page, 11);
    EXPECT_EQ(SelectedPlace(), "P03-C01");
    EXPECT_FALSE(Child("imgPointer").isVisible()) << "the selection is out of sight";
    Look();
    QTest::mouseClick(&Grid(), Qt::LeftButton, {}, {50, Grid().RowHeight() * 2 + 5});
    EXPECT_EQ(SelectedPlace(), "P03-C18");
    EXPECT_NEAR(Child("imgPointer").geometry().center().y(), Grid().y() + Grid().RowHeight() * 2.5,
                1);
    const std::pair<const char*, int> steps[] = {{"imgControl_6", 3}, {"imgControl_5", 2},
                                                 {"imgControl_5", 1}, {"imgControl_7", 1 + page},
                                                 {"imgControl_4", 1}, {"imgControl_4", 0}};
    for (const auto& [button, row] : steps) {
        Click(button);
        EXPECT_EQ(Grid().Rows().Current(), row) << button;
        EXPECT_TRUE(Child("imgPointer").isVisible()) << "the view follows";
    }
}

TEST_F(ConsoleTest, MissingPanelsStandInARowAndCoverNothing) {
    for (int panel = 1; panel <= 64; ++panel) {
        Site().Panel(panel).setNumero(quint8(panel));
        Site().Panel(panel).setModel(Models::P5000);
    }
    Site().Panel(3).setErrCptr(2, 1);
    Site().Panel(4).setErrCptr(2, 1);
    Site().Panel(1).setErrCptr(1, 3);
    ConsoleHead::OverrideWatch(ConsoleHead::Watch{BusState::Running, {3}, false});
    Load();
    const auto numbers = [&] {
        QStringList list;
        while (auto* label =
                   console->findChild<QLabel*>(Part("lblMissingPanel", int(list.size()) + 1))) {
            EXPECT_TRUE(console->rect().contains(label->geometry())) << list.size();
            list.append(label->text());
        }
        return list;
    };
    EXPECT_EQ(numbers(), QStringList("3")) << "panel 4 isn't active, panel 1 still answers";
    const QRect pattern = Child("lblMissingPanel_0").geometry();
    EXPECT_FALSE(Child("lblMissingPanel_0").isVisible());
    EXPECT_EQ(Child("lblMissingPanel_1").x(), pattern.x() + qRound(1.2 * pattern.width()));

    const auto setMissing = [](bool missing) {
        for (int panel = 1; panel <= 64; ++panel) {
            Site().Panel(panel).setActive(true);
            Site().Panel(panel).setErrCptr(2, missing);
        }
    };
    setMissing(true);
    // The console looks each second.
    EXPECT_TRUE(Comes([&] { return numbers().size() > 1; }));
    const QStringList all = numbers();
    EXPECT_EQ(all.last(), u'+' + QString::number(65 - all.size()));
    for (const char* urgent : {"imgAcquit", "imgArretKlaxon", "imgConsigne", "imgHisto",
                               "imgControl_4", "imgControl_5", "imgControl_6", "imgControl_7"}) {
        const QRect area = Child(urgent).geometry();
        for (const QPoint& point : {area.topLeft(), area.center(), area.bottomRight()})
            EXPECT_EQ(console->childAt(point), &Child(urgent)) << urgent << " is covered";
    }
    setMissing(false);
    clock.Advance(5000);
    EXPECT_TRUE(Comes([&] { return numbers().isEmpty(); }));
    EXPECT_EQ(Text("lblDateTime"), "2024-03-15 12:00:05");
}

TEST_F(ConsoleTest, BeatOfTheBusAndTheUser) {
    Load();
    const auto shows = [&](const char* beats) {
        QString shown;
        for (const int image : {0, 1, 2})
            shown += QString::number(Child(Part("imgComm", image).toLatin1()).isVisible());
        EXPECT_EQ(shown, beats);
    };
    shows("100");
    Q_EMIT engine->PollDone();
    shows("010");
    Q_EMIT engine->Synchronising(true);
    Q_EMIT engine->PollDone();
    shows("001");
    Q_EMIT engine->Synchronising(false);
    shows("100");

    EXPECT_EQ(Text("lblFileName"), "Unnamed");
    IniWrite("Files", "LastUsed", "C:\\Sites\\Works.1.kv2");
    for (const bool technician : {false, true}) {
        Global::Get().userLevel = technician ? 3 : 1;
        Site().Panel(4).setActive(technician);
        console->BringToFront();
        EXPECT_EQ(Child("imgCommWatch").isVisible(), technician);
        EXPECT_EQ(Child("imgTelecommande").isVisible(), technician);
    }
    EXPECT_EQ(Text("lblFileName"), "Works.1");
    EXPECT_EQ(Text("lblLogin_0") + Text("lblLogin_1"), "33");
    Global::Get().userLevel = 0;
    Q_EMIT engine->UserChanged();
    EXPECT_EQ(Text("lblLogin_0"), "0");
}

TEST_F(ConsoleTest, WaysToOtherScreensAndBack) {
    Site().Panel(5).setActive(true);
    Load();
    Bus(1, 7, 1, 3);
    Bus(2, 255, 1, 0);
    Click("imgHisto");
    ASSERT_EQ(NbInstances("wHistoric"), 1);
    Tap("wHistoric", "imgClose");
    EXPECT_EQ(NbInstances("wHistoric"), 0);
    EXPECT_EQ(Forms::Find("wRunAlarms"), console) << "back where it came from";
    Global::Get().userLevel = 0;
    GiveUp();
    Click("imgTelecommande");
    EXPECT_EQ(NbInstances("wTeleCmdes"), 0) << "given up";
    Enter("OP-1");
    Click("imgTelecommande");
    ASSERT_EQ(NbInstances("wTeleCmdes"), 1);
    Tap("wTeleCmdes", "imgNavig_5");
    EXPECT_TRUE(NbInstances("wTeleCmdes") == 0 && console->Visible());

    // The menu takes the console's place, and the list comes back as it was left.
    const QString first = console->RowText(0);
    GiveUp();
    Click("imgNavig_0");
    EXPECT_EQ(NbInstances("wMain"), 0) << "level 1 stays here";
    Global::Get().userLevel = 2;
    Click("imgNavig_0");
    EXPECT_TRUE(NbInstances("wMain") == 1 && NbInstances("wRunAlarms") == 0);
    EXPECT_EQ(IniRead("LastAlarms", "1", {}), "02FF0100" + first);
    Bus(1, 9, 1, 3);
    RemoveUnloaded();
    Load();
    ASSERT_EQ(console->RowCount(), 2);
    EXPECT_EQ(console->RowText(0), first);
}
