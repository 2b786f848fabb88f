#include "platform/CodePage.h"
#include "platform/DiskFlush.h"
#include "platform/FileCopy.h"
#include "platform/FileWriting.h"
#include "platform/LineLog.h"
#include "platform/TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <csignal>
#include <gmock/gmock.h>
#include <sys/resource.h>

using namespace platform;

namespace {

class LineLogTest : public ::testing::Test {
protected:
    int ErrorOfLine() {
        return ErrorOf([this] { log.WriteLine(Text("line")); });
    }
    int ErrorOfOpening(const QString& file) {
        return ErrorOf([&] { log.Open(file, LineLog::AppendMode); });
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(Text("20240315.log"));
    LineLog log;
};

/// No file grows beyond so many bytes while this lives, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t most) {
        getrlimit(RLIMIT_FSIZE, &former_);
        const rlimit limit = {most, former_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &former_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit former_ = {};
    void (*const handler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

} // namespace

TEST(CodePageTest, EveryByteComesBackAsItself) {
    const QString text = FromCodePage(AllBytes());
    EXPECT_EQ(ToCodePage(text), AllBytes());
    QString sample = text.mid(0x41, 1) + text.mid(0x80, 1) + text.mid(0x92, 1) + text.mid(0x9F, 1);
    EXPECT_EQ(sample, Text("A€’Ÿ"));
    EXPECT_EQ(text.mid(0xE9, 1), Text("é"));
    // Foreign characters become one question mark each.
    EXPECT_EQ(ToCodePage(Text("aΩb😀c")), QByteArray("a?b?c"));
    EXPECT_EQ(ToCodePage(QString(QChar(0x80))), QByteArray("?"));
    EXPECT_EQ(ToCodePage(QString(QChar(0xD83D))), QByteArray("?"));
}

TEST_F(LineLogTest, AppendsLinesThatAreThereAtOnce) {
    PutBytes(path, "first\r\n");
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

TEST_F(LineLogTest, GoesOnWhenTheFileIsRemovedUnderIt) {
    const QString trace = folder.filePath(Text("Trace"));
    const QString file = trace + Text("/x.log");
    log.Open(file, LineLog::AppendMode);
    log.WriteLine(Text("lost"));
    ASSERT_TRUE(QFile::remove(file));
    log.WriteLine(Text("kept"));
    EXPECT_EQ(BytesOf(file), QByteArray("kept\r\n"));
    ASSERT_TRUE(QDir(trace).removeRecursively());
    log.WriteLine(Text("back"));
    EXPECT_EQ(BytesOf(file), QByteArray("back\r\n"));
    ASSERT_TRUE(QDir().rename(trace, folder.filePath(Text("taken"))));
    log.WriteLine(Text("again"));
    EXPECT_EQ(BytesOf(file), QByteArray("again\r\n")) << "a folder that was moved away";
}

TEST_F(LineLogTest, SaysWhyALineCannotBeWrittenAndOpensWithTheNext) {
    EXPECT_EQ(ErrorOfLine(), errors::BadFileName);
    log.Commit();
    log.Open(Text("/dev/full"), LineLog::AppendMode);
    EXPECT_EQ(ErrorOfLine(), errors::DiskFull);
    ASSERT_TRUE(QDir().mkdir(path));
    EXPECT_EQ(ErrorOfOpening(path), errors::PathAccess);
    EXPECT_FALSE(log.IsOpen());
    EXPECT_EQ(ErrorOfLine(), errors::PathAccess);
    ASSERT_TRUE(QDir().rmdir(path));
    log.WriteLine(Text("kept"));
    EXPECT_EQ(BytesOf(path), QByteArray("kept\r\n"));
    EXPECT_EQ(ErrorOfOpening(path + Text("/x.log")), errors::PathAccess);
}

TEST_F(LineLogTest, EndsALineThatAKillCutShort) {
    PutBytes(path, "whole\r\ncut sh");
    log.Open(path, LineLog::AppendMode);
    log.WriteLine(Text("next"));
    EXPECT_EQ(BytesOf(path), QByteArray("whole\r\ncut sh\r\nnext\r\n"));
    const QString missing = folder.filePath(Text("none.log"));
    EndTornLine(missing);
    EXPECT_FALSE(QDir(folder.path()).exists(Text("none.log")));
}

TEST_F(LineLogTest, EachFileIsFlushedOnceForManyWrites) {
    DiskFlush::Pay();
    log.Open(folder.filePath(Text("a.log")), LineLog::AppendMode);
    for (int i = 0; i < 100; ++i)
        log.WriteLine(Text("line"));
    DiskFlush::Owe(folder.filePath(Text("gone.log")));
    EXPECT_EQ(DiskFlush::Pay(), 2);
    EXPECT_EQ(DiskFlush::Pay(), 0);
}

TEST(FileWritingTest, AFullDiskLeavesEveryFileAsItWas) {
    const QTemporaryDir folder;
    const QString kept = folder.filePath(Text("kept"));
    const QString large = folder.filePath(Text("large"));
    const QString made = folder.filePath(Text("made"));
    const QByteArray much(5000, 'x');
    PutBytes(kept, "former");
    PutBytes(large, much);
    QList<int> told;
    {
        // A failure told in here wouldn't get into a file either.
        const FullDisk full(100);
        told += ErrorOf([&] { AppendTo(kept, much, {}); });
        told += ErrorOf([&] { AppendTo(made, much, "head"); });
        told += ErrorOf([&] { ReplaceFile(kept, much); });
        told += ErrorOf([&] { FileCopy(large, made).Advance(much.size()); });
    }
    EXPECT_THAT(told, ::testing::Each(errors::DeviceIo));
    EXPECT_EQ(BytesOf(kept), "former") << "nothing torn";
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), TextList({"kept", "large"}));
    EXPECT_EQ(ErrorOf([] { AppendTo(Text("/dev/full"), "x", {}); }), errors::DiskFull);
    EXPECT_EQ(ErrorOf([] { ReplaceFile(Text("/dev/full"), "x"); }), errors::DiskFull);
}
