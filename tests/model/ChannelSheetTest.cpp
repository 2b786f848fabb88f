// The sheet of the channels: its bytes, and what comes back of it after a spreadsheet or an editor
// had it.

#include "model/ChannelSheet.h"

#include "model/SiteBytes.h"
#include "platform/CodePage.h"

#include <QTemporaryDir>
#include <random>

namespace {

const QByteArray Headings = "Pnl\tChnl\tScreen\tPrint\tTypePrt\tKlaxon\tPrio\tHisto\tBib\tHelp\tRea"
                            "ct\tTempo\tTxtScr\tTxtImp";
/// The columns between the channel's number and its texts.
const QByteArray Settings = "1\t1\t2\t1\t7\t0\t64\t48\t1\t8\t";

QByteArray Sheet(const ConfigClass& site) {
    return ChannelSheetExport(site).Bytes();
}

class ChannelSheet : public ::testing::Test {
protected:
    /// Takes lines below the headings; gives the number of the error, 0 for none.
    int Import(const QByteArray& lines) { return Take(Headings + "\r\n" + lines); }
    int Take(const QByteArray& bytes) {
        sheet = std::make_unique<ChannelSheetImport>(site);
        return ErrorNumberOf([&] { sheet->Take(bytes); });
    }
    ChannelClass& First() { return site.Panel(1).Channel(1); }

    /// What one line with two texts as a file has them gives.
    QString TextOf(const QByteArray& texts) {
        First().setScreenText({});
        EXPECT_EQ(Import("1\t1\t" + Settings + texts), 0) << texts.toStdString();
        return First().ScreenText() + u'|' + First().PrintText();
    }

    ConfigClass site;
    std::unique_ptr<ChannelSheetImport> sheet;
};

TEST_F(ChannelSheet, WritesTheChannelsOfEachModel) {
    site.Panel(2).setModel(2);
    ChannelClass& channel = site.Panel(2).Channel(24);
    channel.setScrAlm(true);
    channel.setTypeImp(3);
    channel.setReactTpo(-8);
    channel.setScreenText(Text(" \"Tür\" 5 €"));
    const ChannelSheetExport written(site);
    const QList<QByteArray> lines = written.Bytes().split('\n');
    EXPECT_EQ(written.Lines(), 64 * 12 + 12);
    ASSERT_EQ(lines.size(), written.Lines() + 2);
    EXPECT_EQ(lines[0], Headings + '\r');
    EXPECT_EQ(lines[1], " 1 \t 1 \t 0 \t 0 \t 0 \t 0 \t 99 \t 1 \t 0 \t 0 \t 0 \t 0 \t\t\t\r");
    EXPECT_EQ(lines[36], " 2 \t 24 \t 1 \t 0 \t 3 \t 0 \t 99 \t 1 \t 0 \t 0 \t 0 \t-8 \t"
                         " \"T\xFCr\" 5 \x80\t\t\r");
    EXPECT_EQ(lines.last(), "");
}

TEST_F(ChannelSheet, TakesEveryColumn) {
    EXPECT_EQ(Import("64\t24\t" + Settings + "screen\tprint\t"), 0);
    const ChannelClass& channel = site.Panel(64).Channel(24);
    EXPECT_TRUE(channel.ScrAlm() && channel.PrtAlm() && channel.Klaxon() && channel.React());
    EXPECT_FALSE(channel.Histo());
    const QList<int> numbers{channel.TypeImp(), channel.AlmPrio(), channel.BibNum(),
                             channel.HelpNum(), channel.ReactTpo()};
    EXPECT_EQ(numbers, QList<int>({2, 7, 64, 48, 8}));
    EXPECT_EQ(channel.ScreenText() + channel.PrintText(), Text("screenprint"));
    EXPECT_TRUE(channel.Modified() && !site.Panel(64).Channel(23).Modified());
    EXPECT_EQ(sheet->Lines(), 1);
    EXPECT_EQ(sheet->Changed(), 1);
}

// Texts of every kind that a site file may bring, with values that no screen lets anybody enter.
TEST_F(ChannelSheet, GivesBackWhatItWrote) {
    const QStringList pieces{Text("\""),   Text("\"\""), Text(" "),  Text("é"),     Text("Ø½"),
                             Text("\r\n"), Text("\n"),   Text("\r"), Text("a;,'b"), Text("12")};
    std::mt19937 random(7);
    const auto text = [&](qsizetype kinds) {
        QString made;
        for (unsigned i = random() % 5; i > 0; --i)
            made += pieces[qsizetype(random()) % kinds];
        // A line that begins with a number is one of its own.
        return u'x' + made;
    };
    for (int panel = 1; panel <= 64; ++panel) {
        site.Panel(panel).setModel(quint8(panel % 6));
        for (int number = 1; number <= site.Panel(panel).ChannelCount(); ++number) {
            ChannelClass& channel = site.Panel(panel).Channel(number);
            channel.setScreenText(text(pieces.size() - 1).mid(number % 2));
            channel.setPrintText(text(pieces.size() - 1));
            channel.setAlmPrio(qint16(random() % 300));
            channel.setReactTpo(qint32(random()));
            channel.setHisto(random() % 2 == 0);
        }
    }
    const ChannelSheetExport written(site);
    EXPECT_EQ(written.LostPanel(), 0) << written.LostPanel() << '/' << written.LostChannel();
    site.setModified(false);
    EXPECT_EQ(Take(written.Bytes()), 0) << sheet->BadLine();
    EXPECT_EQ(sheet->Lines(), written.Lines());
    EXPECT_EQ(sheet->Changed(), 0);
    EXPECT_FALSE(site.Modified());
    EXPECT_FALSE(sheet->IsUnicode());
}

TEST_F(ChannelSheet, TellsOfTextsThatDontComeBack) {
    for (const char16_t* text : {u"a\tb", u"x\r\n5 m", u"\x3A9"}) {
        site.Panel(3).Channel(4).setPrintText(QString::fromUtf16(text));
        const ChannelSheetExport written(site);
        EXPECT_EQ(written.LostPanel() * 100 + written.LostChannel(), 304);
    }
    // No half of a parted text gets into the other's column.
    site.Panel(3).Channel(4).setPrintText(Text("a\tb"));
    EXPECT_EQ(Take(Sheet(site)), errors::Subscript);
    EXPECT_EQ(sheet->BadColumn(), Text("TxtScr"));
    EXPECT_EQ(sheet->BadLine(), 1 + 2 * 12 + 4);
}

TEST_F(ChannelSheet, ComesBackFromASpreadsheet) {
    EXPECT_EQ(TextOf("a\tb"), Text("a|b"));
    EXPECT_EQ(TextOf("\"a\"\tb\t\t\tremark"), Text("a|b"));
    EXPECT_EQ(TextOf("\"\"\"Pump\"\" on\"\t\" b\"\t"), Text("\"Pump\" on| b"));
    EXPECT_EQ(TextOf("\"one\ttext\"\t\"in\r\ntwo\r\n\r\nlines\"\t"),
              Text("one\ttext|in\r\ntwo\r\n\r\nlines"));
    // Quotes that close nothing are characters.
    EXPECT_EQ(TextOf("\"a\" b\t\"c"), Text("\"a\" b|\"c"));
    EXPECT_EQ(TextOf("\""), Text("\"|"));
    // Tabs at the end of a line got lost.
    EXPECT_EQ(TextOf("a"), Text("a|"));
    EXPECT_EQ(Import("1\t1\t" + Settings.chopped(1)), 0);
    EXPECT_EQ(First().ScreenText(), QString());
    // Numbers in quotes, other line ends and lines that aren't channels.
    EXPECT_EQ(Take("\n0\t1\tx\n remark 5\n\n\"2\"\t\"3\"\t" + Settings + "c\td\n4\t5\t" + Settings +
                   "e\tf"),
              0);
    EXPECT_EQ(sheet->Lines(), 2);
    EXPECT_EQ(site.Panel(2).Channel(3).ScreenText(), Text("c"));
    EXPECT_EQ(site.Panel(4).Channel(5).PrintText(), Text("f"));
}

TEST_F(ChannelSheet, ComesBackFromAWholeFileOfASpreadsheet) {
    First().setScreenText(Text("\"Vanne\" 3½ – débit"));
    site.Panel(64).Channel(12).setPrintText(Text("Kühlung"));
    site.setModified(false);
    QString text = platform::FromCodePage(Sheet(site));
    text.replace(Text("\t\r\n"), Text("\n"));
    text.replace(Text(" \t "), Text("\t"));
    text.replace(Text("\"Vanne\" 3½ – débit"), Text("\"\"\"Vanne\"\" 3½ – débit\""));
    const QByteArray utf16(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    for (const QByteArray& bytes :
         {platform::ToCodePage(text), text.toUtf8(), "\xEF\xBB\xBF" + text.toUtf8(),
          "\xFF\xFE" + utf16,
          "\xEF\xBB\xBF" + text.normalized(QString::NormalizationForm_D).toUtf8()}) {
        EXPECT_EQ(Take(bytes), 0) << sheet->BadLine();
        EXPECT_EQ(sheet->Lines(), 768);
        EXPECT_FALSE(site.Modified());
        EXPECT_EQ(sheet->IsUnicode(), bytes != platform::ToCodePage(text));
    }
    // A mark in front of what isn't UTF-8 at all costs nothing either.
    EXPECT_EQ(Take("\xEF\xBB\xBF"
                   "1\t1\t" +
                   Settings + "\xFC\t"),
              0);
    EXPECT_EQ(First().ScreenText(), Text("ü"));
}

TEST_F(ChannelSheet, TellsWhereALineIsBad) {
    const QByteArray good = "1\t1\t" + Settings + "a\tb\r\n";
    const std::tuple<QByteArray, int, const char*> cases[] = {
        {"65\t1\t" + Settings, errors::Subscript, "Pnl"},
        {"-1\t1\t" + Settings, errors::Subscript, "Pnl"},
        {"1x\t1\t" + Settings, errors::TypeMismatch, "Pnl"},
        {"2\t25\t" + Settings, errors::Subscript, "Chnl"},
        {"2\t0\t" + Settings, errors::Subscript, "Chnl"},
        {"2", errors::Subscript, "Chnl"},
        {"2\t1\t1\t1\t2\t1\t7\t0\t64\t48\t1", errors::Subscript, "Tempo"},
        {"2\t1\tyes\t1\t2\t1\t7\t0\t64\t48\t1\t8\ta\tb", errors::TypeMismatch, "Screen"},
        {"2\t1\t1\t1\t2\t1\t7\t0\t6,4\t48\t1\t8\ta\tb", errors::TypeMismatch, "Bib"},
        {"2\t1\t1\t1\t4\t1\t7\t0\t64\t48\t1\t8\ta\tb", errors::InvalidPropertyValue, "TypePrt"},
        {"2\t1\t1\t1\t2\t1\t0\t0\t64\t48\t1\t8\ta\tb", errors::InvalidPropertyValue, "Prio"},
        {"2\t1\t1\t1\t2\t1\t7\t0\t64\t49\t1\t8\ta\tb", errors::InvalidPropertyValue, "Help"},
        {"2\t1\t1\t1\t2\t1\t7\t0\t64\t48\t1\t9\ta\tb", errors::InvalidPropertyValue, "Tempo"},
        {"2\t1\t" + Settings + "\xCE\xA9\xCE\xA9", errors::InvalidPropertyValue, "TxtScr"},
    };
    for (const auto& [line, error, column] : cases) {
        SCOPED_TRACE(line.toStdString());
        First().setScreenText({});
        EXPECT_EQ(Import(good + line + "\r\n3\t1\t" + Settings), error);
        EXPECT_EQ(sheet->BadLine(), 3);
        EXPECT_EQ(sheet->BadColumn(), Text(column));
        EXPECT_EQ(First().ScreenText(), Text("a"));
        EXPECT_EQ(sheet->Lines(), 1);
        EXPECT_FALSE(site.Panel(2).Channel(1).Modified()) << "a bad line changes nothing";
        EXPECT_FALSE(site.Panel(3).Channel(1).Modified());
    }
}

TEST_F(ChannelSheet, GoesThroughAFile) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(Text("channels.txt"));
    WriteFile(path, "an earlier and much longer one");
    First().setScreenText(Text("Pump"));
    ChannelSheetExport(site).Write(path);
    EXPECT_EQ(FileBytes(path), Sheet(site));
    First().setScreenText(Text("Valve"));
    ChannelSheetImport import(site);
    import.Read(path);
    EXPECT_EQ(First().ScreenText(), Text("Pump"));
    EXPECT_EQ(ErrorNumberOf([&] { import.Read(folder.path() + Text("/none")); }),
              errors::FileNotFound);
    EXPECT_NE(ErrorNumberOf([&] { ChannelSheetExport(site).Write(folder.path()); }), 0);
}

} // namespace
