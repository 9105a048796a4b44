#include "toolkit/foundation/ZelBundle.h"

#include <sys/stat.h>

#include <mutex>

#ifndef ZEL_RESOURCES_DIR
#define ZEL_RESOURCES_DIR "resources"
#endif

ZEL_NAMESPACE_BEGIN

namespace {

std::mutex& directoryMutex() {
  static std::mutex mutex;
  return mutex;
}

std::string& directoryStorage() {
  static std::string directory = ZEL_RESOURCES_DIR;
  return directory;
}

bool isRegularFile(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace

void ZelBundle::setResourcesDirectory(std::string directory) {
  std::lock_guard lock(directoryMutex());
  directoryStorage() = directory.empty() ? std::string(ZEL_RESOURCES_DIR) : std::move(directory);
}

std::string ZelBundle::resourcesDirectory() {
  std::lock_guard lock(directoryMutex());
  return directoryStorage();
}

std::string ZelBundle::pathForResource(std::string_view name, std::string_view extension) {
  if (name.empty()) return {};
  std::string path = resourcesDirectory();
  if (!path.empty() && path.back() != '/') path += '/';
  path += name;
  if (!extension.empty()) {
    path += '.';
    path += extension;
  }
  return isRegularFile(path) ? path : std::string();
}

ZEL_NAMESPACE_END
