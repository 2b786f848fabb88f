#include "events/TextProcs.h"

#include "model/Models.h"
#include "support/Bench.h"
#include "support/Rows.h"

namespace {

using Rows::Stars;

/// What a history line says, each field at its full text.
struct Fields {
    QString number = QStringLiteral("0000123");
    QString display;
    QString parameter;
    QString origin;
    QString panelClock;
    QString common;
    QString specific;
};

class HistoLine : public Bench {
protected:
    HistoLine() {
        AddPanel(12, Models::Q6200XT);
        ChannelClass& channel = Site().Panel(12).Channel(7);
        channel.setBibNum(64);
        channel.setScreenText(QStringLiteral("Forty columns of a text, all of them use|tail"));
        Site().setBiblio(64, QStringLiteral("High temperature"));
        Global::Get().userName = QStringLiteral("MANAGER");
        Global::Get().userLevel = 3;
    }

    QString Screen(qint16 panel, qint16 chnl, qint16 param, qint16 aff, qint32 panelClock = 0) {
        EventClass event(panel, chnl, param, aff);
        event.setNum(123);
        event.setGDH(clock.Now());
        event.setClock(panelClock);
        return TextProcs::FormateHistoScreen(event);
    }

    static QString ScreenOf(const Fields& fields) {
        return Rows::At(162, {{0, fields.number},
                              {11, fields.display},
                              {27, fields.parameter},
                              {39, fields.origin},
                              {53, QStringLiteral("2024-03-15")},
                              {69, QStringLiteral("12:00:00")},
                              {80, QStringLiteral("\r\n")},
                              {82, fields.panelClock},
                              {93, fields.common},
                              {121, fields.specific}});
    }
    static QString FileOf(const Fields& fields) {
        return Rows::Joined({{QStringLiteral("2024-03-15"), 10},
                             {QStringLiteral("12:00:00"), 8},
                             {fields.number.left(6), 6},
                             {fields.panelClock, 7},
                             {fields.origin, 7},
                             {fields.parameter, 11},
                             {fields.display, 15},
                             {fields.common, 26},
                             {fields.specific, 40}});
    }
    /// The screen line and the file line that is made of it.
    static void Expect(const QString& line, const Fields& fields) {
        EXPECT_EQ(line, ScreenOf(fields));
        EXPECT_EQ(TextProcs::HistoScreenLineToHistoFileLine(line), FileOf(fields));
    }
    static QString Text(const char* text) { return QString::fromUtf8(text); }
    static QString Number() { return Fields().number; }
};

TEST_F(HistoLine, OfAPanelThatComesOrGoes) {
    Expect(Screen(12, 255, 1, 0),
           {Number(), Text("Panel lost"), Text("Alarm"), Text("P12-Q62"), QString(),
            Text("Communication lost"), Text("The panel no longer answers on the bus")});
    Expect(Screen(12, 255, 1, 1),
           {Number(), Text("Panel present"), Text("Return"), Text("P12-Q62"), QString(),
            Text("Communication restored"), Text("The panel answers on the bus again")});
}

TEST_F(HistoLine, OfSystemEvents) {
    const QString start = Text("START");
    const QString stop = Text("STOP");
    const QString system = Text("SYSTEM");
    const QString level = Text("LEVEL 3");
    const QString user = Text("MANAGER");
    Expect(Screen(12, 254, 0, 0),
           {Number(), Text("Ackn. on PC"), level, system, QString(), user, QString()});
    Expect(Screen(0, 254, 0, 1),
           {Number(), Text("APPLIC"), start, system, Stars(7), Stars(26), Stars(40)});
    Expect(Screen(0, 254, 0, 2),
           {Number(), Text("APPLIC"), stop, system, Stars(7), Stars(26), Stars(40)});
    Expect(Screen(0, 254, 0, 3),
           {Number(), Text("LOGIN"), level, system, QString(), user, QString()});
    Expect(Screen(0, 254, 0, 4),
           {Number(), Text("COMM"), start, system, QString(), QString(), QString()});
    Expect(Screen(0, 254, 0, 5),
           {Number(), Text("COMM"), stop, system, QString(), QString(), QString()});
    Expect(Screen(0, 254, 0, 7),
           {Number(), QString(), QString(), system, QString(), QString(), QString()});
}

TEST_F(HistoLine, OfThePanelsAtMidnight) {
    PanelClass& panel = Site().Panel(12);
    Fields fields{Number(), Text("Midnight state"),   Text("State"), Text("P12-Q62"),
                  Stars(7), Text("Panel never seen"), Stars(40)};
    Expect(Screen(12, 254, 0, 6), fields);

    panel.setActualModel(Models::Q6200XT);
    panel.setActive(false);
    fields.common = Text("Panel out of service");
    Expect(Screen(12, 254, 0, 6), fields);

    panel.setActive(true);
    for (int i = 1; i <= 24; ++i)
        panel.Channel(i).setState(qint16(i % 5));
    fields.common = Text("Channel states");
    fields.specific = Text("123401234012340123401234");
    Expect(Screen(12, 254, 0, 6), fields);

    // States of two digits fill the column, the rest is cut.
    for (int i = 1; i <= 24; ++i)
        panel.Channel(i).setState(qint16(10 + i % 5));
    fields.specific = Text("1112131410111213141011121314101112131410");
    Expect(Screen(12, 254, 0, 6), fields);

    panel.setModel(Models::Q7100);
    EXPECT_EQ(Screen(12, 254, 0, 6).mid(121, 40).trimmed().size(), 24) << "twelve channels";
}

TEST_F(HistoLine, OfChannels) {
    const QString specific = Text("Forty columns of a text, all of them use");
    Fields fields{Number(),        QString(),       Text("State"),
                  Text("P12-C07"), Text("0074565"), Text("High temperature"),
                  specific};
    const std::pair<qint16, const char*> states[] = {
        {0, "Normal"}, {1, "Active"}, {2, "Cable fault"}, {3, "First fault"}, {4, "Second fault"}};
    for (const auto& [aff, word] : states) {
        fields.display = Text(word);
        Expect(Screen(12, 7, 0, aff, 74565), fields);
    }
    fields.display = Text("Acknowledged");
    fields.parameter = Text("Alarm");
    fields.panelClock = Text("SYNCHRO");
    Expect(Screen(12, 7, 1, 1, -1), fields);
}

TEST_F(HistoLine, OfThePanelAsAWholeAndOfNoChannel) {
    const std::pair<qint16, const char*> kinds[] = {
        {0, "Acknowledgement"}, {1, "Horn silenced"}, {2, "Lamps ackn."}, {3, "Cleared"}};
    for (const auto& [aff, word] : kinds)
        Expect(Screen(12, 0, 0, aff), {Number(), Text(word), Text("State"), Text("P12-ACK"),
                                       Text("0000000"), QString(), QString()});
    Expect(Screen(12, 30, 0, 1, 5), Fields());
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(HistoLine, KeepsWhatStoodWhenThePairHasNoSuchPart) {
    const QString line = Screen(12, 7, 2, 1);
    EXPECT_EQ(line.size(), 162);
    EXPECT_EQ(line.left(7), Number());
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0].endsWith(Text("TextProcs\r\nFunction : FormateHistoScreen")));
}

TEST_F(HistoLine, FollowsTheLanguageInUse) {
    Global::Get().language = 1;
    Global::ReadMarks();
    const QString line = Screen(12, 7, 1, 1);
    EXPECT_EQ(line.mid(11, 15), Text("Acquittée      "));
    EXPECT_EQ(line.mid(39, 7), Text("P12-V07"));
    EXPECT_EQ(Screen(12, 254, 0, 6).mid(11, 15), Text("État à minuit  "));
}

TEST_F(HistoLine, StarsStandForTextsThatTheBaseLacks) {
    // A language right behind the last one has no texts at all.
    Global::Get().language = 4;
    for (const qint16 aff : {qint16(0), qint16(1)}) {
        const QString line = Screen(12, 255, 1, aff);
        EXPECT_EQ(line.mid(93, 26), Stars(26));
        EXPECT_EQ(line.mid(121, 41), Stars(40) + u' ');
    }
}

TEST_F(HistoLine, TheFileLosesTheLastDigitOfTheNumber) {
    QString line = Screen(12, 7, 0, 1, 74565);
    line.replace(0, 7, QStringLiteral("0012345"));
    const QString file = TextProcs::HistoScreenLineToHistoFileLine(line);
    EXPECT_EQ(file.size(), 138);
    EXPECT_EQ(file.mid(20, 6), QStringLiteral("001234"));

    // Back on the screen all is in its place, but for the digit and the line break.
    const QString back = TextProcs::HistoFileLineToHistoScreenLine(file);
    QString expected = line;
    expected.replace(6, 1, QStringLiteral(" "));
    expected.replace(80, 2, QStringLiteral("  "));
    EXPECT_EQ(back, expected);
}

TEST_F(HistoLine, ConversionsPadShortLinesAndCutLongOnes) {
    EXPECT_EQ(TextProcs::HistoFileLineToHistoScreenLine(QStringLiteral("2024")),
              Rows::At(162, {{53, QStringLiteral("2024")}}));
    EXPECT_EQ(TextProcs::HistoScreenLineToHistoFileLine(QString()), QString(138, u' '));
    const QString longLine = QString(500, u'x');
    EXPECT_EQ(TextProcs::HistoFileLineToHistoScreenLine(longLine).size(), 162);
    EXPECT_EQ(TextProcs::HistoScreenLineToHistoFileLine(longLine).size(), 138);
}

} // namespace
