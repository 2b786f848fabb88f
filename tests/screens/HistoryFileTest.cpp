// The lines that a history file gives, whatever stands in it.

#include "events/HistoryFile.h"

#include "events/HistoProcs.h"
#include "events/TextProcs.h"
#include "model/Models.h"
#include "platform/CodePage.h"
#include "platform/RunTimeError.h"
#include "support/Bench.h"

#include <QRegularExpression>

namespace {

class HistoryFileTest : public Bench {
protected:
    /// Date, time and number of each line; one that stands as it is, without its break.
    QStringList Rows() const {
        QStringList rows;
        for (int row = 0; row < file.Count(); ++row) {
            const QString line = file.ScreenLine(row);
            EXPECT_EQ(line.size(), 162);
            const QString date = line.mid(53, 10);
            if (date.count(QRegularExpression("[0-9]")) == 8)
                rows += date + u' ' + line.mid(69, 8).trimmed() + u' ' + line.left(7).trimmed();
            else
                rows += (line.left(80) + line.mid(82)).trimmed();
        }
        return rows;
    }
    QStringList Load(const QByteArray& bytes) {
        WriteFile(path, bytes);
        EXPECT_TRUE(file.Load(path));
        return Rows();
    }

    QString path = Path("Histo202403.his");
    HistoryFile file;
};

QByteArray Line(int number) {
    return "2024-03-15 12:00:00 " + QByteArray::number(number).rightJustified(6, '0') +
           QByteArray(112, ' ');
}

QString Row(int number) {
    return "2024-03-15 12:00:00 " + QString::number(number).rightJustified(6, u'0');
}

} // namespace

TEST_F(HistoryFileTest, LinesAsTheSystemWritesThem) {
    AddPanel(12, Models::Q7100).Channel(7).setScreenText("Überdruck");
    EventClass event(12, 7, 0, 1);
    event.setGDH(clock.Now());
    event.setNum(12345);
    event.setClock(77);
    HistoProcs::HistoEvent(event);
    ASSERT_TRUE(file.Load(HistoProcs::HistoFileName()));
    ASSERT_EQ(file.Count(), 1) << "the heading isn't a line";
    QString expected = TextProcs::FormateHistoScreen(event);
    expected.replace(6, 1, u' ').replace("\r\n", "  ");
    EXPECT_EQ(file.ScreenLine(0), expected) << "the last digit of the number is gone";

    // The file grows and goes while its lines are shown.
    HistoProcs::HistoEvent(event);
    EXPECT_EQ(file.Count(), 1);
    QFile::resize(HistoProcs::HistoFileName(), 160);
    EXPECT_EQ(file.ScreenLine(0).mid(53, 10), "2024-03-15");
    QFile::resize(HistoProcs::HistoFileName(), 20);
    EXPECT_EQ(file.ScreenLine(0), QString(162, u' '));
    QFile::remove(HistoProcs::HistoFileName());
    EXPECT_FALSE(file.Load(HistoProcs::HistoFileName()));
    EXPECT_EQ(file.Count(), 0);
    EXPECT_THROW((void)file.ScreenLine(0), platform::RunTimeError);
}

TEST_F(HistoryFileTest, DamagedFiles) {
    const std::pair<QByteArray, QStringList> files[] = {
        {"", {}},
        {"Date       Time\r\n", {"Date       Time"}},
        {"Date       Time     Evt\r\n", {}},
        {"\r\n\r\n\n", {}},
        {"2024-03-1", {"2024-03-1"}},
        {"2024-03-15", {"2024-03-15  "}},
        {"2024-03-15\r\n2024-03-15\n", {"2024-03-15  ", "2024-03-15  "}},
        {Line(1) + "\r\n" + Line(2) + '\n' + Line(3), {Row(1), Row(2), Row(3)}},
        {QByteArray(3'000'000, 'y'), {QString(160, u'y')}},
        {"torn " + Line(1) + "\r\n" + QByteArray(500, '\x01') + Line(2) + "\r\n" + Line(3) +
             QByteArray(3'000'000, 'x') + "\r\n" + Line(4) + "\r\n",
         {"torn " + Row(1), QString(160, u'\x01'), Row(3), Row(4)}}};
    for (const auto& [bytes, rows] : files)
        EXPECT_EQ(Load(bytes), rows) << bytes.left(40).constData();
    EXPECT_EQ(file.ScreenLine(2), QString(file.ScreenLine(3)).replace(5, 1, u'3'))
        << "a line has 138 characters";

    EXPECT_FALSE(file.Load(Path("none.his")));
    QDir().mkdir(Path("folder.his"));
    EXPECT_THROW(file.Load(Path("folder.his")), platform::RunTimeError);
}

/// Lines begin at every place of the pieces in which a file is read.
TEST_F(HistoryFileTest, NoLineIsLostBetweenThePieces) {
    for (int length = 17; length < 40; ++length) {
        const int count = 600'000 / length;
        const QByteArray line = Line(1).left(length - 1) + '\n';
        WriteFile(path, line.repeated(count));
        ASSERT_TRUE(file.Load(path));
        ASSERT_EQ(file.Count(), count) << length;
        EXPECT_EQ(file.ScreenLine(count - 1).mid(53, 10), "2024-03-15");
    }
}

TEST_F(HistoryFileTest, ADateIsOneInWhateverForm) {
    for (const char* date : {"2024-03-15", "2024/03/15", "2024.03.15", "15.03.2024", "03/15/2024",
                             "31-12-1999", "29.02.2024"})
        EXPECT_EQ(Load(date + Line(1).mid(10)), QStringList(date + Row(1).mid(10)));
    // No dates: they stand as they are.
    for (const char* text :
         {"2024-13-45", "2024-03/15", "31.02.2024", "2024a03a15", "15.03.24  "}) {
        Load(QByteArray(text) + " words");
        ASSERT_EQ(file.Count(), 1) << text;
        EXPECT_EQ(file.ScreenLine(0).trimmed(), QLatin1String(text) + " words");
    }
}
