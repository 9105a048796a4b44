#include "toolkit/core/ZelBase64.h"

#include <algorithm>
#include <array>

ZEL_NAMESPACE_BEGIN

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr int kInvalid = -1, kSpace = -2, kPad = -3;

constexpr std::array<int, 256> makeDecodeTable() {
  std::array<int, 256> table{};
  table.fill(kInvalid);
  for (int i = 0; i < 64; ++i) table[static_cast<unsigned char>(kAlphabet[i])] = i;
  for (char c : {' ', '\t', '\n', '\r', '\f', '\v'}) table[static_cast<unsigned char>(c)] = kSpace;
  table['='] = kPad;
  return table;
}

constexpr std::array<int, 256> kDecode = makeDecodeTable();

}  // namespace

std::optional<std::vector<std::uint8_t>> ZelDecodeBase64(std::string_view text) {
  std::vector<std::uint8_t> out;
  out.reserve(text.size() / 4 * 3 + 2);
  std::uint32_t bits = 0;
  int pending = 0;      // 6-bit digits collected in `bits`
  std::size_t digits = 0, pads = 0;
  for (unsigned char c : text) {
    const int v = kDecode[c];
    if (v == kSpace) continue;
    if (v == kInvalid) return std::nullopt;
    if (v == kPad) {
      ++pads;
      continue;
    }
    if (pads > 0) return std::nullopt;  // a digit after padding
    bits = (bits << 6) | static_cast<std::uint32_t>(v);
    ++digits;
    if (++pending == 4) {
      out.push_back(static_cast<std::uint8_t>(bits >> 16));
      out.push_back(static_cast<std::uint8_t>(bits >> 8));
      out.push_back(static_cast<std::uint8_t>(bits));
      bits = 0;
      pending = 0;
    }
  }
  if (pending == 1 || pads > 2) return std::nullopt;
  if (pads > 0 && (pending == 0 || (digits + pads) % 4 != 0)) return std::nullopt;
  if (pending == 2) out.push_back(static_cast<std::uint8_t>(bits >> 4));
  if (pending == 3) {
    out.push_back(static_cast<std::uint8_t>(bits >> 10));
    out.push_back(static_cast<std::uint8_t>(bits >> 2));
  }
  return out;
}

std::string ZelEncodeBase64(std::span<const std::uint8_t> bytes) {
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t n = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = static_cast<std::uint32_t>(bytes[i]) << 16;
    if (n > 1) group |= static_cast<std::uint32_t>(bytes[i + 1]) << 8;
    if (n > 2) group |= bytes[i + 2];
    for (std::size_t k = 0; k < 4; ++k) {
      out.push_back(k <= n ? kAlphabet[(group >> (18 - 6 * k)) & 0x3F] : '=');
    }
  }
  return out;
}

ZEL_NAMESPACE_END
