#include "model/ZelClump.h"

#include "model/ZelFetch.h"

ZEL_NAMESPACE_BEGIN

ZelClumpType ZelClumpTypeFromString(std::string_view word) {
  if (word == "Advanced") return ZelClumpType::Advanced;
  if (word == "PowerBox") return ZelClumpType::PowerBox;
  return ZelClumpType::Normal;
}

ZelClump::ZelClump(const ZelPlist& d, const ZelPlist& /*refs*/) {
  name = FetchString(d, "name");
  codesafeName = FetchString(d, "codesafeName");
  label = FetchString(d, "label");
  labelString = FetchString(d, "labelString");
  inset = FetchDictionary(d, "inset");
  clumpType = ZelClumpTypeFromString(FetchFromDictionary(d, "clumpType").stringValue());
  showInteriorBorders = d["showInteriorBorders"].boolValue();
  computedLayout = FetchDictionary(d, "computedLayout");
  computedLayout_iOS = FetchDictionary(d, "computedLayout_iOS");
  layoutConstraints = FetchDictionary(d, "layoutConstraints");
  labelBorder = FetchArray(d, "labelBorder");
  taggedLabels = FetchDictionary(d, "taggedLabels");
  layoutTags = FetchDictionary(d, "layoutTags");
  cid = d["cid"].integerValue();  // the loader replaces it with the clump's position
}

ZelClump::~ZelClump() {
  // Clear the back-references handed out before the parameters go.
  for (auto& p : parameters) p->clump = nullptr;
}

void ZelClump::addParameter(std::unique_ptr<ZelParameter> parameter) {
  parameter->clump = this;
  parameters.push_back(std::move(parameter));
}

ZEL_NAMESPACE_END
