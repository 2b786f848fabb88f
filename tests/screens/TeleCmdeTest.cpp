// One remote-controlled module: lamps, selection, orders and the wait for them.

#include "core/Config.h"
#include "core/FormNames.h"
#include "model/Models.h"
#include "screens/remote/Telecommande.h"
#include "screens/remote/wTeleCmde.h"
#include "support/FakeModules.h"
#include "support/ScreensFixture.h"

namespace {

constexpr int Address = 9;

class TeleCmdeTest : public ScreensTest {
protected:
    TeleCmdeTest() {
        // No event brings the console to the front.
        SetOptions(0, 0, 0, 0);
        PanelClass& panel = AddPanel(Address, Models::P5000);
        panel.setTitle(QStringLiteral("Ventilation"));
        panel.Channel(5).setScreenText(QStringLiteral("Supply fan"));
        // Polled in another hour: only commands are on the line.
        panel.setNextPoll(DateTimes::Now() + 3600 * platform::OneSecond);
        link->setPortOpen(true);
        link->answer = [this](const QByteArray& frame) { return modules.Answer(frame); };
        modules[Address];
    }

    void Open(bool run) {
        if (run) {
            engine->setRun(true);
            link->sent.clear();
        }
        auto* screen = new wTeleCmde;
        screen->setPanel(&Site().Panel(Address));
        screen->Show();
    }
    static void Choose(int channel) {
        Tap(FormNames::wTeleCmde, QStringLiteral("lblVoyant_%1").arg(channel));
    }
    static void Order(int index) {
        Tap(FormNames::wTeleCmde, QStringLiteral("ImgTcmde_%1").arg(index));
    }
    static bool Tells(int text) {
        return Child(FormNames::wTeleCmde, QStringLiteral("lblWait"))->isVisible() &&
               TextOf(FormNames::wTeleCmde, QStringLiteral("lblWait")) == GetText(text);
    }
    static bool Waits() { return Tells(712005); }
    static QString Lamp(int channel) {
        const auto name = QStringLiteral("lblVoyant_%1").arg(channel);
        return dynamic_cast<Voyant&>(*Child(FormNames::wTeleCmde, name)).Colour().name();
    }
    QList<QByteArray> Writes() const {
        QList<QByteArray> writes;
        for (const QByteArray& frame : link->sent) {
            if (frame[1] == 6)
                writes += frame;
        }
        return writes;
    }

    FakeModules modules;
};

} // namespace

TEST_F(TeleCmdeTest, LampsShowTheStatesWhileTheScreenStands) {
    Open(false);
    EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblNum")), "09");
    EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblModType")), "P5000");
    EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblTitle")),
              "Remote control - Ventilation");
    EXPECT_EQ(Screen(FormNames::wTeleCmde)->Indices(QStringLiteral("lblVoyant")),
              QList<int>({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    Choose(5);
    const std::pair<int, std::pair<const char*, const char*>> states[] = {
        {1, {"#ff0000", "Active"}}, {2, {"#ff00ff", "Other state"}}, {0, {"#808080", "At rest"}}};
    for (const auto& [state, shown] : states) {
        Site().Panel(Address).Channel(5).setState(qint16(state));
        EXPECT_TRUE(Comes([colour = shown.first] { return Lamp(5) == colour; })) << state;
        EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblState")), shown.second);
    }
}

TEST_F(TeleCmdeTest, StatesAndAMissingModuleShowWithoutColour) {
    Open(false);
    Choose(5);
    const auto grey = [] {
        return Child(FormNames::wTeleCmde, QStringLiteral("lblVoyant_5"))
            ->grab()
            .toImage()
            .convertToFormat(QImage::Format_Grayscale8);
    };
    PanelClass& panel = Site().Panel(Address);
    QList<QImage> looks;
    for (const int state : {0, 1, 2, 3}) {
        panel.Channel(5).setState(qint16(state == 3 ? 0 : state));
        panel.setErrCptr(2, state == 3 ? 1 : 0);
        // Beside the disc, where no colour of it lies, or in it where it is hatched.
        EXPECT_TRUE(Comes([&] { return looks.isEmpty() || grey() != looks.last(); })) << state;
        looks += grey();
    }
    const auto marked = [](const QImage& look) {
        int light = 0;
        for (int x = 0; x < look.width(); ++x)
            for (int y = 0; y < look.height() / 2; ++y)
                light += qGray(look.pixel(x, y)) > 140 ? 1 : 0;
        return light;
    };
    EXPECT_GT(marked(looks[1]), marked(looks[0]) + 50) << "a ring";
    EXPECT_GT(marked(looks[2]), marked(looks[0]) + 20) << "a cross";
    EXPECT_GT(marked(looks[3]), marked(looks[0]) + 50) << "hatched";
    EXPECT_NE(marked(looks[1]), marked(looks[2]));
    EXPECT_TRUE(Tells(714103));
    EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblState")), GetText(714103));
}

TEST_F(TeleCmdeTest, TouchedLampIsChosenAndMarked) {
    Open(false);
    EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblChnlNo")), "0");
    EXPECT_FALSE(Child(FormNames::wTeleCmde, QStringLiteral("shpSelection"))->isVisible());
    for (const int channel : {5, 12, 1}) {
        Choose(channel);
        EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblChnlNo")),
                  QString::number(channel));
        EXPECT_EQ(
            Child(FormNames::wTeleCmde, QStringLiteral("shpSelection"))->geometry(),
            Child(FormNames::wTeleCmde, QStringLiteral("lblVoyant_%1").arg(channel))->geometry());
        EXPECT_TRUE(Child(FormNames::wTeleCmde, QStringLiteral("shpSelection"))->isVisible());
    }
    Choose(5);
    EXPECT_EQ(TextOf(FormNames::wTeleCmde, QStringLiteral("lblChnlText")), "Supply fan");
}

TEST_F(TeleCmdeTest, OrderNeedsARunningBusAndAChannel) {
    Open(false);
    Choose(5);
    for (const int button : {0, 1, 2})
        Order(button);
    EXPECT_EQ(boxes, QStringList(3, GetText(220101)));
    EXPECT_EQ(styles, QList<int>(3, 16));
    Screen(FormNames::wTeleCmde)->Unload();
    RemoveUnloaded();
    boxes.clear();
    Open(true);
    Order(1);
    EXPECT_EQ(boxes, QStringList(GetText(220100)));
    EXPECT_EQ(styles.last(), 16);
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_FALSE(Waits());
}

TEST_F(TeleCmdeTest, OrderIsWrittenToTheChannelsRegister) {
    Open(true);
    const int values[] = {0, 3, 6};
    for (const auto& [button, channel] : {std::pair(0, 1), std::pair(1, 12), std::pair(2, 5)}) {
        link->sent.clear();
        Choose(channel);
        Order(button);
        EXPECT_TRUE(Waits());
        EXPECT_TRUE(Comes([] { return !Waits(); }));
        ASSERT_EQ(Writes().size(), 1);
        const QByteArray frame = Writes()[0];
        EXPECT_EQ(frame[0], Address);
        EXPECT_EQ(FakeModules::WordAt(frame, 2), 16 + channel);
        EXPECT_EQ(FakeModules::WordAt(frame, 4), values[button]);
    }
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_TRUE(Screen(FormNames::wTeleCmde)->Visible());
}

TEST_F(TeleCmdeTest, OrderTakenBackAtOnceGoesOutAsWellAndInOrder) {
    Open(true);
    Choose(5);
    Order(1);
    Order(1);
    Order(0);
    EXPECT_EQ(engine->Commands().Count(), 2) << "the same order waits once";
    EXPECT_TRUE(Comes([] { return !Waits(); }));
    ASSERT_EQ(Writes().size(), 2);
    EXPECT_EQ(FakeModules::WordAt(Writes()[0], 4), 3);
    EXPECT_EQ(FakeModules::WordAt(Writes()[1], 4), 0);
}

TEST_F(TeleCmdeTest, WaitEndsWhenTheOrderIsGivenUp) {
    Open(true);
    modules.Remove(Address);
    Choose(2);
    Order(1);
    EXPECT_TRUE(Comes([] { return !Waits(); }));
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_GE(Writes().size(), 3);
    EXPECT_TRUE(boxes.isEmpty()) << "no box stops the operator";
    EXPECT_TRUE(Tells(714104));
    Choose(3);
    EXPECT_FALSE(Tells(714104));
}

TEST_F(TeleCmdeTest, WaitEndsWithTheBusTheScreenAndTheEngine) {
    Open(true);
    Choose(2);
    Order(1);
    EXPECT_TRUE(Waits());
    engine->setRun(false);
    EXPECT_TRUE(Comes([] { return !Waits(); }));
    EXPECT_EQ(engine->Commands().Count(), 1) << "kept for the next start of the bus";

    engine->setRun(true);
    Order(0);
    Tap(FormNames::wTeleCmde, QStringLiteral("imgClose"));
    EXPECT_EQ(NbInstances(FormNames::wTeleCmde), 0);
    RemoveUnloaded();
    EXPECT_TRUE(Comes([&] { return engine->Commands().Count() == 0; }))
        << "what was ordered goes out without the screen";

    Open(false);
    Choose(3);
    Order(1);
    engine->Form_Unload();
    EXPECT_TRUE(Comes([] { return !Waits(); }));
    engine.reset();
    Order(1);
    EXPECT_EQ(boxes.last(), GetText(220101));
}

// A touch comes through while the round still works on its queue: the order must neither hold the
// round up nor be lost.
TEST_F(TeleCmdeTest, PressInsideARoundLetsTheRoundEnd) {
    Open(true);
    Choose(4);
    bool pressed = false;
    link->answer = [&](const QByteArray& frame) {
        if (!pressed) {
            pressed = true;
            QTimer::singleShot(0, [] { Order(1); });
        }
        return modules.Answer(frame);
    };
    engine->SendCommand(std::make_shared<CommandClass>(qint16(Address), 67, Words{2}));
    EXPECT_TRUE(Comes([&] { return Writes().size() == 2 && !Waits(); }));
    ASSERT_EQ(Writes().size(), 2);
    EXPECT_EQ(FakeModules::WordAt(Writes()[1], 2), 20);
}

TEST_F(TeleCmdeTest, InstructionOfTheChosenChannel) {
    Site().setConsigne(4, QStringLiteral("  Open the flap by hand "));
    Site().Panel(Address).Channel(12).setHelpNum(4);
    Site().Panel(Address).Channel(11).setHelpNum(5);
    Open(false);
    Tap(FormNames::wTeleCmde, QStringLiteral("imgConsigne"));
    EXPECT_EQ(boxes, QStringList(GetText(220100)));
    EXPECT_EQ(styles, QList<int>{16});
    const auto told = [&](int channel) {
        Choose(channel);
        QStringList shown;
        QTimer::singleShot(20, [&] {
            const QString dialog = QStringLiteral("dlgConsigne");
            shown = {TextOf(dialog, QStringLiteral("lblAlarm")).replace(QChar(0xA0), u' '),
                     TextOf(dialog, QStringLiteral("lblConsigne"))};
            Tap(dialog, QStringLiteral("imgClose"));
        });
        Tap(FormNames::wTeleCmde, QStringLiteral("imgConsigne"));
        return shown;
    };
    const QString none = GetText(710021);
    EXPECT_EQ(told(12), QStringList({"P09-C12 ", "Open the flap by hand"}));
    EXPECT_EQ(told(11), QStringList({"P09-C11 ", none})) << "a number without a text";
    EXPECT_EQ(told(5), QStringList({"P09-C05 Supply fan", none}));
    EXPECT_EQ(boxes.size(), 1);
}
