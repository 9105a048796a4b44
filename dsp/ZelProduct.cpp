#include "dsp/ZelProduct.h"

#include <array>

ZEL_DSP_NAMESPACE_BEGIN

namespace {

// Constant-initialised: ready before any registration runs, in any order.
struct Registry {
  std::array<const ZelProduct*, 32> products;
  std::size_t count;
  const ZelProduct* preferred;
  const ZelProduct* selected;
};
constinit Registry registry{};

}  // namespace

int ZelProduct::pidOfCodeName(std::string_view codeName) const {
  for (const ZelUnitParameter& p : parameters)
    if (codeName == p.codeName) return p.pid;
  return -1;
}

bool ZelRegisterProduct(const ZelProduct& product, bool isDefault) {
  if (registry.count == registry.products.size() || ZelFindProduct(product.slug)) return false;
  registry.products[registry.count++] = &product;
  if (isDefault && !registry.preferred) registry.preferred = &product;
  return true;
}

std::span<const ZelProduct* const> ZelProducts() { return {registry.products.data(), registry.count}; }

const ZelProduct* ZelFindProduct(std::string_view slug) {
  for (const ZelProduct* p : ZelProducts())
    if (slug == p->slug) return p;
  return nullptr;
}

void ZelSelectProduct(const ZelProduct& product) { registry.selected = &product; }

const ZelProduct& ZelCurrentProduct() {
  if (registry.selected) return *registry.selected;
  if (registry.preferred) return *registry.preferred;
  // A program that holds no product (a tool that shows any description)
  // gets one with no parameters, no plug-ins and no unit.
  static const ZelProduct kNone{"", "", "", {}, {}, {}, ZelAudioUnit::kMinSampleRate, ZelAudioUnit::kMaxSampleRate, nullptr};
  return registry.count == 0 ? kNone : *registry.products[0];
}

ZEL_DSP_NAMESPACE_END
