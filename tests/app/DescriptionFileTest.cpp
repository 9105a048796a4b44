// Loading the description with a clear error, and watching its file.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "app/common/ZelDescriptionFile.h"
#include "model/ZelConfig.h"

namespace {

using namespace zel;
namespace fs = std::filesystem;

struct TempFile {
  fs::path path = fs::temp_directory_path() / ("zel-watch-" + std::to_string(::getpid()) + ".plist");
  ~TempFile() { fs::remove(path); }
  void write(const std::string& text) const { std::ofstream(path) << text; }
};

TEST(DescriptionFile, LoadsOrSaysWhyNot) {
  std::string error;
  EXPECT_NE(ZelLoadDescription(ZelDefaultDescriptionPath(), error), nullptr);
  EXPECT_TRUE(error.empty());

  EXPECT_EQ(ZelLoadDescription("/nonexistent/config.plist", error), nullptr);
  EXPECT_NE(error.find("cannot open"), std::string::npos) << error;

  TempFile file;
  file.write("this is not a property list");
  EXPECT_EQ(ZelLoadDescription(file.path, error), nullptr);
  EXPECT_FALSE(error.empty());
}

TEST(DescriptionWatcher, SeesEachChangeOnceAndWaitsForAReplacedFile) {
  TempFile file;
  file.write("one");
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  int changes = 0;
  ZelDescriptionWatcher watcher(loop, file.path, [&] { ++changes; });
  watcher.start();
  ZelRunVirtualTime(loop, clock, 1.2);
  EXPECT_EQ(changes, 0) << "the file as started is not a change";

  file.write("two, longer");
  ZelRunVirtualTime(loop, clock, 1.6);
  EXPECT_EQ(changes, 1);
  ZelRunVirtualTime(loop, clock, 3);
  EXPECT_EQ(changes, 1) << "one change, one call";

  // Gone (an editor replacing it): no call until it is back.
  fs::remove(file.path);
  ZelRunVirtualTime(loop, clock, 3.6);
  EXPECT_EQ(changes, 1);
  file.write("three");
  ZelRunVirtualTime(loop, clock, 4.1);
  EXPECT_EQ(changes, 2);
  // It polls every half second, nothing more.
  EXPECT_EQ(loop.pendingCount(), 1u);
}

}  // namespace
