// Renders the description's label images and writes them into it.
//
// Every clump's and parameter's "labelString" becomes its "label" (a clump
// only when its layout has an "x" frame to draw its title in): the text
// in the editor's text face at double resolution, black on transparent (the
// dark theme draws label images inverted, so they come out light there). The
// metadata's "pluginName" becomes its "logo": the product's wordmark. Each
// image is a PNG, Base64-encoded behind "base64,".
//
// The description is edited as a property list in place: keys keep their
// order (a new key goes where it sorts among keys that are sorted), and every
// other value is written back as it was read. Running the tool on its own
// output changes nothing.
//
//   zel-make-labels [--check] [IN [OUT]]
//
// IN defaults to the bundle's config.plist and OUT to IN. With --check the
// file is not written: the exit status is 1 when IN differs from what the
// tool would write (the description is stale), 0 when it is current.
#include <cairo.h>
#include <plist/plist.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/cairo/ZelCairoGraphicsContext.h"
#include "toolkit/cairo/ZelCairoText.h"
#include "toolkit/core/ZelBase64.h"
#include "toolkit/core/ZelImageEncoding.h"

namespace {

using namespace zel;

constexpr double kScale = 2;            // label images are double resolution
constexpr double kParameterSize = 11;   // points
constexpr double kClumpSize = 12;
constexpr double kPadding = 1;          // points around the text box
constexpr double kLogoSize = 11;
constexpr double kLogoTracking = 0.22;  // ems between the wordmark's capitals
constexpr double kLogoRuleGap = 3;      // points between the capitals and the rule
constexpr double kLogoRuleWidth = 14;
constexpr double kLogoRuleHeight = 1;
// The wordmark sits in the power strip (62 points wide) with 2 points clear
// on each side: a longer name first loses tracking, then size.
constexpr double kLogoMaxWidth = 62 - 2 * 2;
constexpr double kLogoMinTracking = 0.06;
const ZelColor kInk{0, 0, 0, 1};

// ---- Rendering.

std::string imageString(const ZelImage& image) {
  std::vector<std::uint8_t> png = ZelEncodePNG(image);
  return "base64," + ZelEncodeBase64(png);
}

// A bitmap of `size` points (rounded up to whole points) at double resolution.
std::unique_ptr<ZelCairoBitmapContext> bitmap(CGSize size, const std::shared_ptr<ZelCairoText>& text) {
  int w = static_cast<int>(std::ceil(size.width)) * static_cast<int>(kScale);
  int h = static_cast<int>(std::ceil(size.height)) * static_cast<int>(kScale);
  return std::make_unique<ZelCairoBitmapContext>(w, h, kScale, text);
}

std::string renderLabel(std::string_view label, double pointSize, const std::shared_ptr<ZelCairoText>& text) {
  ZelFont font{ZelFontFace::Medium, pointSize};
  ZelTextMetrics m = text->measure(label, font);
  CGSize box{std::ceil(m.width) + 2 * kPadding, std::ceil(m.ascent + m.descent) + 2 * kPadding};
  auto ctx = bitmap(box, text);
  ctx->setFillColor(kInk);
  ctx->drawText(label, font, {(box.width - m.width) / 2, kPadding + m.descent});
  return imageString(*ctx->makeImage());
}

std::string upperASCII(std::string_view s) {
  std::string out(s);
  for (char& c : out)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return out;
}

// The wordmark: the name in spaced capitals over a short centred rule.
std::string renderLogo(std::string_view name, const std::shared_ptr<ZelCairoText>& text) {
  ZelFont font{ZelFontFace::Medium, kLogoSize};
  std::string caps = upperASCII(name);
  double tracking = 0, width = 0;
  std::vector<double> advances;
  auto measure = [&](double ems) {
    advances.clear();
    for (char c : caps) advances.push_back(text->measure(std::string(1, c), font).width);
    tracking = ems * font.pointSize;
    width = tracking * static_cast<double>(advances.empty() ? 0 : advances.size() - 1);
    for (double a : advances) width += a;
  };
  measure(kLogoTracking);
  if (width > kLogoMaxWidth) {
    const double gaps = static_cast<double>(caps.size() > 1 ? caps.size() - 1 : 1);
    measure(std::max(kLogoMinTracking, kLogoTracking - (width - kLogoMaxWidth) / (gaps * font.pointSize)));
  }
  if (width > kLogoMaxWidth) {
    font.pointSize *= kLogoMaxWidth / width;
    measure(kLogoMinTracking);
  }
  ZelTextMetrics m = text->measure(caps, font);
  double capHeight = std::ceil(m.ascent);
  CGSize box{std::ceil(width) + 2 * kPadding,
             capHeight + std::ceil(m.descent) + kLogoRuleGap + kLogoRuleHeight + 2 * kPadding};
  auto ctx = bitmap(box, text);
  ctx->setFillColor(kInk);
  double x = (box.width - width) / 2, baseline = kPadding + kLogoRuleHeight + kLogoRuleGap + std::ceil(m.descent);
  for (std::size_t i = 0; i < caps.size(); ++i) {
    ctx->drawText(std::string_view(caps).substr(i, 1), font, {x, baseline});
    x += advances[i] + tracking;
  }
  ctx->fillRect(CGRectMake(std::round((box.width - kLogoRuleWidth) / 2), kPadding, kLogoRuleWidth, kLogoRuleHeight));
  return imageString(*ctx->makeImage());
}

// ---- Editing the property list.

std::optional<std::string> stringItem(plist_t dict, const char* key) {
  plist_t node = dict ? plist_dict_get_item(dict, key) : nullptr;
  if (!node || plist_get_node_type(node) != PLIST_STRING) return std::nullopt;
  char* value = nullptr;
  plist_get_string_val(node, &value);
  std::string out = value ? value : "";
  std::free(value);
  return out;
}

std::vector<std::string> keysOf(plist_t dict) {
  std::vector<std::string> keys;
  plist_dict_iter it = nullptr;
  plist_dict_new_iter(dict, &it);
  for (;;) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(dict, it, &key, &value);
    if (!key) break;
    keys.emplace_back(key);
    std::free(key);
  }
  std::free(it);
  return keys;
}

// Sets a string item. An existing key keeps its place; a new one goes before
// the first key that sorts after it (libplist only appends, so the keys after
// it are taken out and appended again behind it).
void setStringSorted(plist_t dict, const std::string& key, const std::string& value) {
  if (plist_dict_get_item(dict, key.c_str())) {
    plist_dict_set_item(dict, key.c_str(), plist_new_string(value.c_str()));
    return;
  }
  std::vector<std::pair<std::string, plist_t>> moved;
  for (const std::string& k : keysOf(dict)) {
    if (k < key && moved.empty()) continue;
    moved.emplace_back(k, plist_copy(plist_dict_get_item(dict, k.c_str())));
    plist_dict_remove_item(dict, k.c_str());
  }
  plist_dict_set_item(dict, key.c_str(), plist_new_string(value.c_str()));
  for (auto& [k, v] : moved) plist_dict_set_item(dict, k.c_str(), v);
}

template <class F>
void forEachArrayItem(plist_t array, F f) {
  if (!array || plist_get_node_type(array) != PLIST_ARRAY) return;
  for (uint32_t i = 0; i < plist_array_get_size(array); ++i) f(plist_array_get_item(array, i));
}

// Whether a clump's "computedLayout" has the "x" frame its title goes in.
bool hasTitleFrame(plist_t metadata) {
  if (!metadata || plist_get_node_type(metadata) != PLIST_DICT) return false;
  plist_t layout = plist_dict_get_item(metadata, "computedLayout");
  if (!layout || plist_get_node_type(layout) != PLIST_DICT) return false;
  plist_t matrix = plist_dict_get_item(layout, "matrix");
  return matrix && plist_get_node_type(matrix) == PLIST_DICT && plist_dict_get_item(matrix, "x");
}

// The number of labels written.
int labelDescription(plist_t root, const std::shared_ptr<ZelCairoText>& text) {
  int count = 0;
  auto label = [&](plist_t dict, double size) {
    if (!dict || plist_get_node_type(dict) != PLIST_DICT) return;
    std::optional<std::string> s = stringItem(dict, "labelString");
    if (!s || s->empty()) return;
    setStringSorted(dict, "label", renderLabel(*s, size, text));
    ++count;
  };
  forEachArrayItem(plist_dict_get_item(root, "clumps"), [&](plist_t clump) {
    if (plist_get_node_type(clump) != PLIST_DICT) return;
    plist_t metadata = plist_dict_get_item(clump, "metadata");
    // A clump's title is drawn in its layout's "x" frame; without one there
    // is nowhere to draw it (the power strip: its switch names itself).
    if (hasTitleFrame(metadata)) label(metadata, kClumpSize);
    else if (metadata && plist_get_node_type(metadata) == PLIST_DICT) plist_dict_remove_item(metadata, "label");
    forEachArrayItem(plist_dict_get_item(clump, "parameters"), [&](plist_t p) { label(p, kParameterSize); });
  });
  plist_t metadata = plist_dict_get_item(root, "metadata");
  if (std::optional<std::string> name = stringItem(metadata, "pluginName"); name && !name->empty()) {
    setStringSorted(metadata, "logo", renderLogo(*name, text));
    ++count;
  }
  return count;
}

// ---- Writing reals as the description's generator does.

// The shortest text that reads back as `v`, in the style of the generator's
// language: fixed notation with at least one decimal for exponents -4 to 15,
// otherwise d.ddde±XX.
std::string shortestReal(double v) {
  if (!std::isfinite(v)) return v != v ? "nan" : (v > 0 ? "inf" : "-inf");
  char buf[64];
  auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::scientific);
  std::string sci(buf, end);
  std::size_t e = sci.find('e');
  int exponent = std::atoi(sci.c_str() + e + 1);
  bool negative = sci[0] == '-';
  std::string digits;
  for (char c : sci.substr(0, e))
    if (c >= '0' && c <= '9') digits += c;
  std::string sign = negative ? "-" : "";
  if (exponent < -4 || exponent >= 16) {
    std::string mantissa = digits.substr(0, 1) + (digits.size() > 1 ? "." + digits.substr(1) : "");
    char exp[16];
    std::snprintf(exp, sizeof exp, "e%c%02d", exponent < 0 ? '-' : '+', std::abs(exponent));
    return sign + mantissa + exp;
  }
  if (exponent < 0) return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  std::size_t intDigits = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= intDigits) return sign + digits + std::string(intDigits - digits.size(), '0') + ".0";
  return sign + digits.substr(0, intDigits) + "." + digits.substr(intDigits);
}

// libplist writes reals with 17 significant digits; give every <real> its
// shortest form back so that only the labels change in the file.
std::string withShortestReals(const std::string& xml) {
  static constexpr std::string_view kOpen = "<real>", kClose = "</real>";
  std::string out;
  out.reserve(xml.size());
  std::size_t pos = 0;
  for (std::size_t open; (open = xml.find(kOpen, pos)) != std::string::npos;) {
    std::size_t start = open + kOpen.size(), close = xml.find(kClose, start);
    if (close == std::string::npos) break;
    out.append(xml, pos, start - pos);
    out += shortestReal(std::strtod(xml.substr(start, close - start).c_str(), nullptr));
    pos = close;
  }
  out.append(xml, pos, std::string::npos);
  return out;
}

// ---- Files.

std::optional<std::string> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

bool writeFile(const std::string& path, const std::string& data) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << data;
  return static_cast<bool>(out.flush());
}

std::optional<std::string> labelledXML(const std::string& source, int* count) {
  plist_t root = nullptr;
  plist_from_xml(source.data(), static_cast<uint32_t>(source.size()), &root);
  if (!root || plist_get_node_type(root) != PLIST_DICT) {
    if (root) plist_free(root);
    return std::nullopt;
  }
  auto text = std::make_shared<ZelCairoText>();
  *count = labelDescription(root, text);
  char* xml = nullptr;
  uint32_t length = 0;
  plist_to_xml(root, &xml, &length);
  std::string out(xml ? xml : "", length);
  std::free(xml);
  plist_free(root);
  return withShortestReals(out);
}

}  // namespace

int main(int argc, char** argv) {
  bool check = false;
  std::vector<std::string> paths;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--check") == 0) check = true;
    else paths.emplace_back(argv[i]);
  }
  std::string in = paths.empty() ? std::string(ZEL_RESOURCES_DIR) + "/config.plist" : paths[0];
  std::string out = paths.size() > 1 ? paths[1] : in;
  std::optional<std::string> source = readFile(in);
  int count = 0;
  std::optional<std::string> result = source ? labelledXML(*source, &count) : std::nullopt;
  if (!result) {
    std::fprintf(stderr, "zel-make-labels: %s is not a readable property-list dictionary\n", in.c_str());
    return 2;
  }
  if (check) {
    if (*result == *source) return 0;
    std::fprintf(stderr, "zel-make-labels: the labels of %s are stale: run ./vantry labels\n", in.c_str());
    return 1;
  }
  if (!writeFile(out, *result)) {
    std::fprintf(stderr, "zel-make-labels: cannot write %s\n", out.c_str());
    return 2;
  }
  std::fprintf(stderr, "zel-make-labels: %d label images written to %s\n", count, out.c_str());
  return 0;
}
