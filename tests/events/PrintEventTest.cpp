#include "events/HistoProcs.h"

#include "events/EventPrinter.h"
#include "events/FakePort.h"
#include "events/PrinterDefinition.h"
#include "model/Models.h"
#include "platform/SettingsFile.h"
#include "support/Bench.h"
#include "support/Rows.h"

#include <QRegularExpression>
#include <cerrno>

namespace {

using Rows::Stars;

class Printed : public Bench {
protected:
    Printed() {
        AddPanel(12, Models::Q6200XT);
        ChannelClass& channel = Site().Panel(12).Channel(7);
        channel.setBibNum(64);
        channel.setScreenText(Text("text of the screen"));
        channel.setPrintText(Text("Forty columns of a text, all of them use|tail"));
        Site().setBiblio(64, Text("High temperature"));
        Global::Get().userName = Text("MANAGER");
        Global::Get().userLevel = 3;
        printer.setPort(Text("LPT1"));
    }

    /// The bytes of an event's line without its end; nothing when none is written.
    QByteArray Print(EventClass& event) {
        event.setNum(999999);
        event.setGDH(clock.Now());
        HistoProcs::PrintEvent(event, paper);
        const QByteArray line = std::exchange(port->written, {});
        EXPECT_TRUE(line.isEmpty() || line.endsWith('\r'));
        return line.chopped(line.isEmpty() ? 0 : 1);
    }
    QByteArray Print(qint16 panel, qint16 chnl, qint16 param, qint16 aff) {
        EventClass event(panel, chnl, param, aff);
        return Print(event);
    }
    /// A whole line; the number column is blank.
    static QByteArray Line(const char* origin, const char* parameter, const char* display,
                           const QString& common = QString(), const QString& specific = QString()) {
        QByteArray line = Rows::Joined({{Text("2024-03-15"), 10},
                                        {Text("12:00:00"), 8},
                                        {QString(), 6},
                                        {Text(origin), 7},
                                        {Text(parameter), 11},
                                        {Text(display), 15},
                                        {common, 26},
                                        {specific, 40}})
                              .toLatin1();
        while (line.endsWith(' '))
            line.chop(1);
        return line;
    }

    FakePort* port = new FakePort;
    DirectPrinting printer{std::unique_ptr<platform::PrinterPort>(port)};
    EventPrinter paper{printer};
};

TEST_F(Printed, PresenceOfAPanel) {
    EXPECT_EQ(Print(12, 255, 1, 0), Line("P12-Q62", "State", "Panel lost"));
    EXPECT_EQ(Print(12, 255, 1, 1), Line("P12-Q62", "Alarm", "Panel present"));
}

TEST_F(Printed, SystemEvents) {
    const QString user = Text("MANAGER");
    EXPECT_EQ(Print(12, 254, 0, 0), Line("SYSTEM", "User", "Ackn. on PC", user, Stars(40)));
    EXPECT_EQ(Print(0, 254, 0, 1), Line("SYSTEM", "START", "APPLIC", Stars(26), Stars(40)));
    EXPECT_EQ(Print(0, 254, 0, 2), Line("SYSTEM", "STOP", "APPLIC", Stars(26), Stars(40)));
    EXPECT_EQ(Print(0, 254, 0, 3), Line("SYSTEM", "LEVEL 3", "LOGIN", user));
    EXPECT_EQ(Print(0, 254, 0, 4), Line("SYSTEM", "START", "COMM", Stars(26), Stars(40)));
    EXPECT_EQ(Print(0, 254, 0, 5), Line("SYSTEM", "STOP", "COMM", Stars(26), Stars(40)));
    EXPECT_EQ(Print(0, 254, 0, 6), Line("SYSTEM", "", ""));
}

TEST_F(Printed, ChannelsAndThePanelAsAWhole) {
    const QString common = Text("High temperature");
    const QString specific = Text("Forty columns of a text, all of them use");
    const char* states[] = {"Normal", "Active", "Cable fault", "First fault", "Second fault"};
    for (qint16 aff = 0; aff < 5; ++aff)
        EXPECT_EQ(Print(12, 7, 0, aff), Line("P12-C07", "State", states[aff], common, specific));
    EXPECT_EQ(Print(12, 7, 1, 1), Line("P12-C07", "Alarm", "Acknowledged", common, specific));
    const char* kinds[] = {"Acknowledgement", "Horn silenced", "Lamps ackn.", "Cleared"};
    for (qint16 aff = 0; aff < 4; ++aff)
        EXPECT_EQ(Print(12, 0, 0, aff), Line("P12-ACK", "State", kinds[aff]));
    EXPECT_EQ(Print(12, 30, 0, 1), Line("", "", ""));
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(Printed, InThePrintersCharacterSet) {
    Global::Get().language = 1;
    Global::ReadMarks();
    Site().setBiblio(64, QString::fromUtf8("Chaudière n° 2"));
    const QByteArray line = Print(12, 7, 1, 1);
    EXPECT_EQ(line.mid(47, 15), QByteArray("Acquitt\x82"
                                           "e      "));
    EXPECT_EQ(line.mid(63, 14), QByteArray("Chaudi\x8Are n\xF8 2"));
}

TEST_F(Printed, EachKindInItsStyle) {
    Site().setPrinterInitString(0, Text("1B 40"));
    for (int style = 1; style <= 7; ++style)
        Site().setPrinterInitString(style, Text("1B 3%1").arg(style));
    struct {
        qint16 chnl;
        qint16 param;
        qint16 aff;
        char style;
    } const rows[] = {
        {255, 1, 0, '1'}, {255, 1, 1, '4'}, {254, 0, 0, '7'}, {254, 0, 5, '7'},
        {7, 0, 0, '6'},   {7, 0, 1, '5'},   {7, 0, 4, '6'},   {0, 0, 1, '5'},
        {0, 0, 3, '6'},   {7, 1, 0, '4'},   {7, 1, 1, '3'},   {7, 1, 2, '1'},
        {7, 1, 3, '1'},   {7, 1, 4, '2'},   {7, 1, 5, '2'},   {7, 1, 255, '2'},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Print(12, row.chnl, row.param, row.aff).left(5),
                  QByteArray("\x1B@\x1B") + row.style + '2')
            << row.chnl << " " << row.param << " " << row.aff;
    EXPECT_EQ(Print(12, 30, 1, 1).left(3), QByteArray("\x1B@2")) << "no family, no style";
}

TEST_F(Printed, LowersAnUnknownStepForAllWhoFollow) {
    EventClass event(12, 7, 1, 9);
    EXPECT_EQ(Print(event).mid(47, 15).trimmed(), QByteArray("#51015#"));
    EXPECT_EQ(event.Aff(), 5);
    // A state isn't lowered, and other families have no steps.
    for (const auto& [chnl, param] : {std::pair(7, 0), {30, 1}, {254, 1}, {255, 1}}) {
        EventClass other(12, qint16(chnl), qint16(param), 9);
        Print(other);
        EXPECT_EQ(other.Aff(), 9) << chnl;
    }
}

TEST_F(Printed, ControlSequencesAreBytesInHexadecimal) {
    const QByteArray line = Line("P12-Q62", "State", "Panel lost");
    Site().setPrinterInitString(0, Text(" 1b 2D  0 "));
    EXPECT_EQ(Print(12, 255, 1, 0), QByteArray("\x1B-\0", 3) + line);
    // They go through the printer's table with the text.
    Site().setPrinterInitString(0, QString());
    Site().setPrinterInitString(1, Text("E9 80 FF 7F"));
    EXPECT_EQ(Print(12, 255, 1, 0), QByteArray("\x82_\x98\x7F") + line);
}

TEST_F(Printed, CutAtTheLongestLine) {
    const QByteArray whole = Print(12, 7, 0, 1);
    EXPECT_EQ(whole.size(), 130);
    Site().setPrintMaxLen(80);
    EXPECT_EQ(Print(12, 7, 0, 1), whole.left(80));
    Site().setPrinterInitString(0, Text("1B 40 0F"));
    Site().setPrinterInitString(5, Text("1B 45"));
    EXPECT_EQ(Print(12, 7, 0, 1), "\x1B@\x0F\x1B"
                                  "E" +
                                      whole.left(75));
    Site().setPrintMaxLen(-1);
    EXPECT_EQ(Print(12, 7, 0, 1).size(), 135);
}

TEST_F(Printed, NothingStopsForAPrinterThatFails) {
    QStringList told;
    printer.onError = [&](const QString&, int where) { told += QString::number(where); };
    port->writeError = ETIMEDOUT;
    Print(12, 7, 0, 1);
    printer.ClosePrinter();
    port->openError = ENOENT;
    clock.Advance(EventPrinter::TryPause);
    EXPECT_EQ(Print(12, 7, 0, 1), QByteArray());
    printer.setPort(QString());
    EXPECT_EQ(Print(12, 7, 0, 1), QByteArray());
    EXPECT_EQ(told, QStringList({Text("8"), Text("0")}));
    EXPECT_EQ(boxes, QStringList());

    // A line that can't be formed is lost and told.
    port->openError = 0;
    printer.setPort(Text("LPT1"));
    EXPECT_EQ(Print(12, 7, 2, 1), QByteArray());
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_TRUE(boxes[0].endsWith(Text("HistoProcs\r\nFunction : PrintEvent")));
}

TEST_F(Printed, DefinitionFilesHoldSequences) {
    const QDir folder(QStringLiteral(KORVANELLE_SOURCE_DIR "/data/printers"));
    const QStringList names = folder.entryList({Text("*.prt")});
    EXPECT_GE(names.size(), 2);
    static const QRegularExpression bytes(Text("^([0-9A-F]{2}( [0-9A-F]{2})*)?$"));
    static const QRegularExpression keys(Text("^(Reset/Init|Colors/[0-6]|Styles/[BIU])$"));
    for (const QString& name : names) {
        const platform::SettingsFile file(folder.filePath(name));
        EXPECT_EQ(file.Keys(Text("Reset")), QStringList{Text("Init")});
        for (const char* section : {"Reset", "Colors", "Styles"}) {
            for (const QString& key : file.Keys(Text(section))) {
                const QString value = file.Read(Text(section), key, QString());
                EXPECT_TRUE(keys.match(Text(section) + u'/' + key).hasMatch()) << key.toStdString();
                EXPECT_TRUE(bytes.match(value).hasMatch()) << value.toStdString();
                // A byte above 127 would come out as another one.
                for (const QString& byte : value.split(u' ', Qt::SkipEmptyParts))
                    EXPECT_LT(byte.toInt(nullptr, 16), 128) << value.toStdString();
            }
        }
    }
}

TEST_F(Printed, DefinitionFilesColourALine) {
    const QByteArray line = Line("P12-Q62", "State", "Panel lost");
    const std::pair<const char*, QByteArray> rows[] = {
        {"plain", QByteArray()},
        {"escp", QByteArray("\x1B@\x0F\x1Br\x05\x1B"
                            "E\x1B-\x01")},
        {"escp-wide", QByteArray("\x1B@\x1BM\x1B"
                                 "E\x1B-\x01")},
    };
    for (const auto& [name, start] : rows) {
        const PrinterDefinition definition(
            QStringLiteral(KORVANELLE_SOURCE_DIR "/data/printers/%1.prt").arg(Text(name)));
        Site().setPrinterInitString(0, definition.Init());
        Site().setPrinterInitString(1, definition.SequenceOf(Text("1UB")));
        EXPECT_EQ(Print(12, 255, 1, 0), start + line) << name;
    }
}

TEST_F(Printed, ADefinitionIsReadByName) {
    const auto write = [](const QString& name, const QByteArray& content) {
        QFile file(PrinterDefinition::PathOf(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    write(Text("matrix"), "[Colors]\r\n2 = 1B 72 04\r\n12=1B\r\n[Styles]\r\nB=\r\nI=1B 34\r\n");
    write(Text("beside"), "[Reset]\nInit=\"1B 40 \"\n");
    EXPECT_EQ(PrinterDefinition::Names(), QStringList({Text("beside"), Text("matrix")}));

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
    EXPECT_EQ(PrinterDefinition(PrinterDefinition::PathOf(Text("none"))).SequenceOf(Text("2B")),
              QString());
}

} // namespace
