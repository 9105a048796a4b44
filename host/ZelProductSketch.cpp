#include "host/ZelProductSketch.h"

#include <array>

ZEL_NAMESPACE_BEGIN

namespace {

struct Entry {
  const char* slug;
  ZelSketchMaker maker;
};
// Constant-initialised: ready before any registration runs, in any order.
struct Table {
  std::array<Entry, 32> entries;
  std::size_t count;
};
constinit Table table{};

}  // namespace

bool ZelRegisterProductSketch(const char* slug, ZelSketchMaker maker) {
  if (table.count == table.entries.size() || ZelProductSketchMaker(slug)) return false;
  table.entries[table.count++] = {slug, maker};
  return true;
}

ZelSketchMaker ZelProductSketchMaker(std::string_view slug) {
  for (std::size_t i = 0; i < table.count; ++i)
    if (table.entries[i].slug == slug) return table.entries[i].maker;
  return nullptr;
}

ZEL_NAMESPACE_END
