// A product as the generic sides see it: its names, its parameter table,
// how to make its unit, and the identifiers its LV2 bundle publishes. The
// build writes one record per product from its description (zel_add_product
// in cmake/ZelProduct.cmake) and links it into each of the product's
// programs, where it registers itself before main(); nothing outside
// products/<slug>/ names a product.
//
// A program holds one product (a plug-in library, a product's app) or
// several (zel-drive, the tests): ZelCurrentProduct() is the one selected,
// else the one marked as the default, else the first registered.
//
// Ownership: records are constant data with static storage.
// Threading: products register during static initialisation; select before
// starting threads; everything else only reads.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "dsp/ZelAudioUnit.h"
#include "dsp/ZelUnitParameter.h"

ZEL_DSP_NAMESPACE_BEGIN

// One plug-in of the bundle: a channel count and its URI.
struct ZelProductVariant {
  const char* uri;
  int channels;
};

// What the LV2 plug-in and its editor agree on (lv2/tools/make_turtle.py):
// URIs, the keys of the plug-in's state and messages, the port layout.
struct ZelProductLV2 {
  const char* pluginURIPrefix;
  const char* uiURI;
  const char* presetNameKey;
  const char* themeKey;
  const char* themeToggleKey;
  const char* zoomKey;
  const char* channelsInKey;
  const char* channelsOutKey;
  std::uint32_t controlPortCount;  // ports 0..count-1: parameter ids in order
  std::uint32_t latencyPort, controlAtomPort, notifyAtomPort, firstAudioPort;
  // The meter output ports (the description's "meterPorts"), after the
  // notify port; a count of 0: none.
  std::uint32_t firstMeterPort, meterPortCount;
};

struct ZelProduct {
  const char* slug;         // the metadata's pluginURLSlug: bundle, program and folder names
  const char* name;         // the metadata's pluginName: window titles, messages
  const char* classPrefix;  // the metadata's classPrefix (the manual's file name)
  std::span<const ZelUnitParameter> parameters;  // by pid, 0..N-1
  std::span<const ZelProductVariant> variants;   // the widest first
  ZelProductLV2 lv2;
  double minSampleRate, maxSampleRate;
  // A new unit for 1 or 2 channels at a rate within the limits above.
  std::unique_ptr<ZelAudioUnit> (*makeUnit)(int channels, double sampleRate);

  int parameterCount() const { return int(parameters.size()); }
  const ZelUnitParameter* parameter(int pid) const {
    return pid >= 0 && pid < parameterCount() ? &parameters[std::size_t(pid)] : nullptr;
  }
  // The pid of a code name; -1 for none.
  int pidOfCodeName(std::string_view codeName) const;
};

// Called by a product's generated record before main(); false when the
// registry is full (it holds a few dozen) or the slug is taken.
bool ZelRegisterProduct(const ZelProduct& product, bool isDefault);
// Every product this program holds, in registration order.
std::span<const ZelProduct* const> ZelProducts();
const ZelProduct* ZelFindProduct(std::string_view slug);
// Makes `product` the current one.
void ZelSelectProduct(const ZelProduct& product);
// The selected product, else the default, else the first; in a program
// that holds none, an empty one (no parameters, plug-ins or unit).
const ZelProduct& ZelCurrentProduct();

ZEL_DSP_NAMESPACE_END
