// One remote-controlled module: lamps, selection, orders and the wait for them.

#include "model/Models.h"
#include "screens/remote/Telecommande.h"
#include "screens/remote/wTeleCmde.h"
#include "support/FakeModules.h"
#include "support/ScreensFixture.h"

namespace {

constexpr int Address = 9;
const QString Module = "wTeleCmde";

class TeleCmdeTest : public ScreensTest {
protected:
    TeleCmdeTest() {
        // No event brings the console to the front.
        SetOptions(0, 0, 0, 0);
        PanelClass& panel = AddPanel(Address, Models::P5000);
        panel.setTitle("Ventilation");
        panel.Channel(5).setScreenText("Supply fan");
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
    static Voyant* Lamp(int channel) { return Find<Voyant>(Module, Part("lblVoyant", channel)); }
    static QString Text(const char* label) { return TextOf(Module, label); }
    static void Choose(int channel) { Tap(Module, "lblVoyant", channel); }
    static void Order(int index) { Tap(Module, "ImgTcmde", index); }
    static bool Tells(int text) {
        return Child(Module, "lblWait")->isVisible() && Text("lblWait") == GetText(text);
    }
    static bool Waits() { return Tells(712005); }
    /// Register and value of each word that was written.
    QList<int> Written() const {
        QList<int> words;
        for (const QByteArray& frame : link->sent) {
            if (frame[0] == Address && frame[1] == 6)
                words += {FakeModules::WordAt(frame, 2), FakeModules::WordAt(frame, 4)};
        }
        return words;
    }

    FakeModules modules;
};

} // namespace

TEST_F(TeleCmdeTest, TheChosenLampIsMarkedAndShowsItsStateWithAndWithoutColour) {
    Open(false);
    EXPECT_EQ(Text("lblNum"), "09");
    EXPECT_EQ(Text("lblModType"), "P5000");
    EXPECT_EQ(Text("lblTitle"), "Remote control - Ventilation");
    EXPECT_EQ(Screen(Module)->Indices("lblVoyant").size(), 12);
    const QWidget* frame = Child(Module, "shpSelection");
    EXPECT_FALSE(frame->isVisible());
    for (const int channel : {12, 1, 5}) {
        Choose(channel);
        EXPECT_EQ(Text("lblChnlNo"), QString::number(channel));
        EXPECT_EQ(frame->geometry(), Lamp(channel)->geometry());
        EXPECT_TRUE(frame->isVisible());
    }
    EXPECT_EQ(Text("lblChnlText"), "Supply fan");

    /// Light pixels beside the disc, where no colour of it lies, or in it where it is hatched.
    const auto marked = [] {
        const QImage look = Lamp(5)->grab().toImage();
        int light = 0;
        for (int x = 0; x < look.width(); ++x)
            for (int y = 0; y < look.height() / 2; ++y)
                light += qGray(look.pixel(x, y)) > 140 ? 1 : 0;
        return light;
    };
    const int bare = marked();
    const struct {
        int state, failures;
        QString colour, word;
        int mark;
    } states[] = {{1, 0, "#ff0000", "Active", 50},      // a ring
                  {2, 0, "#ff00ff", "Other state", 20}, // a cross
                  {0, 0, "#808080", "At rest", -1},
                  {0, 1, {}, GetText(714103), 50}}; // hatched
    PanelClass& panel = Site().Panel(Address);
    for (const auto& [state, failures, colour, word, mark] : states) {
        panel.Channel(5).setState(qint16(state));
        panel.setErrCptr(2, qint16(failures));
        EXPECT_TRUE(Comes([word = word] { return Text("lblState") == word; })) << state;
        EXPECT_TRUE(colour.isEmpty() || Lamp(5)->Colour().name() == colour) << state;
        EXPECT_GT(marked(), bare + mark) << state;
    }
    EXPECT_TRUE(Tells(714103));
}

TEST_F(TeleCmdeTest, OrderNeedsARunningBusAndAChannel) {
    Open(false);
    Choose(5);
    for (const int button : {0, 1, 2})
        Order(button);
    Screen(Module)->Unload();
    RemoveUnloaded();
    Open(true);
    Order(1);
    EXPECT_EQ(boxes, QStringList(3, GetText(220101)) + QStringList(GetText(220100)));
    EXPECT_EQ(styles, QList<int>(4, 16));
    EXPECT_EQ(engine->Commands().Count(), 0);
}

TEST_F(TeleCmdeTest, OrderIsWrittenToTheChannelsRegister) {
    Open(true);
    const struct { int button, channel, value; } orders[] = {{0, 1, 0}, {1, 12, 3}, {2, 5, 6}};
    for (const auto& [button, channel, value] : orders) {
        link->sent.clear();
        Choose(channel);
        Order(button);
        EXPECT_TRUE(Waits());
        EXPECT_TRUE(Comes([] { return !Waits(); }));
        EXPECT_EQ(Written(), (QList<int>{16 + channel, value}));
    }
    EXPECT_TRUE(boxes.isEmpty());
    EXPECT_TRUE(Screen(Module)->Visible());

    // An order that is taken back at once goes out as well, and in order.
    link->sent.clear();
    for (const int button : {1, 1, 0})
        Order(button);
    EXPECT_EQ(engine->Commands().Count(), 2) << "the same order waits once";
    EXPECT_TRUE(Comes([] { return !Waits(); }));
    EXPECT_EQ(Written(), (QList<int>{21, 3, 21, 0}));
}

TEST_F(TeleCmdeTest, WaitEndsWhenTheOrderIsGivenUp) {
    Open(true);
    modules.Remove(Address);
    Choose(2);
    Order(1);
    EXPECT_TRUE(Comes([] { return !Waits(); }));
    EXPECT_EQ(engine->Commands().Count(), 0);
    EXPECT_GE(Written().size(), 2 * 3) << "tried thrice";
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
    Tap(Module, "imgClose");
    EXPECT_EQ(NbInstances(Module), 0);
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
    EXPECT_TRUE(Comes([&] { return Written().size() == 4 && !Waits(); }));
    EXPECT_EQ(Written().value(2), 20);
}

TEST_F(TeleCmdeTest, InstructionOfTheChosenChannel) {
    Site().setConsigne(4, "  Open the flap by hand ");
    Site().Panel(Address).Channel(12).setHelpNum(4);
    Open(false);
    Tap(Module, "imgConsigne");
    EXPECT_EQ(boxes, QStringList(GetText(220100)));
    EXPECT_EQ(styles, QList<int>{16});
    Choose(12);
    EXPECT_EQ(ReadInstruction(Module), QStringList({"P09-C12 ", "Open the flap by hand"}));
    Choose(5);
    EXPECT_EQ(ReadInstruction(Module), QStringList({"P09-C05 Supply fan", GetText(710021)}));
    EXPECT_EQ(boxes.size(), 1);
}
