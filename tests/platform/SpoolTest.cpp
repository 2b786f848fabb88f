// Lines that wait on disk, over kills, cuts of power and a limit.

#include "platform/Spool.h"
#include "platform/TestFiles.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace platform;

namespace {

class SpoolTest : public ::testing::Test {
protected:
    SpoolTest() { Reopen(); }

    /// As after a kill: nothing of the former object counts but its files.
    void Reopen() { spool = std::make_unique<Spool>(folder.path(), limits); }
    /// Lines of nine bytes and their end.
    void Append(int from, int to) {
        for (int number = from; number <= to; ++number)
            spool->Append("<1>line" + QByteArray::number(number).rightJustified(2, '0'));
    }
    /// Numbers of the lines that are still to be read.
    QList<int> Rest() {
        QList<int> numbers;
        while (const auto line = spool->Next())
            numbers += line->right(2).toInt();
        return numbers;
    }
    static QList<int> Range(int from, int to) {
        QList<int> numbers;
        for (int number = from; number <= to; ++number)
            numbers += number;
        return numbers;
    }
    QString Segment(int index) const {
        return folder.filePath(QDir(folder.path()).entryList({"*.log"}, QDir::Files).value(index));
    }

    QTemporaryDir folder;
    Spool::Limits limits{100, 30};
    std::unique_ptr<Spool> spool;
};

} // namespace

TEST_F(SpoolTest, WhatIsNotConfirmedIsReadAgain) {
    EXPECT_FALSE(spool->Next());
    Append(1, 7);
    for (int i = 0; i < 4; ++i)
        spool->Next();
    const Spool::Place four = spool->ReadTo();
    EXPECT_EQ(Rest(), Range(5, 7));
    spool->Confirm(four);
    EXPECT_EQ(spool->Waiting(), 3);
    Append(8, 8);
    EXPECT_EQ(Rest(), Range(8, 8)) << "goes on where it stood";
    spool->Rewind();
    EXPECT_EQ(Rest(), Range(5, 8));
    Reopen();
    EXPECT_EQ(spool->Waiting(), 4);
    EXPECT_EQ(Rest(), Range(5, 8));
    spool->Confirm(spool->ReadTo());
    Reopen();
    EXPECT_EQ(spool->Waiting(), 0);
    Append(9, 9);
    EXPECT_EQ(Rest(), Range(9, 9));
    EXPECT_EQ(spool->TakeLost(), 0);
}

TEST_F(SpoolTest, ACutOfPowerCostsNoWholeLine) {
    Append(1, 5);
    spool->Next();
    spool->Confirm(spool->ReadTo());
    const QByteArray position = BytesOf(folder.filePath("position"));
    PutBytes(Segment(1), BytesOf(Segment(1)) + "<1>to");
    Reopen();
    Append(6, 6);
    EXPECT_EQ(Rest(), Range(2, 6)) << "the torn line is cut off";
    // The position went to the disk and lines ahead of it didn't, or the other way round.
    for (const QByteArray& noted : {QByteArray("99 30"), QByteArray("1 7"), QByteArray("x")}) {
        PutBytes(folder.filePath("position"), noted);
        Reopen();
        EXPECT_EQ(Rest(), noted.startsWith("99") ? QList<int>() : Range(1, 6)) << noted.data();
    }
    PutBytes(folder.filePath("position"), position);
    PutBytes(Segment(0), "");
    Reopen();
    EXPECT_EQ(Rest(), Range(4, 6)) << "behind what can't be read it goes on";
}

TEST_F(SpoolTest, TheOldestSegmentMakesRoomAndIsCounted) {
    Append(1, 10);
    for (int i = 0; i < 2; ++i)
        spool->Next();
    Append(11, 11);
    EXPECT_EQ(spool->TakeLost(), 3) << "two of them read, none confirmed";
    EXPECT_EQ(spool->TakeLost(), 0);
    EXPECT_EQ(spool->Waiting(), 8);
    EXPECT_EQ(Rest(), Range(4, 11));
    Reopen();
    EXPECT_EQ(Rest(), Range(4, 11));

    // Somebody clears the folder under the running program.
    for (const QString& name : QDir(folder.path()).entryList(QDir::Files))
        QFile::remove(folder.filePath(name));
    Reopen();
    Append(1, 4);
    EXPECT_EQ(Rest(), Range(1, 4));
    const Spool::Place four = spool->ReadTo();
    QFile::remove(Segment(1));
    Append(5, 5);
    EXPECT_EQ(spool->TakeLost(), 4);
    spool->Confirm(four);
    EXPECT_EQ(spool->Waiting(), 1) << "no place in what is gone";
    EXPECT_EQ(Rest(), Range(5, 5));
}
