// The sketch drawings of the products this program holds, by product slug:
// each product that draws one registers it before main() (a record that
// zel_add_product generates); the host view asks for the current product's
// (dsp/ZelProduct.h).
//
// Ownership: plain function pointers in static storage.
// Threading: registration during static initialisation; lookups afterwards.
#pragma once

#include <memory>
#include <string_view>

#include "model/ZelConfig.h"
#include "sketch/ZelParameterSketch.h"
#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

// A new sketch over `frame` drawing `config`'s product (which outlives it).
using ZelSketchMaker = std::unique_ptr<ZelParameterSketch> (*)(CGRect frame, const ZelConfig& config);

// False when the table is full or the slug has a sketch already. `slug`
// must outlive the program (the product's constant).
bool ZelRegisterProductSketch(const char* slug, ZelSketchMaker maker);
// Null when the product draws none.
ZelSketchMaker ZelProductSketchMaker(std::string_view slug);

ZEL_NAMESPACE_END
