#include "app/common/ZelAppResources.h"

#include <unistd.h>

#include <climits>
#include <sys/stat.h>

#include "dsp/ZelProduct.h"
#include "toolkit/foundation/ZelBundle.h"

ZEL_NAMESPACE_BEGIN

std::string ZelUseResourcesBesideExecutable() {
  char buffer[PATH_MAX];
  const ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (n > 0) {
    std::string dir(buffer, std::size_t(n));
    dir.erase(dir.rfind('/') == std::string::npos ? 0 : dir.rfind('/'));
    const std::string resources = dir + "/resources/" + ZelCurrentProduct().slug;
    struct stat info {};
    if (::stat((resources + "/config.plist").c_str(), &info) == 0 && S_ISREG(info.st_mode))
      ZelBundle::setResourcesDirectory(resources);
  }
  return ZelBundle::resourcesDirectory();
}

ZEL_NAMESPACE_END
