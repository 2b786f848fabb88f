#include "platform/CodePage.h"
#include "platform/DiskFlush.h"
#include "platform/LineLog.h"
#include "platform/TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace platform;

TEST(CodePageTest, EveryByteComesBackAsItself) {
    QByteArray all;
    for (int code = 0; code < 256; ++code)
        all.append(char(code));
    const QString text = FromCodePage(all);
    EXPECT_EQ(ToCodePage(text), all);
    QString sample = text.mid(0x41, 1) + text.mid(0x80, 1) + text.mid(0x92, 1) + text.mid(0x9F, 1);
    EXPECT_EQ(sample, Text("A€’Ÿ"));
    EXPECT_EQ(text.mid(0xE9, 1), Text("é"));
}

TEST(CodePageTest, ForeignCharactersBecomeOneQuestionMarkEach) {
    EXPECT_EQ(ToCodePage(Text("aΩb😀c")), QByteArray("a?b?c"));
    EXPECT_EQ(ToCodePage(QString(QChar(0x80))), QByteArray("?"));
    EXPECT_EQ(ToCodePage(QString(QChar(0xD83D))), QByteArray("?"));
}

TEST(LineLogTest, AppendsLinesThatAreThereAtOnce) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(Text("20240315.log"));
    PutBytes(path, "first\r\n");
    LineLog log;
    log.Open(path, LineLog::AppendMode);
    log.WriteLine(Text("Prüfung €"));
    log.Commit();
    EXPECT_EQ(BytesOf(path), QByteArray("first\r\nPr\xFC"
                                        "fung \x80\r\n"));
    const QString next = folder.filePath(Text("20240316.log"));
    log.Open(next, LineLog::AppendMode);
    log.WriteLine(Text("day"));
    EXPECT_EQ(BytesOf(next), QByteArray("day\r\n"));
}

TEST(LineLogTest, SaysWhyALineCannotBeWritten) {
    const QTemporaryDir folder;
    const auto line = Text("line");
    LineLog log;
    EXPECT_EQ(ErrorOf([&] { log.WriteLine(line); }), errors::BadFileName);
    log.Commit();
    log.Open(Text("/dev/full"), LineLog::AppendMode);
    EXPECT_EQ(ErrorOf([&] { log.WriteLine(line); }), errors::DiskFull);
    const QString blocked = folder.filePath(Text("file"));
    PutBytes(blocked, "x");
    const QString beneath = blocked + Text("/x.log");
    EXPECT_EQ(ErrorOf([&] { log.Open(beneath, LineLog::AppendMode); }), errors::PathAccess);
    EXPECT_FALSE(log.IsOpen());
    EXPECT_EQ(ErrorOf([&] { log.WriteLine(line); }), errors::PathAccess);
}

TEST(LineLogTest, GoesOnWhenTheFileIsRemovedUnderIt) {
    const QTemporaryDir folder;
    const QString trace = folder.filePath(Text("Trace"));
    const QString path = trace + Text("/x.log");
    LineLog log;
    log.Open(path, LineLog::AppendMode);
    log.WriteLine(Text("lost"));
    ASSERT_TRUE(QFile::remove(path));
    log.WriteLine(Text("kept"));
    EXPECT_EQ(BytesOf(path), QByteArray("kept\r\n"));
    ASSERT_TRUE(QDir(trace).removeRecursively());
    log.WriteLine(Text("back"));
    EXPECT_EQ(BytesOf(path), QByteArray("back\r\n"));
    ASSERT_TRUE(QDir().rename(trace, folder.filePath(Text("taken"))));
    log.WriteLine(Text("again"));
    EXPECT_EQ(BytesOf(path), QByteArray("again\r\n")) << "a folder that was moved away";
}

TEST(LineLogTest, OpensWithTheNextLineWhatCouldNotBeOpened) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(Text("20240315.log"));
    LineLog log;
    EXPECT_EQ(ErrorOf([&] { log.WriteLine(Text("x")); }), errors::BadFileName);
    ASSERT_TRUE(QDir().mkdir(path));
    EXPECT_EQ(ErrorOf([&] { log.Open(path, LineLog::AppendMode); }), errors::PathAccess);
    EXPECT_EQ(ErrorOf([&] { log.WriteLine(Text("lost")); }), errors::PathAccess);
    ASSERT_TRUE(QDir().rmdir(path));
    log.WriteLine(Text("kept"));
    EXPECT_EQ(BytesOf(path), QByteArray("kept\r\n"));
}

TEST(LineLogTest, EndsALineThatAKillCutShort) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(Text("20240315.log"));
    PutBytes(path, "whole\r\ncut sh");
    LineLog log;
    log.Open(path, LineLog::AppendMode);
    log.WriteLine(Text("next"));
    EXPECT_EQ(BytesOf(path), QByteArray("whole\r\ncut sh\r\nnext\r\n"));
    const QString missing = folder.filePath(Text("none.log"));
    EndTornLine(missing);
    EXPECT_FALSE(QDir(folder.path()).exists(Text("none.log")));
}

TEST(DiskFlushTest, EachFileIsFlushedOnceForManyWrites) {
    const QTemporaryDir folder;
    DiskFlush::Pay();
    LineLog log;
    log.Open(folder.filePath(Text("a.log")), LineLog::AppendMode);
    for (int i = 0; i < 100; ++i)
        log.WriteLine(Text("line"));
    DiskFlush::Owe(folder.filePath(Text("gone.log")));
    EXPECT_EQ(DiskFlush::Pay(), 2);
    EXPECT_EQ(DiskFlush::Pay(), 0);
}
