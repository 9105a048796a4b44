// The plug-in bundle's resources: the folder the textures, the icon font and
// the description file are read from. It defaults to the resources folder of
// the build (ZEL_RESOURCES_DIR); the plug-in sets it from its own bundle path
// when it is loaded, before any view is made.
//
// Threading: any thread (the directory is guarded by a mutex). The directory
// is process-wide: every editor in the process reads its one bundle.
#pragma once

#include <string>
#include <string_view>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelBundle {
 public:
  // Replaces the resources directory (an empty string restores the default).
  static void setResourcesDirectory(std::string directory);
  static std::string resourcesDirectory();

  // The path of the regular file `name`.`extension` in the resources
  // directory (just `name` when the extension is empty), or an empty string
  // when there is no such file.
  static std::string pathForResource(std::string_view name, std::string_view extension);
};

ZEL_NAMESPACE_END
