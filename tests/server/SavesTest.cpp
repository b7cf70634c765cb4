#include "ServiceFixture.h"

using namespace tarvex;
using requests::Outcome;

using Saves = ServiceFixture;

TEST_F(Saves, ReplaceTheGoalsOfAnArea)
{
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("old") + goal("older")), "OK");
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("x{_end_}y") + goal("new")), "OK");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=1;2;"), "OK");
    EXPECT_EQ(goalNames(), "x{_end_}y|new|");
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4="), "OK");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=3;4;77;x;"), "OK");
    EXPECT_EQ(goalNames(), "");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4="), "OK");
}

TEST_F(Saves, KeepTheNeighboursOfABrokenRecord)
{
    const std::string broken = "name:b;priority:5;checked:0;setsId:x;areaId:3;{_end_}";
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("a") + broken + goal("foreign", 99) +
                                                  goal("elsewhere", 1, 9) + goal("c")),
              "OK");
    EXPECT_EQ(goalNames(), "a|c|");
}

TEST_F(Saves, ThatCameToNothingProtectTheOldGoalsOnce)
{
    postAsAnna("create-some-goals", "&p4=" + goal("kept"));
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=name:b;priority:5;checked:7;setsId:1;areaId:3;{_end_}"),
              "Error");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=1;"), "Error");
    EXPECT_EQ(goalNames(), "kept|");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=1;"), "OK");
}

TEST_F(Saves, ThatCameToNothingLeaveOtherPlacesAndOthersAlone)
{
    postAsAnna("create-some-goals", "&p4=" + goal("here") + goal("there", 1, 4));
    const std::string broken = "&p4=name:b;priority:5;checked:7;setsId:1;areaId:3;{_end_}";
    EXPECT_EQ(post("p1=create-some-goals" + credentials(m_login, "guessed") + broken), "Error");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=1;"), "OK"); // a stranger's refusal protects nothing
    EXPECT_EQ(postAsAnna("create-some-goals", broken), "Error");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=2;"), "OK");
}

TEST_F(Saves, ThatSucceedLaterOrWereLongAgoFreeTheDelete)
{
    postAsAnna("create-some-goals", "&p4=" + goal("old"));
    m_service.refuse(asAnna("create-some-goals", "&p4=" + goal("x")), Outcome::Busy);
    EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + goal("new")), "OK");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=1;"), "OK");
    m_service.refuse(asAnna("create-some-goals", "&p4=" + goal("x")), Outcome::Busy);
    m_now += requests::RefusedSaves::lifetime;
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=2;"), "OK");
}

TEST_F(Saves, RefusedBeforeAnyoneSignedInProtectToo)
{
    postAsAnna("create-some-goals", "&p4=" + goal("kept") + goal("also kept", 1, 5));
    EXPECT_EQ(m_service.refuse(asAnna("create-some-goals", "&p4=" + goal("x")), Outcome::Busy).body, "Error");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=1;"), "Error");
    EXPECT_EQ(
        m_service.refuse(asAnna("create-some-goals", "&p4=name:a very long na"), Outcome::TooLarge).body,
        "Error");
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=2;"), "Error"); // its place was not seen, so it may be any
}

TEST_F(Saves, AlwaysHoldWhateverTheGoalsOfAnAreaWere)
{
    const std::string name(60'000, 'x');
    for (int i = 0; i < 3; ++i) {
        std::string list;
        for (int j = 0; j < 30; ++j)
            list += goal(name);
        EXPECT_EQ(postAsAnna("create-some-goals", "&p4=" + list), "OK");
    }
    const std::string shown = postAsAnna("get-goals", "&p4=1&p5=3");
    EXPECT_GT(column(shown, "id").size(), 60U);
    EXPECT_LE(shown.size(), 4U * 1024 * 1024);
    std::string ids = column(shown, "id");
    std::replace(ids.begin(), ids.end(), '|', ';');
    EXPECT_EQ(postAsAnna("delete-some-goals", "&p4=" + ids), "OK");
    EXPECT_NE(goalNames(), ""); // those beyond one save show up now
}
