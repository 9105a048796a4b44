#include "model/ZelClump.h"

#include "model/ZelDescriptionRead.h"

ZEL_NAMESPACE_BEGIN

ZelClumpType ZelClumpTypeFromString(std::string_view word) { return ZelEnumFromWord<ZelClumpType>(word); }

// "cid" is replaced by the loader with the clump's position.
ZelClump::ZelClump(const ZelPlist& d, const ZelPlist& /*refs*/) {
  ZelClump& record = *this;
  ZEL_CLUMP_KEYS(ZEL_READ_KEY)
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
