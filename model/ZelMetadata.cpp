#include "model/ZelMetadata.h"

#include "model/ZelDescriptionRead.h"

ZEL_NAMESPACE_BEGIN

ZelMetadata::ZelMetadata(const ZelPlist& d, const ZelPlist& /*refs*/) {
  ZelMetadata& record = *this;
  ZEL_METADATA_KEYS(ZEL_READ_KEY)
  tabOrderNames = FetchStrings(d, "tabOrder");
}

ZEL_NAMESPACE_END
