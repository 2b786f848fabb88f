// The alarm console on its screen, worked by touches.

#include "core/SLVfonctions.h"
#include "events/Klaxon.h"
#include "screens/AlarmConsoleFixture.h"
#include "screens/console/ConsoleHead.h"
#include "screens/touch/Colours.h"
#include "screens/touch/TouchImage.h"

TEST_F(ConsoleTest, ListComesAndGoesWithTheAlarms) {
    Load();
    EXPECT_EQ(AlarmConsole::Loaded(), console);
    EXPECT_TRUE(Child("txtNoAlarm").isVisible());
    EXPECT_FALSE(Child("imgPointer").isVisible());
    Bus(2, 255, 1, 0);
    Bus(1, 7, 0, 1);
    EXPECT_EQ(Places(), QStringList({"P01-C07", "P02-Q62"}));
    EXPECT_EQ(SelectedPlace(), "P02-Q62");
    EXPECT_FALSE(Child("txtNoAlarm").isVisible());
    const auto& grid = Child<AlarmGrid>("grdAlarms");
    EXPECT_EQ(Child("imgPointer").geometry().center().y(),
              grid.y() + grid.RowHeight() + (grid.RowHeight() - 1) / 2);
    Bus(2, 255, 1, 1);
    Bus(1, 7, 1, 0);
    EXPECT_EQ(console->RowCount(), 0);
    EXPECT_TRUE(Child("txtNoAlarm").isVisible());

    Site().setOptionScreen(0, false);
    Bus(2, 255, 1, 0);
    EXPECT_EQ(console->RowCount(), 0) << "the site doesn't want panels on the screen";
}

TEST_F(ConsoleTest, EngineReachesTheRowsAndAReactivatedAlarmTakesItsRow) {
    Load();
    Bus(1, 7, 0, 1);
    Bus(1, 7, 1, 1);
    Bus(1, 8, 0, 1);
    clock.Advance(61000);
    EventClass event;
    event.setID(console->RowData(1));
    event.setAff(ReactivatedAff);
    event.setGDH(clock.Now());
    event.setNum(77);
    AlarmConsole::Loaded()->TakeEvent(event);
    EXPECT_EQ(Places(), QStringList({"P01-C08", "P01-C07"}));
    EXPECT_EQ(console->RowText(1).left(27), "     77 2025-11-25 02:44:11")
        << "the row's time begins anew";
    EXPECT_EQ(console->RowData(1), EventClass(1, 7, 1, 255).ID());
    const AlarmRows& rows = Child<AlarmGrid>("grdAlarms").Rows();
    EXPECT_EQ(Colours::FromBgr(rows.Row(1).colour).name(), "#ff00ff");

    EXPECT_EQ(SelectedPlace(), "P01-C07");
    Click("imgAcquit");
    EXPECT_EQ(console->RowCount(), 2);
    EXPECT_EQ(rows.Row(1).colour, AlarmRows::White);
    EXPECT_EQ(engine->Commands().Count(), 0);

    AlarmConsole::Loaded()->EmptyList();
    EXPECT_EQ(console->RowCount(), 0);
    EXPECT_EQ(console->RowText(0), "");
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
        EXPECT_EQ(Horn().playing, "") << one.what;
        EXPECT_EQ(console->RowCount(), one.stays ? 1 : 0) << one.what;
        ASSERT_EQ(engine->Commands().Count(), queued + int(one.onBus)) << one.what;
        ASSERT_EQ(routed.size(), qsizetype(one.onBus)) << one.what;
        if (!one.onBus)
            continue;
        const CommandPtr command = engine->Commands().Item(++queued);
        EXPECT_EQ(command->CmdType(), CommandTypes::Write);
        EXPECT_EQ(command->Module(), one.event.Panel());
        EXPECT_EQ(command->Address(), 67);
        EXPECT_EQ(command->Values(), Words{2});
        EXPECT_EQ(routed[0].ID(), EventClass(one.event.Panel(), 254, 0, 0).ID());
    }
}

TEST_F(ConsoleTest, AcknowledgingAsksForTheOperatorAndSilencingDoesNot) {
    Load();
    Bus(1, 7, 0, 1);
    Global::Get().userLevel = 0;
    Alarme(5);
    Click("imgAcquit");
    EXPECT_EQ(console->RowCount(), 1);
    EXPECT_NE(Horn().playing, "") << "given up: nothing happens at all";
    Click("imgArretKlaxon");
    EXPECT_EQ(Horn().playing, "");
    EXPECT_EQ(console->RowCount(), 1);

    EXPECT_EQ(prompts, 1);
    codes = QStringList{"WRONG", "OPERATOR"};
    Alarme(5);
    Click("imgAcquit");
    EXPECT_EQ(prompts, 3) << "asked until the level is there";
    EXPECT_EQ(console->RowCount(), 0);
    EXPECT_EQ(Horn().playing, "");
    EXPECT_EQ(Child<QLabel>("lblLogin_0").text(), "1");

    Bus(1, 7, 0, 1);
    Global::Get().userLevel = 0;
    Site().setUserLevel(1, 2);
    Click("imgAcquit");
    EXPECT_EQ(prompts, 3);
    EXPECT_EQ(console->RowCount(), 0) << "a site without an operator is open";
    Alarme(5);
    Click("imgAcquit");
    EXPECT_NE(Horn().playing, "") << "no alarm, no acknowledgement";
}

TEST_F(ConsoleTest, InstructionOfTheSelectedAlarm) {
    Site().setConsigne(4, QStringLiteral("  Close the valve  "));
    Site().Panel(1).Channel(7).setHelpNum(4);
    Site().Panel(1).Channel(8).setHelpNum(5);
    Site().Panel(1).Channel(24).setHelpNum(4);
    const auto ask = [&](qint16 chnl) {
        console->EmptyList();
        console->TakeEvent({1, chnl, 1, chnl == 255 ? qint16(0) : qint16(3)});
        messages.clear();
        instructions.clear();
        alarms.clear();
        Click("imgConsigne");
    };
    Load();
    Click("imgConsigne");
    EXPECT_TRUE(messages.isEmpty() && instructions.isEmpty());
    ask(7);
    EXPECT_EQ(instructions, QStringList("Close the valve"));
    EXPECT_EQ(alarms, QStringList(console->RowText(0).replace(u' ', QChar(0xA0))));
    EXPECT_TRUE(messages.isEmpty());
    ask(8);
    EXPECT_EQ(instructions, QStringList(GetText(710021))) << "an instruction without a text";
    for (const qint16 chnl : {9, 24, 255}) {
        ask(chnl);
        EXPECT_TRUE(instructions.isEmpty()) << chnl;
        ASSERT_EQ(messages.size(), 1) << chnl;
        EXPECT_EQ(messages[0].text, GetText(710021)) << chnl;
        EXPECT_EQ(messages[0].buttons, 16) << chnl;
    }

    // An alarm sends every other screen away, and a user who stays away the console too.
    whileDialog = [] { Forms::UnloadAllBut({}); };
    ask(7);
    EXPECT_EQ(instructions.size(), 1);
    EXPECT_EQ(Forms::Find(QStringLiteral("wRunAlarms")), nullptr);
}

TEST_F(ConsoleTest, TouchesAndScrollButtonsMoveTheSelection) {
    Load();
    for (qint16 channel = 1; channel <= 20; ++channel)
        Bus(3, channel, 0, 1);
    const auto& grid = Child<AlarmGrid>("grdAlarms");
    const int page = grid.height() / grid.RowHeight();
    EXPECT_GE(page, 11);
    EXPECT_EQ(SelectedPlace(), "P03-C01");
    EXPECT_FALSE(Child("imgPointer").isVisible()) << "the selection is out of sight";
    Look();
    QTest::mouseClick(&Child("grdAlarms"), Qt::LeftButton, {}, {50, grid.RowHeight() * 2 + 5});
    EXPECT_EQ(SelectedPlace(), "P03-C18");
    EXPECT_TRUE(Child("imgPointer").isVisible());
    Click("imgControl_6");
    EXPECT_EQ(grid.Rows().Current(), 3);
    Click("imgControl_5");
    Click("imgControl_5");
    EXPECT_EQ(grid.Rows().Current(), 1);
    Click("imgControl_7");
    EXPECT_EQ(grid.Rows().Current(), 1 + page);
    EXPECT_EQ(grid.Rows().First(), 2);
    EXPECT_TRUE(Child("imgPointer").isVisible());
    Click("imgControl_4");
    EXPECT_EQ(grid.Rows().Current(), 1);
    Click("imgControl_4");
    EXPECT_EQ(grid.Rows().Current(), 0);
}

TEST_F(ConsoleTest, BusIsStartedAndStoppedByTheConfigurationLevelOnly) {
    Load();
    EXPECT_EQ(Child<QAbstractButton>("imgStopRun").text(), "Bus stopped");
    Click("imgStopRun");
    EXPECT_FALSE(engine->Run());
    Global::Get().userLevel = 2;
    engine->CommBus().setPortOpen(true);
    Click("imgStopRun");
    EXPECT_TRUE(engine->Run());
    EXPECT_EQ(Child<QAbstractButton>("imgStopRun").text(), "Bus running");
    Click("imgStopRun");
    EXPECT_FALSE(engine->Run());
    EXPECT_EQ(Child<QAbstractButton>("imgStopRun").text(), "Bus stopped");
}

TEST_F(ConsoleTest, WayToTheMenuKeepsTheList) {
    struct Menu : ScreenForm {
        Menu()
            : ScreenForm(QStringLiteral("wMain")) {}
    };
    Forms::Register(QStringLiteral("wMain"), [] { return new Menu; });
    Load();
    Bus(1, 7, 1, 3);
    Bus(2, 255, 1, 0);
    const QStringList texts{console->RowText(0), console->RowText(1)};
    Click("imgNavig_0");
    EXPECT_EQ(NbInstances(QStringLiteral("wMain")), 0) << "level 1 stays here";
    Global::Get().userLevel = 2;
    Click("imgNavig_0");
    EXPECT_EQ(NbInstances(QStringLiteral("wMain")), 1);
    EXPECT_EQ(NbInstances(QStringLiteral("wRunAlarms")), 0);
    EXPECT_EQ(IniRead(QStringLiteral("LastAlarms"), QStringLiteral("1"), {}),
              "02FF0100" + texts[0]);

    Bus(1, 9, 1, 3);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    Load();
    EXPECT_EQ(console->RowText(0), texts[0]);
    EXPECT_EQ(console->RowText(1), texts[1]);
    EXPECT_EQ(console->RowCount(), 2);
    Forms::Register(QStringLiteral("wMain"), nullptr);
}

TEST_F(ConsoleTest, MissingPanelsStandInARow) {
    Site().Panel(1).setNumero(1);
    Site().Panel(3).setNumero(3);
    Site().Panel(3).setErrCptr(2, 1);
    Site().Panel(4).setErrCptr(2, 1);
    Site().Panel(1).setErrCptr(1, 3);
    ConsoleHead::OverrideWatch(ConsoleHead::Watch{BusState::Running, {3}, false});
    Load();
    const auto numbers = [&] {
        QStringList list;
        for (int n = 1; n < 65; ++n) {
            auto* label = console->findChild<QLabel*>(QStringLiteral("lblMissingPanel_%1").arg(n));
            if (label == nullptr)
                break;
            EXPECT_TRUE(console->rect().contains(label->geometry())) << n;
            list.append(label->text());
        }
        return list;
    };
    EXPECT_EQ(numbers(), QStringList("3")) << "panel 4 isn't active, panel 1 still answers";
    const QRect pattern = Child("lblMissingPanel_0").geometry();
    EXPECT_FALSE(Child("lblMissingPanel_0").isVisible());
    EXPECT_EQ(Child("lblMissingPanel_1").x(), pattern.x() + qRound(1.2 * pattern.width()));

    for (int panel = 1; panel <= 64; ++panel) {
        Site().Panel(panel).setNumero(quint8(panel));
        Site().Panel(panel).setModel(Models::Q7000);
        Site().Panel(panel).setActive(true);
        Site().Panel(panel).setErrCptr(2, 1);
    }
    // The console looks each second.
    EXPECT_TRUE(QTest::qWaitFor([&] { return numbers().size() > 1; }, 60000));
    const QStringList all = numbers();
    EXPECT_EQ(all.last(), u'+' + QString::number(65 - all.size()));
    for (int panel = 1; panel <= 64; ++panel)
        Site().Panel(panel).setErrCptr(2, 0);
    clock.Advance(5000);
    EXPECT_TRUE(QTest::qWaitFor([&] { return numbers().isEmpty(); }, 60000));
    ConsoleHead::OverrideWatch(std::nullopt);
    EXPECT_EQ(Child<QLabel>("lblDateTime").text(), "2025-11-25 02:43:15");
}

TEST_F(ConsoleTest, BeatOfTheBusAndTheUser) {
    Load();
    const auto shown = [&] {
        QString list;
        for (int n = 0; n < 3; ++n)
            list +=
                QString::number(Child(qPrintable(QStringLiteral("imgComm_%1").arg(n))).isVisible());
        return list;
    };
    EXPECT_EQ(shown(), "100");
    Q_EMIT engine->PollDone();
    EXPECT_EQ(shown(), "010");
    Q_EMIT engine->Synchronising(true);
    Q_EMIT engine->PollDone();
    EXPECT_EQ(shown(), "001");
    Q_EMIT engine->Synchronising(false);
    EXPECT_EQ(shown(), "100");

    EXPECT_FALSE(Child("imgCommWatch").isVisible());
    EXPECT_FALSE(Child("imgTelecommande").isVisible());
    Global::Get().userLevel = 3;
    Site().Panel(4).setActive(true);
    console->BringToFront();
    EXPECT_TRUE(Child("imgCommWatch").isVisible());
    EXPECT_TRUE(Child("imgTelecommande").isVisible());
    EXPECT_EQ(Child<QLabel>("lblLogin_0").text(), "3");
    EXPECT_EQ(Child<QLabel>("lblLogin_1").text(), "3");
    Global::Get().userLevel = 0;
    Q_EMIT engine->UserChanged();
    EXPECT_EQ(Child<QLabel>("lblLogin_0").text(), "0");
}

TEST_F(ConsoleTest, EveryControlHasItsPlaceAndItsTextInEveryLanguage) {
    for (qint16 language = 0; language < 4; ++language) {
        IniWrite(QStringLiteral("General"), QStringLiteral("Language"), QString::number(language));
        ASSERT_TRUE(Config::OpenConfigBase());
        Load();
        QList<QWidget*> seen;
        for (QWidget* child : console->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            const QString name = child->objectName();
            if (!child->isVisible() || name == "imgBackPicture" || name == "lblLogin_1")
                continue;
            EXPECT_TRUE(console->rect().contains(child->geometry())) << qPrintable(name);
            for (const QWidget* other : seen)
                EXPECT_FALSE(child->geometry().intersects(other->geometry()))
                    << qPrintable(name) << ' ' << qPrintable(other->objectName());
            seen.append(child);
        }
        for (const char* name : {"imgAcquit", "imgArretKlaxon", "imgConsigne", "imgHisto",
                                 "imgTelecommande", "imgStopRun", "imgNavig_0"}) {
            const auto& tile = Child<TouchImage>(name);
            const QRect room = tile.CaptionArea();
            const QRect text =
                QFontMetrics(tile.font()).boundingRect(room, Qt::TextWordWrap, tile.text());
            EXPECT_LE(text.width(), room.width()) << qPrintable(tile.text());
            EXPECT_LE(text.height(), room.height()) << qPrintable(tile.text());
            EXPECT_GE(tile.height(), 48);
        }
        console->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(ConsoleTest, WaysToTheHistoryAndToTheRemoteControl) {
    RegisterScreens();
    Messages::Install([this](const QString& text, int buttons, bool) {
        messages.append({text, buttons});
        return int(Messages::Ok);
    });
    Site().Panel(5).setActive(true);
    Load();
    Bus(1, 7, 0, 1);
    Click("imgHisto");
    auto* history = dynamic_cast<ScreenForm*>(Forms::Find(QStringLiteral("wHistoric")));
    ASSERT_NE(history, nullptr);
    EXPECT_TRUE(history->isVisible());
    QTest::mouseClick(history->findChild<QWidget*>(QStringLiteral("imgClose")), Qt::LeftButton);
    EXPECT_EQ(NbInstances(QStringLiteral("wHistoric")), 0);
    EXPECT_EQ(Forms::Find(QStringLiteral("wRunAlarms")), console) << "back where it came from";
    EXPECT_EQ(console->RowCount(), 1);

    Global::Get().userLevel = 0;
    Click("imgTelecommande");
    EXPECT_EQ(NbInstances(QStringLiteral("wTeleCmdes")), 0) << "given up";
    codes = QStringList("OPERATOR");
    Click("imgTelecommande");
    EXPECT_EQ(NbInstances(QStringLiteral("wTeleCmdes")), 1);
    EXPECT_TRUE(messages.isEmpty()) << qPrintable(messages.value(0).text);
}

TEST_F(ConsoleTest, WhatIsUrgentStaysInItsPlaceAndUncovered) {
    const QStringList urgent{"imgAcquit",    "imgArretKlaxon", "imgConsigne",  "imgHisto",
                             "imgControl_4", "imgControl_5",   "imgControl_6", "imgControl_7"};
    Load();
    QList<QRect> places;
    for (const QString& name : urgent)
        places.append(Child(qPrintable(name)).geometry());
    const auto check = [&](const char* when) {
        for (int i = 0; i < urgent.size(); ++i) {
            const QWidget& image = Child(qPrintable(urgent[i]));
            const QRect area = image.geometry();
            EXPECT_EQ(area, places[i]) << qPrintable(urgent[i]) << ' ' << when;
            EXPECT_TRUE(image.isVisible() && image.isEnabled()) << qPrintable(urgent[i]);
            for (const QPoint& point : {area.topLeft(), area.center(), area.bottomRight()})
                EXPECT_EQ(console->childAt(point), &image) << qPrintable(urgent[i]) << ' ' << when;
        }
    };
    check("without alarms");
    for (int panel = 1; panel <= 64; ++panel) {
        Site().Panel(panel).setNumero(quint8(panel));
        Site().Panel(panel).setModel(Models::P5000);
        Site().Panel(panel).setActive(true);
        Site().Panel(panel).setErrCptr(2, 1);
        Bus(qint16(panel), 255, 1, 0);
    }
    Global::Get().userLevel = 3;
    Q_EMIT engine->UserChanged();
    Q_EMIT engine->Synchronising(true);
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return console->findChild<QLabel*>(QStringLiteral("lblMissingPanel_2")); }, 60000));
    check("every panel lost");
}

TEST_F(ConsoleTest, NameOfTheSite) {
    IniWrite(QStringLiteral("Files"), QStringLiteral("LastUsed"),
             QStringLiteral("C:\\Sites\\Works.1.kv2"));
    Load();
    EXPECT_EQ(Child<QLabel>("lblFileName").text(), "Works.1");
    IniWrite(QStringLiteral("Files"), QStringLiteral("LastUsed"), QStringLiteral("/a/Plant.kv2"));
    console->BringToFront();
    EXPECT_EQ(Child<QLabel>("lblFileName").text(), "Plant");
    IniWrite(QStringLiteral("Files"), QStringLiteral("LastUsed"), QString());
    console->BringToFront();
    EXPECT_EQ(Child<QLabel>("lblFileName").text(), "Unnamed");
}

TEST_F(ConsoleTest, BurstOfEventsIsPaintedOnce) {
    struct Paints : QObject {
        int count = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            count += event->type() == QEvent::Paint;
            return false;
        }
    } paints;
    Load();
    Bus(1, 1, 0, 1);
    QTest::qWait(20);
    Child("grdAlarms").installEventFilter(&paints);
    for (qint16 n = 0; n < 62; ++n)
        Bus(qint16(n % 3 + 1), qint16(n % 24 + 1), 0, 1);
    EXPECT_EQ(paints.count, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paints.count > 0; }, 60000));
    QTest::qWait(20);
    EXPECT_EQ(paints.count, 1);
    EXPECT_EQ(console->RowCount(), 24);
}
