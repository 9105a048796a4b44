#include "toolkit/foundation/ZelPlistReader.h"

#include <plist/plist.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "toolkit/foundation/ZelPlistGuard.h"

ZEL_NAMESPACE_BEGIN

namespace {

// Values one list may expand to: far beyond any description, well below
// what would exhaust memory (the parser spends about 100 bytes per value).
constexpr std::uint64_t kMaxValues = std::uint64_t{1} << 21;

const char* const kNotAPlist = "not a property list (XML or binary)";

struct PlistDeleter {
  void operator()(void* node) const { plist_free(static_cast<plist_t>(node)); }
};
using PlistHandle = std::unique_ptr<void, PlistDeleter>;

ZelPlistReadResult failure(std::string message) {
  ZelPlistReadResult result;
  result.diagnostics.push_back({ZelDiagnostic::Severity::Error, "", std::move(message)});
  return result;
}

std::string nestedTooDeep() { return "nested deeper than " + std::to_string(ZelPlistMaxDepth) + " levels"; }

// ---- libplist tree -> ZelPlist.

class Converter {
 public:
  // False when the tree nests deeper than allowed.
  bool convert(plist_t node, ZelPlist* out) { return value(node, 1, out); }

 private:
  bool value(plist_t node, int depth, ZelPlist* out);
  bool array(plist_t node, int depth, ZelPlist* out);
  bool dictionary(plist_t node, int depth, ZelPlist* out);
  static ZelPlist scalar(plist_t node);
};

bool Converter::value(plist_t node, int depth, ZelPlist* out) {
  switch (plist_get_node_type(node)) {
    case PLIST_ARRAY: return depth <= ZelPlistMaxDepth && array(node, depth, out);
    case PLIST_DICT: return depth <= ZelPlistMaxDepth && dictionary(node, depth, out);
    default: *out = scalar(node); return true;
  }
}

bool Converter::array(plist_t node, int depth, ZelPlist* out) {
  ZelPlist::Array elements;
  elements.reserve(plist_array_get_size(node));
  plist_array_iter it = nullptr;
  plist_array_new_iter(node, &it);
  bool ok = true;
  for (plist_t item = nullptr; ok;) {
    plist_array_next_item(node, it, &item);
    if (!item) break;
    ok = value(item, depth + 1, &elements.emplace_back());
  }
  std::free(it);
  *out = ZelPlist::array(std::move(elements));
  return ok;
}

bool Converter::dictionary(plist_t node, int depth, ZelPlist* out) {
  ZelPlist::Dictionary entries;
  plist_dict_iter it = nullptr;
  plist_dict_new_iter(node, &it);
  bool ok = true;
  while (ok) {
    char* key = nullptr;
    plist_t item = nullptr;
    plist_dict_next_item(node, it, &key, &item);
    if (!item) {
      std::free(key);
      break;
    }
    ZelPlist converted;
    ok = value(item, depth + 1, &converted);
    entries.insert_or_assign(std::string(key ? key : ""), std::move(converted));  // the last of equal keys wins
    std::free(key);
  }
  std::free(it);
  *out = ZelPlist::dictionary(std::move(entries));
  return ok;
}

ZelPlist Converter::scalar(plist_t node) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t b = 0;
      plist_get_bool_val(node, &b);
      return ZelPlist::boolean(b != 0);
    }
    case PLIST_UINT: {
      std::uint64_t v = 0;
      plist_get_uint_val(node, &v);
      return ZelPlist::integer(static_cast<std::int64_t>(v));
    }
    case PLIST_UID: {
      std::uint64_t v = 0;
      plist_get_uid_val(node, &v);
      return ZelPlist::integer(static_cast<std::int64_t>(v));
    }
    case PLIST_REAL: {
      double d = 0;
      plist_get_real_val(node, &d);
      return ZelPlist::real(d);
    }
    case PLIST_DATE: {
      std::int32_t sec = 0, usec = 0;
      plist_get_date_val(node, &sec, &usec);
      return ZelPlist::real(sec + usec / 1e6);
    }
    case PLIST_STRING:
    case PLIST_KEY: {
      std::uint64_t length = 0;
      const char* s = plist_get_string_ptr(node, &length);
      return ZelPlist::string(s ? std::string(s, length) : std::string());
    }
    case PLIST_DATA: {
      std::uint64_t length = 0;
      const char* d = plist_get_data_ptr(node, &length);
      const auto* b = reinterpret_cast<const std::uint8_t*>(d);
      return ZelPlist::data(b ? ZelPlist::Data(b, b + length) : ZelPlist::Data());
    }
    default: return ZelPlist();
  }
}

// ---- ZelPlist -> libplist tree (for writing).

plist_t toNode(const ZelPlist& value) {
  switch (value.kind()) {
    case ZelPlist::Kind::Boolean: return plist_new_bool(value.boolValue() ? 1 : 0);
    case ZelPlist::Kind::Integer: return plist_new_uint(static_cast<std::uint64_t>(value.integerValue()));
    case ZelPlist::Kind::Real: return plist_new_real(value.doubleValue());
    case ZelPlist::Kind::String: return plist_new_string(std::string(value.stringValue()).c_str());
    case ZelPlist::Kind::Data: {
      const ZelPlist::Data& d = *value.asData();
      return plist_new_data(reinterpret_cast<const char*>(d.data()), d.size());
    }
    case ZelPlist::Kind::Array: {
      plist_t node = plist_new_array();
      for (const ZelPlist& e : *value.asArray())
        if (plist_t child = toNode(e)) plist_array_append_item(node, child);
      return node;
    }
    case ZelPlist::Kind::Dictionary: {
      plist_t node = plist_new_dict();
      for (const auto& [key, e] : *value.asDictionary())
        if (plist_t child = toNode(e)) plist_dict_set_item(node, key.c_str(), child);
      return node;
    }
    default: return nullptr;
  }
}

// Refuses what would take the parser too deep or too far before it starts.
std::string checkShape(const std::uint8_t* bytes, std::size_t size, bool binary) {
  const ZelPlistShape shape = binary ? ZelMeasureBinaryPlist(bytes, size, ZelPlistMaxDepth, kMaxValues)
                                     : ZelMeasureXMLPlist(bytes, size);
  if (!shape.readable) return kNotAPlist;
  if (shape.cyclic) return std::string(kNotAPlist) + ": an object contains itself";
  if (shape.nulCharacter) return std::string(kNotAPlist) + ": a string holds a NUL character";
  if (shape.depth > static_cast<std::uint64_t>(ZelPlistMaxDepth)) return nestedTooDeep();
  if (shape.values > kMaxValues) return "more than " + std::to_string(kMaxValues) + " values";
  return {};
}

}  // namespace

std::string ZelDiagnostic::description() const {
  std::string out = severity == Severity::Error ? "error: " : "warning: ";
  if (!keyPath.empty()) out += keyPath + ": ";
  return out + message;
}

bool ZelPlistReadResult::ok() const {
  for (const ZelDiagnostic& d : diagnostics)
    if (d.severity == ZelDiagnostic::Severity::Error) return false;
  return true;
}

ZelPlistReadResult ZelPlistReadData(const void* bytes, std::size_t size, bool requireDictionary) {
  if (size == 0 || !bytes) return failure("the file is empty");
  if (size > ZelPlistMaxBytes) return failure("the file is larger than 64 MiB");
  const auto* data = static_cast<const std::uint8_t*>(bytes);
  const char* text = static_cast<const char*>(bytes);
  const bool binary = plist_is_binary(text, static_cast<std::uint32_t>(size)) != 0;
  if (std::string refusal = checkShape(data, size, binary); !refusal.empty()) return failure(std::move(refusal));

  plist_t raw = nullptr;
  plist_from_memory(text, static_cast<std::uint32_t>(size), &raw);
  PlistHandle tree(raw);
  if (!tree) return failure(kNotAPlist);

  ZelPlistReadResult result;
  if (!Converter().convert(raw, &result.value)) return failure(nestedTooDeep());
  if (requireDictionary && !result.value.isDictionary()) return failure("the top level is not a dictionary");
  return result;
}

ZelPlistReadResult ZelPlistReadFile(const std::string& path, bool requireDictionary) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) return failure(std::string("cannot open the file: ") + std::strerror(errno));
  struct stat info {};
  if (fstat(fileno(file.get()), &info) != 0 || !S_ISREG(info.st_mode))
    return failure("cannot read the file: not a regular file");
  if (static_cast<std::uint64_t>(info.st_size) > ZelPlistMaxBytes) return failure("the file is larger than 64 MiB");

  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(info.st_size));
  const std::size_t read = bytes.empty() ? 0 : std::fread(bytes.data(), 1, bytes.size(), file.get());
  if (read != bytes.size() || std::ferror(file.get()))
    return failure(std::string("cannot read the file: ") + std::strerror(errno ? errno : EIO));
  return ZelPlistReadData(bytes.data(), bytes.size(), requireDictionary);
}

std::string ZelPlistToXML(const ZelPlist& value) {
  plist_t raw = value.isNull() ? plist_new_dict() : toNode(value);
  PlistHandle tree(raw ? raw : plist_new_dict());
  char* xml = nullptr;
  std::uint32_t length = 0;
  plist_to_xml(tree.get(), &xml, &length);
  std::string out = xml ? std::string(xml, length) : std::string();
  plist_to_xml_free(xml);
  return out;
}

ZEL_NAMESPACE_END
