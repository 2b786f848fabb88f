// The build tool refuses faulty sources with the place of the fault, and then leaves no output.

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include "BaseReader.h"

using ::testing::HasSubstr;

namespace {

class Mkbase : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(folder_.path()).mkdir("sounds"));
        Write("texts.tsv", "ID\tUsed\tRemark\tEnglish\tFrançais\n1\t\t\tYes\tOui\n");
        Write("config.tsv", "ID\tValue\tRemark\n100\t\tempty\n");
        Write("sounds/0.wav", QByteArray("RIFF\4\0\0\0WAVE", 12));
    }

    void Write(const char* name, const QByteArray& content) {
        QFile file(folder_.filePath(QString::fromUtf8(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void WriteTexts(const QByteArray& lines) {
        Write("texts.tsv", "ID\tUsed\tRemark\tEnglish\tFrançais\n" + lines);
    }

    QString Output() const { return folder_.filePath("out.cfg"); }

    /// Runs the tool; what it says stands in `message`.
    int Run() {
        QProcess tool;
        tool.start(QStringLiteral(KORVANELLE_BUILD_DIR "/tools/mkbase/korvanelle-mkbase"),
                   {folder_.path(), Output()});
        EXPECT_TRUE(tool.waitForFinished());
        message = tool.readAllStandardError();
        return tool.exitCode();
    }
    void ExpectRefused(const char* fault) {
        EXPECT_EQ(Run(), 1) << fault;
        EXPECT_THAT(message.toStdString(), HasSubstr(fault));
        EXPECT_EQ(message.count('\n'), 1) << fault;
        EXPECT_FALSE(QFile::exists(Output())) << fault;
    }

    QByteArray message;

    QTemporaryDir folder_;
};

TEST_F(Mkbase, BuildsAndReplacesABaseUnlessTheSourcesAreFaulty) {
    ASSERT_EQ(Run(), 0);
    WriteTexts("1\t\t\tYes\tOui\n2\t\t\tNo, \"it's\"\tNon\n");
    EXPECT_EQ(Run(), 0);
    WriteTexts("1\t\t\tYes\n");
    EXPECT_EQ(Run(), 1);
    EXPECT_EQ(BaseTable("T_Language", Output()).Seek(2).value(3), "No, \"it's\"")
        << "a fault leaves the old base";
    EXPECT_EQ(QDir(folder_.path()).entryList(QStringList("out.cfg*")).size(), 1);
}

TEST_F(Mkbase, TellsThePlaceOfAFault) {
    const struct {
        const char* lines;
        const char* fault;
    } texts[] = {
        {"1\t\t\tYes\tOui\n1\t\t\tNo\tNon\n", "texts.tsv:3: id 1 stands twice"},
        {"1a\t\t\tYes\tOui\n", "texts.tsv:2: id \"1a\" is not a number"},
        {"1\t\t\tYes\n", "texts.tsv:2: 4 columns instead of 5"},
        {"1\t\t\tYes\t \n", "texts.tsv:2: text 1 has no words in Français"},
        {"1\t\t\tYes\tOui\n2\t\t\tPort $\tPort\n",
         "texts.tsv:3: text 2 has another number of \"$\""},
        {"1\t\t\tOn|Off\tMarche\n", "texts.tsv:2: text 1 has another number of \"|\""},
        {"1\t\t\tYes\tOui \xE2\x86\x92\n", "texts.tsv:2: character U+2192 is not in Windows-1252"},
        {"1\t\t\tYes\tOui \xE9\n", "texts.tsv: not valid UTF-8"},
    };
    for (const auto& [lines, fault] : texts) {
        WriteTexts(lines);
        ExpectRefused(fault);
    }
    Write("texts.tsv", "ID\tRemark\tEnglish\n");
    ExpectRefused("texts.tsv:1: the header");
    WriteTexts("1\t\t\tYes\tOui\n");
    Write("sounds/1.wav", "OggS");
    ExpectRefused("1.wav: not a .wav file");
    Write("sounds/one.wav", "RIFF    WAVE");
    Write("sounds/1.wav", "RIFF    WAVE");
    ExpectRefused("one.wav: not named after one sound number");
    Write("config.tsv", "ID\tValue\tRemark\n7\tx\t\n\n7\ty\t\n");
    ExpectRefused("config.tsv:4: id 7 stands twice");
}

} // namespace
