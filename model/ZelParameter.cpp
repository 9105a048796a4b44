// Building a parameter record from its dictionary in the description file.
#include "model/ZelParameter.h"

#include "model/ZelDescriptionRead.h"

ZEL_NAMESPACE_BEGIN

// "clump" is deliberately not read: the loader points `clump` at the clump
// that lists the record. A value that is not a dictionary answers null for
// every key, so every field keeps its default.
ZelParameter::ZelParameter(const ZelPlist& dictionary, const ZelPlist& /*refs*/) {
  const ZelPlist& d = dictionary;
  ZelParameter& record = *this;
  ZEL_PARAMETER_KEYS(ZEL_READ_KEY)
  formatArgument_ = formatString.empty() ? FormatArgument::Invalid : checkFormat(formatString);
}

ZEL_NAMESPACE_END
