#include "KeyedHash.h"
#include "Md5.h"
#include "PasswordHash.h"
#include "RecentMap.h"

#include <gtest/gtest.h>

using namespace tarvex::security;

TEST(SignInDigest, IsUpperCaseMd5OfTheBytesBeforeAZero)
{
    EXPECT_EQ(signInDigest(""), "D41D8CD98F00B204E9800998ECF8427E");
    EXPECT_EQ(signInDigest("abc"), "900150983CD24FB0D6963F7D28E17F72");
    EXPECT_EQ(signInDigest(std::string_view("abc\0def", 7)), "900150983CD24FB0D6963F7D28E17F72");
    EXPECT_TRUE(isSignInDigest("900150983CD24FB0D6963F7D28E17F72"));
    EXPECT_FALSE(isSignInDigest("900150983cd24fb0d6963f7d28e17f72"));
    EXPECT_FALSE(isSignInDigest("900150983CD24FB0D6963F7D28E17F7"));
}

TEST(KeyedHash, KeepsItsPartsApart)
{
    const KeyedHash hash({1});
    EXPECT_EQ(hash({"ab", "c"}), hash({"ab", "c"}));
    EXPECT_NE(hash({"ab", "c"}), hash({"a", "bc"}));
    EXPECT_NE(hash({"ab", "c"}), KeyedHash({2})({"ab", "c"}));
}

TEST(PasswordHash, CostsWhoeverStealsItAsMuchAsIsRecommended)
{
    EXPECT_TRUE(hashPassword("digest").starts_with("$argon2id$v=19$m=19456,t=2,p=1$"));
}

TEST(RecentMap, GivesUpWhatWasUnusedForLongest)
{
    RecentMap<int> map(/*capacity=*/2);
    map["first"] = 1;
    map["second"] = 2;
    EXPECT_NE(map.find("first"), nullptr); // used again, so it outlives the other
    map["third"] = 3;
    EXPECT_NE(map.find("first"), nullptr);
    EXPECT_EQ(map.find("second"), nullptr);
}
