#include "KeyedHash.h"
#include "Md5.h"
#include "PasswordHash.h"
#include "VerifiedCredentials.h"

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
    const KeyedHash hash;
    EXPECT_EQ(hash({"ab", "c"}), hash({"ab", "c"}));
    EXPECT_NE(hash({"ab", "c"}), hash({"a", "bc"}));
    EXPECT_NE(hash({"ab", "c"}), KeyedHash()({"ab", "c"}));
}

TEST(PasswordHash, CostsWhoeverStealsItAsMuchAsIsRecommended)
{
    EXPECT_TRUE(hashPassword("digest").starts_with("$argon2id$v=19$m=19456,t=2,p=1$"));
}

TEST(VerifiedCredentials, HoldForOneVersionOfOneAccount)
{
    VerifiedCredentials verified(/*capacity=*/2);
    verified.remember(/*accountId=*/1, /*version=*/1, "digest");
    EXPECT_TRUE(verified.contains(/*accountId=*/1, /*version=*/1, "digest"));
    EXPECT_FALSE(verified.contains(/*accountId=*/1, /*version=*/2, "digest"));
    EXPECT_FALSE(verified.contains(/*accountId=*/2, /*version=*/1, "digest"));
    EXPECT_FALSE(verified.contains(/*accountId=*/1, /*version=*/1, "other"));
    verified.remember(/*accountId=*/2, /*version=*/1, "digest");
    EXPECT_TRUE(
        verified.contains(/*accountId=*/1, /*version=*/1, "digest")); // used again, so it outlives the other
    verified.remember(/*accountId=*/3, /*version=*/1, "digest");
    EXPECT_TRUE(verified.contains(/*accountId=*/1, /*version=*/1, "digest"));
    EXPECT_FALSE(verified.contains(/*accountId=*/2, /*version=*/1, "digest"));
}
