#include "toolkit/foundation/ZelPlistReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "toolkit/foundation/ZelPlistGuard.h"

using namespace zel;

namespace {

const std::string kDataDir = std::string(ZEL_TEST_DATA_DIR) + "/model/";

std::string xml(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" + body + "\n</plist>\n";
}

ZelPlistReadResult read(const std::string& text, bool requireDictionary = true) {
  return ZelPlistReadData(text.data(), text.size(), requireDictionary);
}

std::string onlyError(const ZelPlistReadResult& r) {
  if (r.diagnostics.size() != 1) return "(" + std::to_string(r.diagnostics.size()) + " diagnostics)";
  return r.diagnostics[0].description();
}

void putBigEndian(std::vector<std::uint8_t>& out, std::uint64_t v, int bytes) {
  for (int i = bytes - 1; i >= 0; --i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
}

// A binary list of the given encoded objects (references are 4 bytes wide),
// rooted at the first.
std::vector<std::uint8_t> binaryList(const std::vector<std::vector<std::uint8_t>>& objects) {
  std::vector<std::uint8_t> out{'b', 'p', 'l', 'i', 's', 't', '0', '0'};
  std::vector<std::uint64_t> offsets;
  for (const auto& o : objects) {
    offsets.push_back(out.size());
    out.insert(out.end(), o.begin(), o.end());
  }
  const std::uint64_t table = out.size();
  for (std::uint64_t o : offsets) putBigEndian(out, o, 4);
  out.insert(out.end(), 6, 0);
  out.push_back(4);  // offset size
  out.push_back(4);  // reference size
  putBigEndian(out, objects.size(), 8);
  putBigEndian(out, 0, 8);
  putBigEndian(out, table, 8);
  return out;
}

// `n` arrays where array i holds `fanout` references to array i + 1 (the
// last one is empty), or to `cycleTo` for the last one.
std::vector<std::uint8_t> binaryChain(std::uint32_t n, int fanout, std::int64_t cycleTo = -1) {
  std::vector<std::vector<std::uint8_t>> objects(n);
  for (std::uint32_t i = 0; i < n; ++i) {
    const bool last = i + 1 == n;
    const std::uint64_t target = last ? static_cast<std::uint64_t>(cycleTo) : i + 1;
    const int refs = last && cycleTo < 0 ? 0 : fanout;
    objects[i].push_back(static_cast<std::uint8_t>(0xA0 | refs));
    for (int r = 0; r < refs; ++r) putBigEndian(objects[i], target, 4);
  }
  return binaryList(objects);
}

ZelPlistReadResult readBytes(const std::vector<std::uint8_t>& b, bool requireDictionary = true) {
  return ZelPlistReadData(b.data(), b.size(), requireDictionary);
}

}  // namespace

TEST(ZelPlistReader, ConvertsEveryKind) {
  ZelPlistReadResult r = read(xml(R"(<dict>
    <key>int</key><integer>-5</integer>
    <key>big</key><integer>18446744073709551615</integer>
    <key>real</key><real>0.25</real>
    <key>yes</key><true/>
    <key>text</key><string>a &amp; b &#233;</string>
    <key>data</key><data>AAEC</data>
    <key>date</key><date>2001-01-01T00:01:00Z</date>
    <key>list</key><array><integer>1</integer><dict/></array>
  </dict>)"));
  ASSERT_TRUE(r.ok()) << onlyError(r);
  const ZelPlist& v = r.value;
  EXPECT_EQ(v["int"], ZelPlist::integer(-5));
  EXPECT_EQ(v["big"], ZelPlist::integer(-1));  // unsigned 64-bit read as signed
  EXPECT_EQ(v["real"], ZelPlist::real(0.25));
  EXPECT_EQ(v["yes"], ZelPlist::boolean(true));
  EXPECT_EQ(v["text"].stringValue(), "a & b \xC3\xA9");
  EXPECT_EQ(v["data"], ZelPlist::data({0, 1, 2}));
  EXPECT_EQ(v["date"], ZelPlist::real(60));
  ASSERT_EQ(v["list"].count(), 2u);
  EXPECT_TRUE(v["list"][1].isDictionary());
}

TEST(ZelPlistReader, BinaryAndXMLFilesReadAlikeAndXMLRoundTrips) {
  ZelPlistReadResult fromXML = ZelPlistReadFile(kDataDir + "tiny.plist");
  ZelPlistReadResult fromBinary = ZelPlistReadFile(kDataDir + "tiny.bplist");
  ASSERT_TRUE(fromXML.ok()) << onlyError(fromXML);
  ASSERT_TRUE(fromBinary.ok()) << onlyError(fromBinary);
  EXPECT_EQ(fromXML.value, fromBinary.value);
  EXPECT_EQ(fromXML.value["presets"]["values"][1]["gain"], ZelPlist::real(6.5));

  ZelPlistReadResult again = read(ZelPlistToXML(fromXML.value));
  ASSERT_TRUE(again.ok()) << onlyError(again);
  EXPECT_EQ(again.value, fromXML.value);

  // Negative integers and nulls survive writing the way a property list can hold them.
  ZelPlist odd = ZelPlist::dictionary({{"n", ZelPlist::integer(-7)},
                                       {"gone", ZelPlist()},
                                       {"list", ZelPlist::array({ZelPlist(), ZelPlist::string("x")})}});
  ZelPlistReadResult back = read(ZelPlistToXML(odd));
  ASSERT_TRUE(back.ok()) << onlyError(back);
  EXPECT_EQ(back.value["n"], ZelPlist::integer(-7));
  EXPECT_FALSE(back.value.contains("gone"));
  EXPECT_EQ(back.value["list"], ZelPlist::array({ZelPlist::string("x")}));
}

// Empty, truncated and random input are covered with the description loader.
TEST(ZelPlistReader, ReportsFilesItCannotReadAndTopLevelKinds) {
  EXPECT_EQ(onlyError(ZelPlistReadFile(kDataDir + "no-such-file.plist")),
            "error: cannot open the file: No such file or directory");
  EXPECT_EQ(onlyError(ZelPlistReadFile(kDataDir)), "error: cannot read the file: not a regular file");
  ZelPlistReadResult top = read(xml("<string>x</string>"));
  EXPECT_EQ(onlyError(top), "error: the top level is not a dictionary");
  EXPECT_TRUE(top.value.isNull());
  ZelPlistReadResult array = read(xml("<array><true/></array>"), /*requireDictionary=*/false);
  EXPECT_TRUE(array.ok());
  EXPECT_EQ(array.value, ZelPlist::array({ZelPlist::boolean(true)}));
}

TEST(ZelPlistReader, RefusesOversizedAndHostileInput) {
  std::vector<std::uint8_t> huge(ZelPlistMaxBytes + 1, ' ');
  EXPECT_EQ(onlyError(readBytes(huge)), "error: the file is larger than 64 MiB");

  std::vector<std::uint8_t> noise(1 << 20);
  std::mt19937 random(42);
  for (auto& b : noise) b = static_cast<std::uint8_t>(random());
  std::copy_n("bplist00", 8, noise.begin());  // random objects behind a binary header
  EXPECT_FALSE(readBytes(noise).ok());

  // One object referred to twice per level: 2^40 values once expanded.
  EXPECT_EQ(onlyError(readBytes(binaryChain(40, 2), false)), "error: more than 2097152 values");
  EXPECT_EQ(onlyError(readBytes(binaryChain(3, 1, 0), false)),
            "error: not a property list (XML or binary): an object contains itself");

  // {"a\0": true} with the key in UTF-16: the parser would abort on it.
  const std::vector<std::uint8_t> dict{0xD1, 0, 0, 0, 1, 0, 0, 0, 2}, key{0x62, 0, 'a', 0, 0}, yes{0x09};
  EXPECT_EQ(onlyError(readBytes(binaryList({dict, key, yes}))),
            "error: not a property list (XML or binary): a string holds a NUL character");
  const std::vector<std::uint8_t> plainKey{0x61, 0, 'a'};
  EXPECT_EQ(readBytes(binaryList({dict, plainKey, yes})).value["a"], ZelPlist::boolean(true));
}

TEST(ZelPlistReader, LimitsNesting) {
  auto nestedXML = [](int depth) {
    std::string open, close;
    for (int i = 0; i < depth; ++i) open += "<array>", close += "</array>";
    return xml(open + close);
  };
  EXPECT_TRUE(read(nestedXML(ZelPlistMaxDepth), false).ok());
  EXPECT_EQ(onlyError(read(nestedXML(ZelPlistMaxDepth + 1), false)), "error: nested deeper than 256 levels");
  EXPECT_EQ(onlyError(read(nestedXML(2'000'000), false)), "error: nested deeper than 256 levels");

  EXPECT_TRUE(readBytes(binaryChain(ZelPlistMaxDepth, 1), false).ok());
  EXPECT_EQ(onlyError(readBytes(binaryChain(ZelPlistMaxDepth + 1, 1), false)),
            "error: nested deeper than 256 levels");
  EXPECT_EQ(onlyError(readBytes(binaryChain(500'000, 1), false)), "error: nested deeper than 256 levels");
}

TEST(ZelPlistGuard, MeasuresXMLTagsOutsideCommentsAndText) {
  const std::string text = xml(R"(<dict><!-- <array><array> --><key>a</key><array><array/><string><![CDATA[<dict>]]></string></array></dict>)");
  ZelPlistShape shape = ZelMeasureXMLPlist(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
  EXPECT_EQ(shape.depth, 2u);
  EXPECT_EQ(shape.values, 5u);  // dict, key, array, array, string

  const std::vector<std::uint8_t> shared = binaryChain(4, 3);  // 1 + 3 (1 + 3 (1 + 3))
  shape = ZelMeasureBinaryPlist(shared.data(), shared.size(), 100, 1000);
  EXPECT_EQ(shape.depth, 4u);
  EXPECT_EQ(shape.values, 40u);
  EXPECT_FALSE(shape.cyclic);
}
