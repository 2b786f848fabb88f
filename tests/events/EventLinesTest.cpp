#include "events/FakePort.h"
#include "events/HistoProcs.h"
#include "events/PrinterDefinition.h"
#include "events/TextProcs.h"
#include "model/Models.h"

#include <QRegularExpression>
#include <array>
#include <cerrno>
#include <tuple>

namespace {

/// The lines of an event on the screen, in the history file, in the trace and on paper.
class EventLines : public PrinterBench {
protected:
    EventLines() {
        AddPanel(12, Models::Q6200XT);
        ChannelClass& channel = Site().Panel(12).Channel(7);
        channel.setBibNum(64);
        channel.setScreenText(Text("Forty columns of a text, all of them use|tail"));
        channel.setPrintText(Text("Forty columns of paper, all of them used|tail"));
        Site().setBiblio(64, Text("High temperature"));
        Global::Get().userName = Text("MANAGER of more than two columns");
        Global::Get().userLevel = 3;
    }

    EventClass Event(qint16 panel, qint16 chnl, qint16 param, qint16 aff, qint32 panelClock = 0) {
        EventClass event(panel, chnl, param, aff);
        event.setNum(123);
        event.setGDH(clock.Now());
        event.setClock(panelClock);
        return event;
    }
    QString Screen(qint16 panel, qint16 chnl, qint16 param, qint16 aff, qint32 panelClock = 0) {
        return TextProcs::FormateHistoScreen(Event(panel, chnl, param, aff, panelClock));
    }
    /// The bytes of an event's line without its end; nothing when none is written.
    QByteArray Print(EventClass& event) {
        HistoProcs::PrintEvent(event, paper);
        const QByteArray line = Written();
        EXPECT_TRUE(line.isEmpty() || line.endsWith('\r'));
        return line.chopped(line.isEmpty() ? 0 : 1);
    }
    QByteArray Print(qint16 panel, qint16 chnl, qint16 param, qint16 aff) {
        EventClass event = Event(panel, chnl, param, aff);
        return Print(event);
    }

    /// Columns joined by "|" at their widths; "*" is a column of stars.
    static QStringList Columns(const QString& text, const QList<int>& widths) {
        QStringList columns = text.split(u'|');
        EXPECT_EQ(columns.size(), widths.size()) << text.toStdString();
        for (int i = 0; i < widths.size(); ++i) {
            columns[i] = columns[i] == u'*' ? QString(widths[i], u'*')
                                            : columns[i].left(widths[i]).leftJustified(widths[i]);
        }
        return columns;
    }
    /// Display, parameter, origin, clock of the panel, common and specific text: the screen line,
    /// and the file line that is made of it.
    static void ExpectScreen(const QString& line, const QString& text) {
        const auto filled = [columns = Columns(text, {15, 11, 7, 7, 26, 40})](const char* places) {
            return Text(places).arg(columns[0], columns[1], columns[2], columns[3], columns[4],
                                    columns[5]);
        };
        EXPECT_EQ(line, filled("0000123    %1 %2 %3       2024-03-15      12:00:00   \r\n"
                               "%4    %5  %6 "));
        EXPECT_EQ(TextProcs::HistoScreenLineToHistoFileLine(line),
                  filled("2024-03-15 12:00:00 000012 %4 %3 %2 %1 %5 %6"));
    }
    /// Clock of the panel, key, origin, parameter, word, common and specific text.
    static void ExpectTrace(const EventClass& event, const QString& text) {
        EXPECT_EQ(HistoProcs::FormateTrace(event),
                  Text("2024-03-15 12:00:00 000123 ") +
                      Columns(text, {7, 8, 7, 6, 6, 26, 39}).join(u' '));
    }
    /// Origin, parameter, display, common and specific text; the number column is blank.
    static QByteArray PaperOf(const QString& text) {
        QByteArray line =
            (Text("2024-03-15 12:00:00        ") + Columns(text, {7, 11, 15, 26, 40}).join(u' '))
                .toLatin1();
        while (line.endsWith(' '))
            line.chop(1);
        return line;
    }
    void ExpectLines(EventClass event, const QString& screen, const QString& trace,
                     const QString& printed) {
        SCOPED_TRACE(::testing::Message() << std::hex << event.ID());
        ExpectScreen(TextProcs::FormateHistoScreen(event), screen);
        ExpectTrace(event, trace);
        EXPECT_EQ(Print(event), PaperOf(printed));
    }
};

TEST_F(EventLines, OfPanelsThatComeOrGoAndOfTheSystem) {
    const std::tuple<qint16, qint16, qint16, qint16, const char*, const char*, const char*> rows[] =
        {
            {12, 255, 1, 0,
             "Panel lost|Alarm|P12-Q62||Communication lost|The panel no longer answers on the bus",
             "|0CFF0100|P12-Q62|Alarm|DISAPP|*|*", "P12-Q62|State|Panel lost||"},
            {12, 255, 1, 1,
             "Panel present|Return|P12-Q62||Communication restored|The panel answers on the bus "
             "again",
             "|0CFF0101|P12-Q62|Alarm|APPEAR|*|*", "P12-Q62|Alarm|Panel present||"},
            {12, 254, 0, 0, "Ackn. on PC|LEVEL 3|SYSTEM||%1|", "|0CFE0000|P12-Q62|USER|ACK PC|%1|*",
             "SYSTEM|User|Ackn. on PC|%1|*"},
            {0, 254, 0, 1, "APPLIC|START|SYSTEM|*|*|*", "|********|SYSTEM|APPLI|START|*|*",
             "SYSTEM|START|APPLIC|*|*"},
            {0, 254, 0, 2, "APPLIC|STOP|SYSTEM|*|*|*", "|********|SYSTEM|APPLI|STOP|*|*",
             "SYSTEM|STOP|APPLIC|*|*"},
            {0, 254, 0, 3, "LOGIN|LEVEL 3|SYSTEM||%1|", "|00FE0003|SYSTEM|USER|CHANGE|%1|LEVEL 3",
             "SYSTEM|LEVEL 3|LOGIN|%1|"},
            {0, 254, 0, 4, "COMM|START|SYSTEM|||", "|00FE0004|SYSTEM|COMM|START|*|*",
             "SYSTEM|START|COMM|*|*"},
            {0, 254, 0, 5, "COMM|STOP|SYSTEM|||", "|00FE0005|SYSTEM|COMM|STOP|*|*",
             "SYSTEM|STOP|COMM|*|*"},
            {12, 254, 0, 6, "Midnight state|State|P12-Q62|*|Panel never seen|*", "|0CFE0006|||||",
             "SYSTEM||||"},
            {0, 254, 0, 7, "||SYSTEM|||", "|00FE0007|||||", "SYSTEM||||"},
            {12, 254, 7, 7, "Out of service|Unlimited|P12-C07||*|*",
             "|0CFE0707|P12-C07|SERV|OUT|*|*", "P12-C07|Unlimited|Out of service|*|*"},
            {0, 254, 0, 9, "Out of service|0|SYSTEM||Panels: 0  Channels: 0|*",
             "|00FE0009|SYSTEM|COUNT|OUT|Panels: 0  Channels: 0|*",
             "SYSTEM|0|Out of service|Panels: 0  Channels: 0|*"},
        };
    const auto named = [](const char* text) {
        return Text(text).replace(Text("%1"), Text("MANAGER of more than two c"));
    };
    for (const auto& [panel, chnl, param, aff, screen, trace, printed] : rows)
        ExpectLines(Event(panel, chnl, param, aff), named(screen), named(trace), named(printed));
    ExpectTrace(Event(5, 255, 1, 1), Text("|05FF0101|P05----|Alarm|APPEAR|*|*"));
}

TEST_F(EventLines, OfChannelsAndThePanelAsAWhole) {
    using Word = const char*;
    const std::tuple<qint16, qint16, qint16, qint32, Word, Word, Word, Word, Word> rows[] = {
        {7, 0, 0, 1048575, "1048575", "P12-C07", "State", "Normal", "NORMAL"},
        {7, 0, 1, 74565, "0074565", "P12-C07", "State", "Active", "ACTIVE"},
        {7, 0, 2, 0, "0000000", "P12-C07", "State", "Cable fault", "CABLE"},
        {7, 0, 3, 1, "0000001", "P12-C07", "State", "First fault", "1stFLT"},
        {7, 0, 4, 1, "0000001", "P12-C07", "State", "Second fault", "2ndFLT"},
        {7, 1, 1, -1, "SYNCHRO", "P12-C07", "Alarm", "Acknowledged", "ACKLGD"},
        {24, 0, 2, 0, "0000000", "P12-C24", "State", "Cable fault", "CABLE"},
        {0, 0, 0, 86399, "0086399", "P12-ACK", "State", "Acknowledgement", "ACK???"},
        {0, 0, 1, 86399, "0086399", "P12-ACK", "State", "Horn silenced", "ACK KL"},
        {0, 0, 2, 86399, "0086399", "P12-ACK", "State", "Lamps ackn.", "ACK CL"},
        {0, 0, 3, 86399, "0086399", "P12-ACK", "State", "Cleared", "CLEAR"},
        // No model has such a channel.
        {30, 0, 1, 5, "", "", "", "", ""},
    };
    for (const auto& [chnl, param, aff, panelClock, shown, origin, parameter, display, word] :
         rows) {
        const EventClass event = Event(12, chnl, param, aff, panelClock);
        const bool titled = chnl == 7;
        const char* common = titled ? "High temperature" : "";
        const char* text = titled ? "Forty columns of a text, all of them use" : "";
        const char* printed = titled ? "Forty columns of paper, all of them used" : "";
        const auto key = QByteArray::number(event.ID(), 16).toUpper().rightJustified(8, '0');
        ExpectLines(event, TextList({display, parameter, origin, shown, common, text}).join(u'|'),
                    TextList({shown, key, origin, parameter, word, common, text}).join(u'|'),
                    TextList({origin, parameter, display, common, printed}).join(u'|'));
    }
    EventClass event = Event(0, 254, 0, 4);
    for (const auto& [number, text] : {std::pair{1, "000001"}, {999999, "999999"}, {0, "000000"}}) {
        event.setNum(number);
        EXPECT_EQ(HistoProcs::FormateTrace(event).mid(20, 6), Text(text));
    }
}

TEST_F(EventLines, StayOneLineWhateverTheTexts) {
    ChannelClass& channel = Site().Panel(12).Channel(7);
    channel.setScreenText(Text("Two rows\nof a\r\ncell"));
    channel.setPrintText(Text("On\fpaper"));
    const QString screen = Screen(12, 7, 0, 1);
    EXPECT_EQ(screen.mid(80, 2), Text("\r\n"));
    EXPECT_TRUE(TextProcs::HistoScreenLineToHistoFileLine(screen).trimmed().endsWith(
        Text(" Two rows of a  cell")));
    EXPECT_TRUE(HistoProcs::FormateTrace(Event(12, 7, 0, 1))
                    .trimmed()
                    .endsWith(Text("Two rows of a  cell")));
    EXPECT_TRUE(Print(12, 7, 0, 1).endsWith(" On paper"));
}

TEST_F(EventLines, OfThePanelsAtMidnight) {
    PanelClass& panel = Site().Panel(12);
    const auto expect = [this](const char* texts) {
        ExpectScreen(Screen(12, 254, 0, 6), Text("Midnight state|State|P12-Q62|*|") + Text(texts));
    };
    panel.setActualModel(Models::Q6200XT);
    panel.setActive(false);
    expect("Panel out of service|*");
    panel.setActive(true);
    for (int i = 1; i <= 24; ++i)
        panel.Channel(i).setState(qint16(i % 5));
    expect("Channel states|123401234012340123401234");
    // States of two digits fill the column, the rest is cut.
    for (int i = 1; i <= 24; ++i)
        panel.Channel(i).setState(qint16(10 + i % 5));
    expect("Channel states|1112131410111213141011121314101112131410");
    panel.setModel(Models::Q7100);
    EXPECT_EQ(Screen(12, 254, 0, 6).mid(121, 40).trimmed().size(), 24) << "twelve channels";
}

TEST_F(EventLines, KeepWhatStoodWhenACodePassesTheLists) {
    const auto told = [this](const char* function) {
        EXPECT_EQ(Boxes(),
                  QStringList(Text("Error Nr 9 : Subscript out of range\r\n") + Text(function)));
    };
    EXPECT_EQ(Screen(12, 7, 2, 1).leftJustified(162).left(7), Text("0000123"));
    told("Module : TextProcs\r\nFunction : FormateHistoScreen");
    EXPECT_EQ(Print(12, 7, 2, 1), QByteArray());
    told("Module : HistoProcs\r\nFunction : PrintEvent");
    const std::array<qint16, 3> damaged[] = {{7, 0, 5}, {7, 0, 9}, {7, 0, 255},
                                             {7, 2, 1}, {0, 0, 4}, {0, 0, -1}};
    for (const auto& [chnl, param, aff] : damaged) {
        SCOPED_TRACE(::testing::Message() << chnl << " " << param << " " << aff);
        const QString line = HistoProcs::FormateTrace(Event(12, chnl, param, aff));
        EXPECT_EQ(line.size(), 132);
        EXPECT_EQ(line.left(26), Text("2024-03-15 12:00:00 000123"));
        told("Module : HistoProcs\r\nFunction : FormateTrace");
    }
}

TEST_F(EventLines, FollowTheLanguageInUse) {
    Global::Get().language = 1;
    Global::ReadMarks();
    const QString line = Screen(12, 7, 1, 1);
    EXPECT_EQ(line.mid(11, 15), Text("Acquittée      "));
    EXPECT_EQ(line.mid(39, 7), Text("P12-V07"));
    EXPECT_EQ(Screen(12, 254, 0, 6).mid(11, 15), Text("État à minuit  "));
    // The printer has a character set of its own.
    Site().setBiblio(64, Text("Chaudière n° 2"));
    EXPECT_EQ(Print(12, 7, 1, 1).mid(47, 30), "Acquitt\x82\x65       Chaudi\x8Are n\xF8 2");
    // A language right behind the last one has no texts at all.
    Global::Get().language = 4;
    for (const qint16 aff : {0, 1}) {
        EXPECT_EQ(Screen(12, 255, 1, aff).mid(93),
                  QString(26, u'*') + Text("  ") + QString(40, u'*') + u' ');
    }
    EXPECT_FALSE(Boxes().isEmpty());
}

TEST_F(EventLines, OfTheFileComeBackToTheScreen) {
    // But for the last digit of the number and the line break.
    QString line = Screen(12, 7, 0, 1, 74565);
    line.replace(0, 7, Text("0012345"));
    const QString file = TextProcs::HistoScreenLineToHistoFileLine(line);
    EXPECT_EQ(TextProcs::HistoFileLineToHistoScreenLine(file),
              line.replace(6, 1, u' ').replace(80, 2, Text("  ")));

    EXPECT_EQ(TextProcs::HistoFileLineToHistoScreenLine(Text("2024")),
              QString(53, u' ') + Text("2024").leftJustified(109));
    EXPECT_EQ(TextProcs::HistoScreenLineToHistoFileLine(QString()), QString(138, u' '));
    const QString longLine = QString(500, u'x');
    EXPECT_EQ(TextProcs::HistoFileLineToHistoScreenLine(longLine).size(), 162);
    EXPECT_EQ(TextProcs::HistoScreenLineToHistoFileLine(longLine).size(), 138);
}

TEST_F(EventLines, EachKindInItsStyle) {
    Site().setPrinterInitString(0, Text("1B 40"));
    for (int style = 1; style <= 7; ++style)
        Site().setPrinterInitString(style, Text("1B 3%1").arg(style));
    const std::tuple<qint16, qint16, qint16, char> rows[] = {
        {255, 1, 0, '1'}, {255, 1, 1, '4'}, {254, 0, 0, '7'}, {254, 0, 5, '7'},
        {7, 0, 0, '6'},   {7, 0, 1, '5'},   {7, 0, 4, '6'},   {0, 0, 1, '5'},
        {0, 0, 3, '6'},   {7, 1, 0, '4'},   {7, 1, 1, '3'},   {7, 1, 2, '1'},
        {7, 1, 3, '1'},   {7, 1, 4, '2'},   {7, 1, 5, '2'},   {7, 1, 255, '2'},
    };
    for (const auto& [chnl, param, aff, style] : rows)
        EXPECT_EQ(Print(12, chnl, param, aff).left(5), QByteArray("\x1B@\x1B") + style + '2')
            << chnl << " " << param << " " << aff;
    EXPECT_EQ(Print(12, 30, 1, 1).left(3), QByteArray("\x1B@2")) << "no family, no style";
}

TEST_F(EventLines, LowersAnUnknownStepForAllWhoFollow) {
    EventClass event = Event(12, 7, 1, 9);
    EXPECT_EQ(Print(event).mid(47, 15).trimmed(), QByteArray("#51015#"));
    EXPECT_EQ(event.Aff(), 5);
    // A state isn't lowered, and other families have no steps.
    for (const auto& [chnl, param] : {std::pair(7, 0), {30, 1}, {254, 1}, {255, 1}}) {
        EventClass other(12, qint16(chnl), qint16(param), 9);
        Print(other);
        EXPECT_EQ(other.Aff(), 9) << chnl;
    }
}

TEST_F(EventLines, ControlSequencesAreBytesInHexadecimalWithinTheLongestLine) {
    const QByteArray line = PaperOf(Text("P12-Q62|State|Panel lost||"));
    Site().setPrinterInitString(0, Text(" 1b 2D  0 "));
    EXPECT_EQ(Print(12, 255, 1, 0), QByteArray("\x1B-\0", 3) + line);
    // They go through the printer's table with the text.
    Site().setPrinterInitString(0, QString());
    Site().setPrinterInitString(1, Text("E9 80 FF 7F"));
    EXPECT_EQ(Print(12, 255, 1, 0), QByteArray("\x82_\x98\x7F") + line);

    const QByteArray whole = Print(12, 7, 0, 1);
    EXPECT_EQ(whole.size(), 130);
    Site().setPrinterInitString(5, Text("1B 46 0F"));
    Site().setPrintMaxLen(80);
    EXPECT_EQ(Print(12, 7, 0, 1), "\x1B\x46\x0F" + whole.left(77));
    Site().setPrintMaxLen(-1);
    EXPECT_EQ(Print(12, 7, 0, 1).size(), 133);
}

TEST_F(EventLines, DefinitionFilesHoldSequences) {
    const QDir folder(Text(KORVANELLE_SOURCE_DIR "/data/printers"));
    const QStringList names = folder.entryList({Text("*.prt")});
    EXPECT_GE(names.size(), 2);
    // A byte above 127 would come out as another one.
    static const QRegularExpression lines(
        Text("^(|;.*|\\[(Reset|Colors|Styles)\\]|(Init|[0-6]|[BIU])=([0-7][0-9A-F]\\b ?)*)$"));
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromLatin1(file.readAll());
        EXPECT_TRUE(text.contains(Text("[Reset]\nInit="))) << name.toStdString();
        for (const QString& line : text.split(u'\n'))
            EXPECT_TRUE(lines.match(line).hasMatch()) << name.toStdString() << line.toStdString();
    }
}

TEST_F(EventLines, DefinitionFilesColourALine) {
    const QByteArray line = PaperOf(Text("P12-Q62|State|Panel lost||"));
    const std::pair<const char*, const char*> rows[] = {
        {"plain", ""},
        {"escp", "\x1B@\x0F\x1Br\x05\x1B\x45\x1B-\x01"},
        {"escp-wide", "\x1B@\x1BM\x1B\x45\x1B-\x01"},
    };
    for (const auto& [name, start] : rows) {
        const PrinterDefinition definition(
            Text(KORVANELLE_SOURCE_DIR "/data/printers/%1.prt").arg(Text(name)));
        Site().setPrinterInitString(0, definition.Init());
        Site().setPrinterInitString(1, definition.SequenceOf(Text("1UB")));
        EXPECT_EQ(Print(12, 255, 1, 0), start + line) << name;
    }
}

TEST_F(EventLines, ADefinitionIsReadByName) {
    const QString none = PrinterDefinition::PathOf(Text("none"));
    WriteFile(PrinterDefinition::PathOf(Text("matrix")),
              "[Colors]\r\n2 = 1B 72 04\r\n12=1B\r\n[Styles]\r\nB=\r\nI=1B 34\r\n");
    WriteFile(PrinterDefinition::PathOf(Text("beside")), "[Reset]\nInit=\"1B 40 \"\n");
    EXPECT_EQ(PrinterDefinition::Names(), TextList({"beside", "matrix"}));
    const PrinterDefinition matrix(PrinterDefinition::PathOf(Text("matrix")));
    EXPECT_EQ(matrix.Init(), QString());
    const std::pair<const char*, const char*> codes[] = {
        {"2", "1B 72 04"},
        {"2I", "1B 72 04 1B 34"},
        {"2BI", "1B 72 04  1B 34"},
        {"I", "1B 34"},
        {"12B", "1B"},
        {"0U", ""},
        {"", ""},
        {"xI", "1B 34"},
    };
    for (const auto& [code, sequence] : codes)
        EXPECT_EQ(matrix.SequenceOf(Text(code)), Text(sequence)) << code;
    EXPECT_EQ(PrinterDefinition(none).SequenceOf(Text("2B")), QString());
}

} // namespace
