#include "model/MirrorClass.h"

#include "model/SiteBytes.h"

namespace {

TEST(Mirrors, AreFoundByTheirEndPoints) {
    MirrorClasses list;
    list.Add(3, 12, 5, 4, 1);
    list.Add(7, 0, 8, 0, 0);
    EXPECT_EQ(list.Item(2).ID(), Text("07000800"));
    EXPECT_EQ(list.GetByID(Text("03120504")), &list.Item(1));
    EXPECT_EQ(list.GetByID(Text("99999999")), nullptr);

    MirrorClass other;
    other.Copy(list.Item(1));
    other.setMirrorType(2);
    EXPECT_TRUE(list.IsAlreadyPresent(other));
    other.setToChannel(5);
    EXPECT_FALSE(list.IsAlreadyPresent(other));
}

TEST(Mirrors, PositionsCountFromOne) {
    MirrorClasses list;
    MirrorClass& first = list.Add(1, 1, 2, 1, 1);
    for (qint16 i = 2; i <= 50; ++i)
        list.Add(i, 1, 2, 1, 1);
    EXPECT_EQ(&first, &list.Item(1)) << "a rule stays in its place while others come";
    for (const int index : {-1, 0, 51})
        EXPECT_EQ(ErrorNumberOf([&] { list.Item(index); }), errors::Subscript);
    EXPECT_EQ(ErrorNumberOf([&] { list.Remove(51); }), errors::Subscript);
    list.Remove(1);
    EXPECT_EQ(list.Item(1).FromModule(), 2);
    int walked = 0;
    for (const MirrorClass& rule : list)
        walked += rule.FromModule() == walked + 2 ? 1 : 0;
    EXPECT_EQ(walked, 49);
}

TEST(Mirrors, TakingAllAwayIsAChangeWhereThereWasOne) {
    MirrorClasses list;
    list.RemoveAll();
    EXPECT_FALSE(list.Modified());
    list.Add(0, 0, 0, 0, 0);
    EXPECT_TRUE(list.Modified());
    list.setModified(false);
    list.RemoveAll();
    EXPECT_TRUE(list.Modified() && list.Count() == 0);
}

TEST(Mirrors, CopyTakesTheMarkOfItsSource) {
    MirrorClasses source;
    source.Add(5, 6, 7, 8, 2);
    MirrorClasses target;
    target.Add(9, 9, 9, 9, 1);
    target.Copy(source);
    EXPECT_TRUE(target.Modified() && target.Item(1).Modified());
    source.setModified(false);
    target.Copy(source);
    target.Copy(target);
    EXPECT_FALSE(target.Modified() || target.Item(1).Modified());
    EXPECT_EQ(Saved(target), Saved(source));
}

} // namespace
