// Reading a description for the tool: the raw value is kept beside the model
// so that `check` can look at what the model deliberately ignores.
#include "app/describe/DescribeTool.h"

ZEL_NAMESPACE_BEGIN

ZelDescription ZelReadDescription(const std::string& path) {
  ZelDescription d;
  // Any readable property list counts as read; a top level that is not a
  // dictionary is a finding of `check`, not a read failure.
  d.read = ZelPlistReadFile(path, /*requireDictionary=*/false);
  d.config = std::make_unique<ZelConfig>(d.read.value);
  return d;
}

ZEL_NAMESPACE_END
