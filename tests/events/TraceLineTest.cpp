#include "events/HistoProcs.h"

#include "model/Models.h"
#include "support/Bench.h"
#include "support/Rows.h"

namespace {

using Rows::Stars;

class TraceLine : public Bench {
protected:
    TraceLine() {
        AddPanel(12, Models::Q6200XT);
        ChannelClass& channel = Site().Panel(12).Channel(7);
        channel.setBibNum(3);
        channel.setScreenText(QStringLiteral("Pump of the northern basin, lower level, spare"));
        Site().setBiblio(3, QStringLiteral("High temperature"));
        Global::Get().userName = QStringLiteral("A name that is far too long for it");
        Global::Get().userLevel = 2;
    }

    EventClass Event(qint16 panel, qint16 chnl, qint16 param, qint16 aff, qint32 panelClock = 0) {
        EventClass event(panel, chnl, param, aff);
        event.setNum(123);
        event.setGDH(clock.Now());
        event.setClock(panelClock);
        return event;
    }
    static QString Row(const char* panelClock, const char* key, const char* origin,
                       const char* parameter, const char* word, const QString& common,
                       const QString& specific) {
        return Rows::Trace(QStringLiteral("000123"), QString::fromLatin1(panelClock),
                           QString::fromLatin1(key), QString::fromLatin1(origin),
                           QString::fromLatin1(parameter), QString::fromLatin1(word), common,
                           specific);
    }
    QString Trace(qint16 panel, qint16 chnl, qint16 param, qint16 aff, qint32 panelClock = 0) {
        return HistoProcs::FormateTrace(Event(panel, chnl, param, aff, panelClock));
    }
};

TEST_F(TraceLine, OfAPanelThatComesOrGoes) {
    EXPECT_EQ(Trace(12, 255, 1, 0),
              Row("", "0CFF0100", "P12-Q62", "Alarm", "DISAPP", Stars(26), Stars(39)));
    EXPECT_EQ(Trace(5, 255, 1, 1),
              Row("", "05FF0101", "P05----", "Alarm", "APPEAR", Stars(26), Stars(39)));
}

TEST_F(TraceLine, OfEverySystemEvent) {
    const QString user = QStringLiteral("A name that is far too lon");
    EXPECT_EQ(Trace(12, 254, 0, 0),
              Row("", "0CFE0000", "P12-Q62", "USER", "ACK PC", user, Stars(39)));
    EXPECT_EQ(Trace(0, 254, 0, 1),
              Row("", "********", "SYSTEM", "APPLI", "START", Stars(26), Stars(39)));
    EXPECT_EQ(Trace(0, 254, 0, 2),
              Row("", "********", "SYSTEM", "APPLI", "STOP", Stars(26), Stars(39)));
    EXPECT_EQ(Trace(0, 254, 0, 3),
              Row("", "00FE0003", "SYSTEM", "USER", "CHANGE", user, QStringLiteral("LEVEL 2")));
    EXPECT_EQ(Trace(0, 254, 0, 4),
              Row("", "00FE0004", "SYSTEM", "COMM", "START", Stars(26), Stars(39)));
    EXPECT_EQ(Trace(0, 254, 0, 5),
              Row("", "00FE0005", "SYSTEM", "COMM", "STOP", Stars(26), Stars(39)));
    EXPECT_EQ(Trace(12, 254, 0, 6), Row("", "0CFE0006", "", "", "", QString(), QString()));
}

TEST_F(TraceLine, OfChannels) {
    const QString common = QStringLiteral("High temperature");
    const QString specific = QStringLiteral("Pump of the northern basin, lower level");
    ASSERT_EQ(specific.size(), 39);
    const struct {
        qint16 param;
        qint16 aff;
        const char* key;
        const char* parameter;
        const char* word;
    } rows[] = {
        {0, 0, "0C070000", "State", "NORMAL"}, {0, 1, "0C070001", "State", "ACTIVE"},
        {1, 1, "0C070101", "Alarm", "ACKLGD"}, {0, 2, "0C070002", "State", "CABLE"},
        {1, 3, "0C070103", "Alarm", "1stFLT"}, {0, 4, "0C070004", "State", "2ndFLT"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Trace(12, 7, row.param, row.aff, 1048575),
                  Row("1048575", row.key, "P12-C07", row.parameter, row.word, common, specific));
    }
    EXPECT_EQ(Trace(12, 7, 0, 0, -1),
              Row("SYNCHRO", "0C070000", "P12-C07", "State", "NORMAL", common, specific));
    EXPECT_EQ(Trace(12, 24, 0, 2, 0),
              Row("0000000", "0C180002", "P12-C24", "State", "CABLE", QString(), QString()));
}

TEST_F(TraceLine, OfThePanelAsAWhole) {
    const char* words[] = {"ACK???", "ACK KL", "ACK CL", "CLEAR"};
    for (qint16 aff = 0; aff <= 3; ++aff) {
        const QByteArray key = "0C00000" + QByteArray::number(aff);
        EXPECT_EQ(Trace(12, 0, 0, aff, 86399),
                  Row("0086399", key, "P12-ACK", "State", words[aff], QString(), QString()));
    }
}

TEST_F(TraceLine, OfAChannelThatNoModelHas) {
    EXPECT_EQ(Trace(12, 30, 0, 1, 5), Row("", "0C1E0001", "", "", "", QString(), QString()));
    EXPECT_EQ(boxes, QStringList());
}

TEST_F(TraceLine, KeepsWhatStoodWhenACodePassesTheLists) {
    const struct {
        qint16 chnl;
        qint16 param;
        qint16 aff;
    } damaged[] = {{7, 0, 5}, {7, 0, 9}, {7, 0, 255}, {7, 2, 1}, {0, 0, 4}, {0, 0, -1}};
    for (const auto& each : damaged) {
        boxes.clear();
        const QString line = Trace(12, each.chnl, each.param, each.aff);
        EXPECT_EQ(line.size(), 132);
        EXPECT_EQ(line.left(26), QStringLiteral("2024-03-15 12:00:00 000123"));
        ASSERT_EQ(boxes.size(), 1);
        EXPECT_EQ(boxes[0], QStringLiteral("Error Nr 9 : Subscript out of range\r\nModule : "
                                           "HistoProcs\r\nFunction : FormateTrace"));
    }
}

TEST_F(TraceLine, NumberHasSixDigits) {
    EventClass event = Event(0, 254, 0, 4);
    for (const auto& [number, text] : {std::pair{1, "000001"}, {999999, "999999"}, {0, "000000"}}) {
        event.setNum(number);
        EXPECT_EQ(HistoProcs::FormateTrace(event).mid(20, 6), QString::fromLatin1(text));
    }
}

} // namespace
