// The bytes of the site file's pieces, and what a damaged piece does.

#include "model/SiteFile.h"

#include "model/SiteBytes.h"

int ErrorNumberOf(const std::function<void()>& body) {
    try {
        body();
        return 0;
    } catch (const platform::RunTimeError& error) {
        return error.Number();
    }
}

namespace {

TEST(SiteFile, PanelRecordHoldsAllChannels) {
    PanelClass panel;
    panel.setNumero(64);
    panel.setModel(1);
    panel.setTitle(Text("  Hall A "));
    panel.setTitleColor(0x00FF8001);
    panel.setActive(true);
    ChannelClass& channel = panel.Channel(24);
    channel.setScreenText(Text("Pompe 1 \u20AC"));
    channel.setPrintText(Text("\u00E9t\u00E9"));
    channel.setHelpNum(48);
    channel.setBibNum(0x0140);
    channel.setScrAlm(true);
    channel.setHisto(false);
    channel.setKlaxon(true);
    channel.setAlmPrio(7);
    channel.setReact(true);
    channel.setReactTpo(0x01020304);
    channel.setTypeImp(-2);
    SiteBytes expected;
    expected.Byte(64).Byte(1).Text("  Hall A ").Long(0x00FF8001).Word(-1);
    for (int i = 1; i <= 23; ++i)
        expected.Raw(QByteArray::fromHex("00000000 00000000 0000 0000 0000 0000"
                                         "ffff 0000 6300 0000 00000000 0000"));
    expected.Raw(QByteArray::fromHex("09000000 506f6d706520312080 03000000 e974e9"
                                     "3000 4001 ffff 0000 0000 ffff 0700 ffff 04030201 feff"));
    EXPECT_EQ(Saved(panel), expected.bytes);
    EXPECT_FALSE(panel.Modified());

    PanelClass read;
    read.setActive(true);
    SiteFileReader reader(expected.bytes);
    EXPECT_TRUE(read.ReadFrom(reader));
    EXPECT_EQ(reader.Left(), 0);
    EXPECT_FALSE(read.Modified());
    EXPECT_EQ(read.Title(), Text("Hall A")) << "its blanks are lost on the way";
    read.setTitle(panel.Title());
    EXPECT_EQ(Saved(read), expected.bytes);
}

TEST(SiteFile, MirrorList) {
    MirrorClasses list;
    list.Add(3, 12, 5, 4, 2);
    list.Add(7, 0, 8, 0, 0);
    const QByteArray bytes = QByteArray::fromHex("0200 0300 0c00 0500 0400 0200"
                                                 "0700 0000 0800 0000 0000");
    EXPECT_EQ(Saved(list), bytes);
    EXPECT_TRUE(list.Modified());

    MirrorClasses read;
    for (const QByteArray& file : {bytes, bytes, QByteArray::fromHex("ffff")}) {
        SiteFileReader reader(file);
        EXPECT_TRUE(read.ReadFrom(reader));
    }
    EXPECT_EQ(read.Count(), 4) << "added to those there are";
    EXPECT_EQ(read.Item(3).ID(), Text("03120504"));
    EXPECT_TRUE(read.Modified());
    SiteFileReader truncated(bytes.chopped(1));
    EXPECT_EQ(ErrorNumberOf([&] { read.ReadFrom(truncated); }), errors::InputPastEnd);
}

TEST(SiteFile, TextsOfBothKinds) {
    SiteFileWriter writer;
    writer.PutFixedText(Text("abcdef"), 4);
    writer.PutFixedText(Text("\u20AC"), 3);
    writer.PutFixedText(QString(2, QChar()), 2);
    EXPECT_EQ(writer.Bytes(), QByteArray("abcd\x80  \0\0", 9));
    SiteFileReader reader(writer.Bytes());
    EXPECT_EQ(reader.GetFixedText(4), Text("abcd"));
    EXPECT_EQ(reader.GetFixedText(3), Text("\u20AC  "));
    EXPECT_EQ(reader.GetFixedText(2), QString(2, QChar()));

    SiteFileReader blanks(
        SiteBytes().Text("  a b\r\n\t ").Text("    ").Text(QByteArray("\0x ", 3)).bytes);
    EXPECT_EQ(blanks.GetFileString(), Text("a b\r\n\t"));
    EXPECT_EQ(blanks.GetFileString(), QString());
    EXPECT_EQ(blanks.GetFileString(), QString(QChar()) + u'x');
}

// A damaged length would otherwise ask for two gigabytes or run backwards.
TEST(SiteFile, LengthsBeyondTheFileAreRefused) {
    for (const qint32 length : {-1, -2147483647 - 1, 2147483647, 4}) {
        SiteFileReader reader(SiteBytes().Long(length).Raw("abc").bytes);
        EXPECT_EQ(ErrorNumberOf([&] { reader.GetFileString(); }), errors::InputPastEnd) << length;
    }
    SiteFileReader shortFile(QByteArray("abc"));
    EXPECT_EQ(ErrorNumberOf([&] { shortFile.GetLong(); }), errors::InputPastEnd);
    EXPECT_EQ(shortFile.GetWord(), 0x6261);
    EXPECT_EQ(ErrorNumberOf([&] { shortFile.Skip(2); }), errors::InputPastEnd);
    EXPECT_EQ(shortFile.GetByte(), 'c');
    EXPECT_EQ(ErrorNumberOf([&] { shortFile.GetByte(); }), errors::InputPastEnd);
    // Only plain files are opened.
    EXPECT_NE(ErrorNumberOf([] { SiteFileReader::Open(Text("/dev/zero")); }), 0);
    EXPECT_NE(ErrorNumberOf([] { SiteFileReader::Open(Text("/")); }), 0);
    EXPECT_EQ(ErrorNumberOf([] { SiteFileReader::Open(Text("/no/such/file")); }),
              errors::FileNotFound);
}

} // namespace
