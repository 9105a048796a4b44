#include "editor/ZelParameterURL.h"

#include <gtest/gtest.h>

#include "toolkit/foundation/ZelNumberParser.h"

using namespace zel;

namespace {

const ZelNumberParser kC(".", "");

std::string Describe(const ZelParameterURLQuery& q) {
  std::string out;
  for (const auto& e : q.entries) out += e.name + "=" + (e.keeps() ? "x" : ZelParameterURLValueText(*e.number)) + ";";
  return out;
}

}  // namespace

TEST(ZelParameterURL, ReadsBothFormsKeepsTheLastValueOfANameAndSkipsJunkItems) {
  auto q = ZelParseParameterURL("https://h.example/p/1.0/?lo:20/hi:x/lo:30/junk/mix:abc/:5/a:1:2", kC);
  ASSERT_TRUE(q);
  EXPECT_EQ(Describe(*q), "lo=30;hi=x;=5;a=1;");
  q = ZelParseParameterURL("  http://h.example/p?lo=20&hi=x&bare&lo=2.5e1#frag\n", kC);
  ASSERT_TRUE(q);
  EXPECT_EQ(Describe(*q), "lo=25;hi=x;");
  EXPECT_EQ(q->find("hi")->keeps(), true);
  EXPECT_EQ(q->find("mix"), nullptr);
  q = ZelParseParameterURL("https://h.example/no-query", kC);
  ASSERT_TRUE(q);
  EXPECT_TRUE(q->entries.empty());
}

TEST(ZelParameterURL, OnlyAbsoluteURLsAreURLs) {
  for (const char* good : {"https://a.example/?x:1", "x-y+z.w:rest", "mailto:someone%20else"})
    EXPECT_TRUE(ZelIsAbsoluteURL(good)) << good;
  for (const char* bad : {"", "   ", "no scheme", "/?a:1", "9http://a", "http://a b", "http://a/%2", "http://a/#b#c",
                          "http://a/{x}", "http://\xc3\xa9t\xc3\xa9"})
    EXPECT_FALSE(ZelIsAbsoluteURL(bad)) << bad;
  EXPECT_FALSE(ZelParseParameterURL("hello there", kC).has_value());
}

TEST(ZelParameterURL, NumbersFollowTheLocaleAndPrintAsShortFloats) {
  const ZelNumberParser german(",", ".");
  auto q = ZelParseParameterURL("https://h.example/?a:2,5/b:1.000,5", german);
  ASSERT_TRUE(q);
  EXPECT_EQ(Describe(*q), "a=2.5;b=1000.5;");
  EXPECT_EQ(ZelParameterURLValueText(0.1f), "0.1");
  EXPECT_EQ(ZelParameterURLValueText(632.4555f), "632.4555");
  EXPECT_EQ(ZelParameterURLValueText(-24), "-24");
  EXPECT_EQ(ZelParameterURLValueText(20000), "20000");
}
