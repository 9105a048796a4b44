#include "toolkit/core/ZelBase64.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace zel;

namespace {

std::string decoded(std::string_view text) {
  auto bytes = ZelDecodeBase64(text);
  return bytes ? std::string(bytes->begin(), bytes->end()) : std::string("<error>");
}

std::string encoded(std::string_view text) {
  return ZelEncodeBase64(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

}  // namespace

TEST(ZelBase64, StandardVectorsBothWaysWithAndWithoutPadding) {
  const std::pair<const char*, const char*> vectors[] = {
      {"", ""}, {"f", "Zg=="}, {"fo", "Zm8="}, {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"},
  };
  for (auto [plain, base64] : vectors) {
    EXPECT_EQ(encoded(plain), base64);
    EXPECT_EQ(decoded(base64), plain) << base64;
    std::string unpadded(base64);
    while (!unpadded.empty() && unpadded.back() == '=') unpadded.pop_back();
    EXPECT_EQ(decoded(unpadded), plain) << unpadded;
  }
}

TEST(ZelBase64, WhitespaceAnywhereIsIgnored) {
  EXPECT_EQ(decoded(" Zm9v\nYm\r\n Fy\t"), "foobar");
  EXPECT_EQ(decoded("Zm8\n=\n"), "fo");
  EXPECT_EQ(decoded(" \n "), "");
}

TEST(ZelBase64, MalformedTextIsRefused) {
  for (const char* bad : {
           "Zm9v-mFy", "Zm9v_mFy", "Zm9v*", "Zm9\x80v",  // outside the standard alphabet
           "Z", "Zm9vY",                                 // a lone sixth of a byte group
           "Zg=", "Zg===", "Zm8==", "=", "====",         // padding that does not complete a group
           "Zg==Zg==", "Zm=9v",                          // digits after padding
       }) {
    EXPECT_FALSE(ZelDecodeBase64(bad).has_value()) << bad;
  }
}

TEST(ZelBase64, EveryByteValueRoundTrips) {
  std::vector<std::uint8_t> bytes;
  for (int round = 0; round < 3; ++round) {
    for (int b = 0; b < 256; ++b) bytes.push_back(static_cast<std::uint8_t>(b * (round + 1)));
    bytes.push_back(static_cast<std::uint8_t>(round));  // every remainder mod 3
    const std::string text = ZelEncodeBase64(bytes);
    EXPECT_EQ(text.size() % 4, 0u);
    EXPECT_EQ(ZelDecodeBase64(text), bytes);
  }
}
