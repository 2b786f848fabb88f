// The lines that a history file gives, whatever stands in it.

#include "screens/HistoryFile.h"

#include "core/DateTimes.h"
#include "events/HistoProcs.h"
#include "events/TextProcs.h"
#include "model/Models.h"
#include "platform/CodePage.h"
#include "platform/RunTimeError.h"
#include "support/Bench.h"

#include <random>

namespace {

class HistoryFileTest : public Bench {
protected:
    void Put(const QByteArray& bytes) const {
        QFile out(path);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }
    /// Date, time and number of each line.
    QStringList Rows() const {
        QStringList rows;
        for (int row = 0; row < file.Count(); ++row) {
            const QString line = file.ScreenLine(row);
            EXPECT_EQ(line.size(), 162);
            rows +=
                line.mid(53, 10) + u' ' + line.mid(69, 8).trimmed() + u' ' + line.left(7).trimmed();
        }
        return rows;
    }
    QStringList Load(const QByteArray& bytes) {
        Put(bytes);
        EXPECT_TRUE(file.Load(path));
        return Rows();
    }

    QString path = Path(QStringLiteral("Histo202403.his"));
    HistoryFile file;
};

QByteArray Line(int number) {
    return "2024-03-15 12:00:00 " + QByteArray::number(number).rightJustified(6, '0') +
           QByteArray(112, ' ');
}

QString Row(int number) {
    return QStringLiteral("2024-03-15 12:00:00 ") + QString::number(number).rightJustified(6, u'0');
}

} // namespace

TEST_F(HistoryFileTest, LinesAsTheSystemWritesThem) {
    PanelClass& panel = AddPanel(12, Models::Q7100);
    Site().setBiblio(3, QStringLiteral("Überdruck"));
    panel.Channel(7).setBibNum(3);
    panel.Channel(7).setScreenText(QStringLiteral("Kessel"));
    EventClass event(12, 7, 0, 1);
    event.setGDH(clock.Now());
    event.setNum(12345);
    event.setClock(77);
    HistoProcs::HistoEvent(event);
    ASSERT_TRUE(file.Load(HistoProcs::HistoFileName()));
    ASSERT_EQ(file.Count(), 1) << "the heading isn't a line";
    QString expected = TextProcs::FormateHistoScreen(event);
    expected.replace(6, 1, u' ').replace(QLatin1String("\r\n"), QLatin1String("  "));
    EXPECT_EQ(file.ScreenLine(0), expected) << "the last digit of the number is gone";

    // The file grows and goes while its lines are shown.
    HistoProcs::HistoEvent(event);
    EXPECT_EQ(file.Count(), 1);
    QFile::resize(HistoProcs::HistoFileName(), 160);
    EXPECT_EQ(file.ScreenLine(0).mid(53, 10), "2024-03-15");
    QFile::resize(HistoProcs::HistoFileName(), 20);
    EXPECT_EQ(file.ScreenLine(0), QString(162, u' '));
    QFile::remove(HistoProcs::HistoFileName());
    EXPECT_EQ(file.ScreenLine(0), QString(162, u' '));
    EXPECT_FALSE(file.Load(HistoProcs::HistoFileName()));
    EXPECT_EQ(file.Count(), 0);
    EXPECT_THROW((void)file.ScreenLine(0), platform::RunTimeError);
}

TEST_F(HistoryFileTest, DamagedFiles) {
    EXPECT_EQ(Load(""), QStringList());
    EXPECT_EQ(Load("Date       Time\r\n"), QStringList());
    EXPECT_EQ(Load("\r\n\r\n\n"), QStringList());
    EXPECT_EQ(Load("2024-03-1"), QStringList());
    EXPECT_EQ(Load("2024-03-15"), QStringList("2024-03-15  "));
    EXPECT_EQ(Load("2024-03-15\r\n2024-03-15\n"), QStringList({"2024-03-15  ", "2024-03-15  "}));
    EXPECT_EQ(Load(Line(1) + "\r\n" + Line(2) + '\n' + Line(3)),
              QStringList({Row(1), Row(2), Row(3)}));
    EXPECT_EQ(Load("torn " + Line(1) + "\r\n" + QByteArray(500, '\0') + Line(2) + "\r\n" + Line(3) +
                   QByteArray(3'000'000, 'x') + "\r\n" + Line(4) + "\r\n"),
              QStringList({Row(3), Row(4)}));
    EXPECT_EQ(file.ScreenLine(0), QString(file.ScreenLine(1)).replace(5, 1, u'3'))
        << "a line has 138 characters";
    EXPECT_EQ(Load(QByteArray(3'000'000, '\xFF')), QStringList());

    QByteArray garbage(2'000'000, Qt::Uninitialized);
    std::mt19937 random(7);
    for (char& byte : garbage)
        byte = char(random());
    QStringList expected;
    for (int at = 0; at < garbage.size() - 200; at += 1 + int(random() % 5000)) {
        const QByteArray line = '\n' + Line(int(expected.size())) + "\r\n";
        garbage.replace(at, line.size(), line);
        at += int(line.size());
        expected += Row(int(expected.size()));
    }
    EXPECT_EQ(Load(garbage), expected);
    EXPECT_FALSE(file.Load(Path(QStringLiteral("none.his"))));
    QDir().mkdir(Path(QStringLiteral("folder.his")));
    EXPECT_THROW(file.Load(Path(QStringLiteral("folder.his"))), platform::RunTimeError);
}

/// Lines begin at every place of the pieces in which a file is read.
TEST_F(HistoryFileTest, NoLineIsLostBetweenThePieces) {
    for (int length = 17; length < 40; ++length) {
        const int count = 600'000 / length;
        const QByteArray line = Line(1).left(length - 1) + '\n';
        Put(line.repeated(count));
        ASSERT_TRUE(file.Load(path));
        ASSERT_EQ(file.Count(), count) << length;
        EXPECT_EQ(file.ScreenLine(count - 1).mid(53, 10), "2024-03-15");
    }
}

/// The quick test of the first ten characters gives what DateTimes::Parse gives.
TEST_F(HistoryFileTest, ADateIsWhatTheLocaleTakesForOne) {
    std::mt19937 random(11);
    const char letters[] = "0123456789-/. \x91:Ad";
    for (const char* locale : {"C", "de_DE", "fr_FR", "en_US", "sv_SE"}) {
        DateTimes::ReadLocale(QLocale(QString::fromLatin1(locale)));
        QByteArray all;
        QStringList expected;
        for (int i = 0; i < 20000; ++i) {
            QByteArray text =
                DateTimes::ShortDate(double(random() % 3'000'000) - 700'000.0).toLatin1();
            for (unsigned change = random() % 3; change > 0; --change)
                text[qsizetype(random() % 10)] = letters[random() % (sizeof letters - 1)];
            all += text + '\n';
            const auto date = DateTimes::Parse(platform::FromCodePage(text));
            if (date)
                expected += platform::FromCodePage(text) + QStringLiteral("  ");
        }
        const QStringList rows = Load(all);
        EXPECT_GT(rows.size(), 3000);
        EXPECT_EQ(rows, expected) << locale;
    }
    DateTimes::ReadLocale(QLocale::c());
}
