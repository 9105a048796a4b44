#include "toolkit/foundation/ZelPlistGuard.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

ZEL_NAMESPACE_BEGIN

namespace {

// ---- Binary lists.

std::uint64_t readBigEndian(const std::uint8_t* p, std::size_t n) {
  std::uint64_t v = 0;
  for (std::size_t i = 0; i < n; ++i) v = (v << 8) | p[i];
  return v;
}

std::uint64_t saturatingAdd(std::uint64_t a, std::uint64_t b) {
  return a + b < a ? ~std::uint64_t{0} : a + b;
}

struct BinaryList {
  const std::uint8_t* data = nullptr;
  std::uint64_t objectsEnd = 0;  // objects lie before the offset table
  std::uint64_t offsetTable = 0, numObjects = 0;
  std::size_t offsetSize = 0, refSize = 0;
  std::uint64_t root = 0;

  bool open(const std::uint8_t* bytes, std::size_t size);
  // The type nibble, element count and start of the contents of object
  // `index`; false when its header lies outside the objects.
  bool object(std::uint64_t index, std::uint8_t* type, std::uint64_t* count, std::uint64_t* at) const;
  // The references of container `index` (start and count), or false for a
  // value that holds none (or that cannot be read).
  bool references(std::uint64_t index, const std::uint8_t** refs, std::uint64_t* count) const;
  // A UTF-16 string with a U+0000 in it: the parser keeps its length apart
  // from the C string and aborts when such a string is a key.
  bool holdsNulCharacter(std::uint64_t index) const;
  std::uint64_t reference(const std::uint8_t* refs, std::uint64_t i) const {
    return readBigEndian(refs + i * refSize, refSize);
  }
};

bool BinaryList::open(const std::uint8_t* bytes, std::size_t size) {
  constexpr std::size_t kHeader = 8, kTrailer = 32;
  if (size < kHeader + kTrailer || std::memcmp(bytes, "bplist00", kHeader) != 0) return false;
  const std::uint8_t* trailer = bytes + size - kTrailer;
  data = bytes;
  offsetSize = trailer[6];
  refSize = trailer[7];
  numObjects = readBigEndian(trailer + 8, 8);
  root = readBigEndian(trailer + 16, 8);
  offsetTable = readBigEndian(trailer + 24, 8);
  if (offsetSize < 1 || offsetSize > 8 || refSize < 1 || refSize > 8) return false;
  if (numObjects == 0 || root >= numObjects || offsetTable < kHeader || offsetTable > size - kTrailer) return false;
  if (numObjects > (size - kTrailer - offsetTable) / offsetSize) return false;
  objectsEnd = offsetTable;
  return true;
}

bool BinaryList::object(std::uint64_t index, std::uint8_t* type, std::uint64_t* count, std::uint64_t* at) const {
  const std::uint64_t offset = readBigEndian(data + offsetTable + index * offsetSize, offsetSize);
  if (offset >= objectsEnd) return false;
  const std::uint8_t marker = data[offset];
  *type = marker & 0xF0;
  *at = offset + 1;
  *count = marker & 0x0F;
  const bool sized = *type == 0x40 || *type == 0x50 || *type == 0x60 || *type == 0xA0 || *type == 0xC0 || *type == 0xD0;
  if (sized && *count == 0x0F) {  // a longer count follows as an integer
    const std::uint64_t i = *at;
    if (i >= objectsEnd || (data[i] & 0xF0) != 0x10 || (data[i] & 0x0F) > 3) return false;
    const std::size_t width = std::size_t{1} << (data[i] & 0x0F);
    if (i + 1 + width > objectsEnd) return false;
    *count = readBigEndian(data + i + 1, width);
    *at = i + 1 + width;
  }
  return true;
}

bool BinaryList::references(std::uint64_t index, const std::uint8_t** refs, std::uint64_t* count) const {
  std::uint8_t type = 0;
  std::uint64_t n = 0, at = 0;
  if (!object(index, &type, &n, &at) || (type != 0xA0 && type != 0xC0 && type != 0xD0)) return false;
  if (type == 0xD0) {
    if (n > (~std::uint64_t{0}) / 2) return false;
    n *= 2;  // keys, then values
  }
  if (n > (objectsEnd - at) / refSize) return false;
  *refs = data + at;
  *count = n;
  return true;
}

bool BinaryList::holdsNulCharacter(std::uint64_t index) const {
  std::uint8_t type = 0;
  std::uint64_t n = 0, at = 0;
  if (!object(index, &type, &n, &at) || type != 0x60 || n > (objectsEnd - at) / 2) return false;
  for (std::uint64_t i = 0; i < n; ++i)
    if (data[at + 2 * i] == 0 && data[at + 2 * i + 1] == 0) return true;
  return false;
}

struct Measured {
  std::uint64_t depth = 0, values = 0;
};

struct Frame {
  std::uint64_t object;
  const std::uint8_t* refs;
  std::uint64_t count, next = 0;
  Measured sum{0, 1};
};

// Depth-first walk over the object graph with one result per object, so a
// shared object costs its expansion but is walked once.
class BinaryWalker {
 public:
  BinaryWalker(const BinaryList& list, std::uint64_t maxDepth, std::uint64_t maxValues)
      : list_(list), maxDepth_(maxDepth), maxValues_(maxValues) {}

  ZelPlistShape run() {
    Measured root;
    if (!enter(list_.root, &root)) {
      shape_.values = root.values;
      return shape_;
    }
    while (!stack_.empty() && !stopped()) step();
    return shape_;
  }

 private:
  bool stopped() const { return shape_.cyclic || shape_.nulCharacter || shape_.depth > maxDepth_ || shape_.values > maxValues_; }

  // Opens `object`: a container is pushed (returns true), anything else is
  // measured at once into `leaf`.
  bool enter(std::uint64_t object, Measured* leaf) {
    const std::uint8_t* refs = nullptr;
    std::uint64_t count = 0;
    if (object >= list_.numObjects || !list_.references(object, &refs, &count)) {
      *leaf = {0, 1};
      if (object < list_.numObjects && list_.holdsNulCharacter(object)) shape_.nulCharacter = true;
      results_[object] = *leaf;
      return false;
    }
    stack_.push_back(Frame{object, refs, count});
    onStack_.insert(object);
    shape_.depth = std::max<std::uint64_t>(shape_.depth, stack_.size());
    return true;
  }

  void step() {
    Frame& top = stack_.back();
    if (top.next == top.count) return finish();
    const std::uint64_t child = list_.reference(top.refs, top.next++);
    if (auto done = results_.find(child); done != results_.end()) return add(done->second);
    if (onStack_.contains(child)) {
      shape_.cyclic = true;
      return;
    }
    Measured leaf;
    if (!enter(child, &leaf)) add(leaf);
  }

  void add(const Measured& child) {
    Frame& top = stack_.back();
    top.sum.depth = std::max(top.sum.depth, child.depth);
    top.sum.values = saturatingAdd(top.sum.values, child.values);
    if (top.sum.values > maxValues_) shape_.values = top.sum.values;
  }

  void finish() {
    Frame done = stack_.back();
    stack_.pop_back();
    onStack_.erase(done.object);
    Measured m{done.sum.depth + 1, done.sum.values};
    results_[done.object] = m;
    if (stack_.empty()) {
      shape_.values = std::max(shape_.values, m.values);
      return;
    }
    add(m);
  }

  const BinaryList& list_;
  std::uint64_t maxDepth_, maxValues_;
  std::vector<Frame> stack_;
  std::unordered_map<std::uint64_t, Measured> results_;
  std::unordered_set<std::uint64_t> onStack_;
  ZelPlistShape shape_;
};

// ---- XML lists.

bool isNameChar(std::uint8_t c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
         c == ':' || c == '.';
}

// Position just past `terminator` at or after `from`, or the end.
std::size_t skipPast(std::string_view text, std::size_t from, std::string_view terminator) {
  const std::size_t at = text.find(terminator, from);
  return at == std::string_view::npos ? text.size() : at + terminator.size();
}

// One opening or closing tag at `at`; returns where scanning goes on.
std::size_t measureTag(std::string_view text, std::size_t at, std::uint64_t* depth, ZelPlistShape* shape) {
  const bool closing = text.substr(at).starts_with("</");
  const std::size_t nameStart = at + (closing ? 2 : 1);
  std::size_t nameEnd = nameStart;
  while (nameEnd < text.size() && isNameChar(static_cast<std::uint8_t>(text[nameEnd]))) ++nameEnd;
  const std::string_view name = text.substr(nameStart, nameEnd - nameStart);
  const bool container = name == "array" || name == "dict";
  if (closing) {
    if (container && *depth > 0) --*depth;
  } else if (!name.empty() && name != "plist") {
    ++shape->values;
    const std::size_t close = container ? text.find('>', nameEnd) : std::string_view::npos;
    const bool opens = close != std::string_view::npos && text[close - 1] != '/';
    if (opens) shape->depth = std::max(shape->depth, ++*depth);
  }
  return nameEnd;
}

}  // namespace

ZelPlistShape ZelMeasureBinaryPlist(const std::uint8_t* bytes, std::size_t size, std::uint64_t maxDepth,
                                    std::uint64_t maxValues) {
  BinaryList list;
  if (!bytes || !list.open(bytes, size)) return ZelPlistShape{};
  ZelPlistShape shape = BinaryWalker(list, maxDepth, maxValues).run();
  shape.readable = true;
  return shape;
}

ZelPlistShape ZelMeasureXMLPlist(const std::uint8_t* bytes, std::size_t size) {
  ZelPlistShape shape;
  if (!bytes) return shape;
  shape.readable = true;
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  std::uint64_t depth = 0;
  for (std::size_t i = text.find('<'); i < text.size(); i = text.find('<', i)) {
    const std::string_view rest = text.substr(i);
    if (rest.starts_with("<!--")) i = skipPast(text, i + 4, "-->");
    else if (rest.starts_with("<![CDATA[")) i = skipPast(text, i + 9, "]]>");
    else if (rest.starts_with("<?")) i = skipPast(text, i + 2, "?>");
    else i = measureTag(text, i, &depth, &shape);
  }
  return shape;
}

ZEL_NAMESPACE_END
