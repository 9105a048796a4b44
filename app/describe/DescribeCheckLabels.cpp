// Label checks: a label or logo text that starts with "base64," is an image
// and must decode: valid standard Base64 of a PNG or JPEG file (the formats
// the editor's image reader takes). Any other label text is plain text.
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "app/describe/DescribeCheck.h"
#include "app/describe/DescribeFormat.h"
#include "toolkit/core/ZelImageDecoding.h"

ZEL_NAMESPACE_BEGIN
namespace {

constexpr std::string_view kImagePrefix = "base64,";

int base64Digit(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+') return 62;
  if (c == '/') return 63;
  return -1;
}

// Strict RFC 4648 Base64 (padded, no blanks); none when the text is not.
std::optional<std::vector<std::uint8_t>> decodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::size_t padding = 0;
  while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=') ++padding;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < text.size() - padding; ++i) {
    int digit = base64Digit(text[i]);
    if (digit < 0) return std::nullopt;
    bits = (bits << 6) | static_cast<std::uint32_t>(digit);
    if (i % 4 == 3) {
      bytes.push_back(static_cast<std::uint8_t>(bits >> 16));
      bytes.push_back(static_cast<std::uint8_t>(bits >> 8));
      bytes.push_back(static_cast<std::uint8_t>(bits));
      bits = 0;
    }
  }
  if (padding == 1) {
    bytes.push_back(static_cast<std::uint8_t>(bits >> 10));
    bytes.push_back(static_cast<std::uint8_t>(bits >> 2));
  } else if (padding == 2) {
    bytes.push_back(static_cast<std::uint8_t>(bits >> 4));
  }
  return bytes;
}

bool startsWith(const std::vector<std::uint8_t>& bytes, std::initializer_list<std::uint8_t> signature) {
  if (bytes.size() < signature.size()) return false;
  return std::equal(signature.begin(), signature.end(), bytes.begin());
}

bool isImage(const std::vector<std::uint8_t>& bytes) {
  return startsWith(bytes, {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'}) || startsWith(bytes, {0xFF, 0xD8, 0xFF});
}

void checkImageText(std::string_view text, const std::string& path, ZelCheckFindings& findings) {
  if (text.substr(0, kImagePrefix.size()) != kImagePrefix) return;
  std::optional<std::vector<std::uint8_t>> bytes = decodeBase64(text.substr(kImagePrefix.size()));
  if (!bytes) return findings.error(path, "the image after \"base64,\" is not valid Base64");
  if (!isImage(*bytes)) return findings.error(path, "the image after \"base64,\" is not a PNG or JPEG file");
  if (!ZelDecodeImage(*bytes)) findings.error(path, "the image after \"base64,\" does not decode");
}

}  // namespace

void ZelCheckLabels(const ZelConfig& config, ZelCheckFindings& findings) {
  checkImageText(config.metadata().logo, "metadata.logo", findings);
  config.enumerateClumps([&](const ZelClump& c) {
    std::string path = ZelClumpPath(c);
    checkImageText(c.label, ZelKeyPath(path, "label"), findings);
    if (const ZelPlist::Dictionary* tagged = c.taggedLabels.asDictionary()) {
      for (const auto& [name, image] : *tagged)
        checkImageText(image.stringValue(), ZelKeyPath(ZelKeyPath(path, "taggedLabels"), name), findings);
    }
  });
  ZelForEachParameter(config, [&](const ZelParameter& p, const ZelClump&, const std::string& path) {
    checkImageText(p.label, ZelKeyPath(path, "label"), findings);
  });
}

ZEL_NAMESPACE_END
