#include "toolkit/foundation/ZelPlist.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

using namespace zel;

TEST(ZelPlist, ReadingsFollowThePlatformNumberAndStringRules) {
  EXPECT_EQ(ZelPlist::string("  12abc").integerValue(), 12);
  EXPECT_EQ(ZelPlist::string("-7").integerValue(), -7);
  EXPECT_FLOAT_EQ(ZelPlist::string(" 2.5e1x").floatValue(), 25.0f);
  EXPECT_TRUE(ZelPlist::string("YES").boolValue());
  EXPECT_TRUE(ZelPlist::string("007").boolValue());
  EXPECT_FALSE(ZelPlist::string("NO").boolValue());
  EXPECT_FALSE(ZelPlist::string("0").boolValue());
  EXPECT_EQ(ZelPlist::real(-3.9).integerValue(), -3);
  EXPECT_EQ(ZelPlist::real(1e300).integerValue(), INT64_MAX);
  EXPECT_EQ(ZelPlist::real(std::nan("")).integerValue(), 0);
  EXPECT_EQ(ZelPlist::boolean(true).intValue(), 1);
  EXPECT_TRUE(std::isinf(ZelPlist::string("1e999").doubleValue()));
  EXPECT_EQ(ZelPlist::string("1e-999").doubleValue(), 0.0);
}

TEST(ZelPlist, WrongKindsReadAsAbsentInsteadOfFailing) {
  ZelPlist s = ZelPlist::string("not a dictionary");
  EXPECT_TRUE(s["key"].isNull());
  EXPECT_TRUE(s[3].isNull());
  EXPECT_EQ(s.asDictionary(), nullptr);
  EXPECT_EQ(ZelPlist::array({}).floatValue(), 0.0f);
  ZelPlist d = ZelPlist::dictionary({{"a", ZelPlist::array({ZelPlist::integer(4)})}});
  EXPECT_EQ(d["a"][0].integerValue(), 4);
  EXPECT_TRUE(d["a"][1].isNull());
  EXPECT_TRUE(d["a"]["x"]["y"].isNull());
  EXPECT_EQ(d["a"].count(), 1u);
}

TEST(ZelPlist, EqualityIsStructural) {
  auto a = ZelPlist::dictionary({{"k", ZelPlist::real(1.0)}});
  auto b = ZelPlist::dictionary({{"k", ZelPlist::real(1.0)}});
  EXPECT_EQ(a, b);
  EXPECT_FALSE(ZelPlist::integer(1) == ZelPlist::real(1.0));
  EXPECT_EQ(ZelPlist(), ZelPlist::null());
}
