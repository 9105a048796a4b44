// The session file: what is written comes back, a write is never seen
// half done, and nothing read from the file is trusted.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/standalone/ZelSessionFile.h"
#include "dsp/ZelVantryParameterTable.h"
#include "host/ZelHostView.h"

namespace {

using namespace zel;
namespace fs = std::filesystem;

struct TempFolder {
  fs::path path;
  TempFolder() {
    char name[] = "/tmp/vantry-session-XXXXXX";
    path = ::mkdtemp(name);
  }
  ~TempFolder() { fs::remove_all(path); }
  std::string file(const std::string& name = "session.plist") const { return (path / name).string(); }
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& e : fs::directory_iterator(path)) found.push_back(e.path().filename().string());
    std::sort(found.begin(), found.end());
    return found;
  }
};

void writeText(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::string readText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

std::string sessionWithValues(const std::string& values, const std::string& extra = {}) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
         "<key>format</key><string>Vantry session</string><key>version</key><integer>1</integer>"
         "<key>values</key><dict>" +
         values + "</dict>" + extra + "</dict></plist>\n";
}

ZelSessionState sample() {
  ZelSessionState state = ZelSessionState::defaults();
  state.values[kPidLowCut] = 640;
  state.values[kPidOutput] = -7.5f;
  state.values[kPidMode] = 2;
  state.values[kPidMasterOnOff] = 0;
  state.presetName = "Underwater \"deep\" <&>";
  state.dark = true;
  state.zoom = 1.75;
  return state;
}

TEST(SessionFile, WhatIsWrittenComesBack) {
  TempFolder dir;
  const std::string path = dir.file("nested/folders/session.plist");
  std::string error;
  ASSERT_TRUE(ZelWriteSession(path, sample(), error)) << error;
  const ZelSessionReading reading = ZelReadSession(path);
  EXPECT_EQ(reading.outcome, ZelSessionReading::Outcome::Restored);
  EXPECT_TRUE(reading.notes.empty());
  EXPECT_EQ(reading.state.values, sample().values);
  EXPECT_EQ(reading.state.presetName, sample().presetName);
  EXPECT_TRUE(reading.state.dark);
  EXPECT_EQ(reading.state.zoom, 1.75);

  EXPECT_EQ(ZelReadSession(dir.file("none.plist")).outcome, ZelSessionReading::Outcome::Missing);
  EXPECT_EQ(ZelReadSession(dir.file("none.plist")).state.values, ZelSessionState::defaults().values);
}

TEST(SessionFile, AWriteReplacesTheFileWholeOrNotAtAll) {
  TempFolder dir;
  const std::string path = dir.file();
  std::string error;
  ASSERT_TRUE(ZelWriteSession(path, ZelSessionState::defaults(), error));
  ASSERT_TRUE(ZelWriteSession(path, sample(), error));
  EXPECT_EQ(dir.names(), std::vector<std::string>{"session.plist"}) << "a temporary file was left behind";
  EXPECT_EQ(ZelReadSession(path).state.presetName, sample().presetName);

  // Where the file cannot be replaced (a folder stands there), the write
  // fails, says why and leaves nothing.
  const std::string blocked = dir.file("blocked.plist");
  fs::create_directory(blocked);
  writeText(blocked + "/inside", "kept");
  EXPECT_FALSE(ZelWriteSession(blocked, sample(), error));
  EXPECT_NE(error.find("blocked.plist"), std::string::npos) << error;
  EXPECT_EQ(dir.names(), (std::vector<std::string>{"blocked.plist", "session.plist"}));
  EXPECT_EQ(readText(blocked + "/inside"), "kept");
}

TEST(SessionFile, DamagedOrForeignFilesAreSetAsideAndTheDefaultsUsed) {
  const std::string valid = sessionWithValues("<key>LowCut</key><real>640</real>");
  std::string later = valid;
  later.replace(later.find("<integer>1</integer>"), 20, "<integer>2</integer>");
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"garbage", std::string("\x00\xff\x13 not a plist", sizeof "\x00\xff\x13 not a plist" - 1)},
      {"empty", ""},
      {"truncated", valid.substr(0, valid.size() / 2)},
      {"someone else's", "<plist version=\"1.0\"><dict><key>Name</key><string>x</string></dict></plist>"},
      {"a later version", later},
      {"an array", "<plist version=\"1.0\"><array><string>Vantry session</string></array></plist>"},
  };
  for (const auto& [what, text] : cases) {
    TempFolder dir;
    const std::string path = dir.file();
    writeText(path, text);
    const ZelSessionReading reading = ZelReadSession(path);
    EXPECT_EQ(reading.outcome, ZelSessionReading::Outcome::SetAside) << what;
    EXPECT_FALSE(reading.problem.empty()) << what;
    EXPECT_EQ(reading.state.values, ZelSessionState::defaults().values) << what;
    EXPECT_FALSE(fs::exists(path)) << what << ": still in the way";
    ASSERT_EQ(reading.setAsidePath.rfind(path + ".bad-", 0), 0u) << what << ": " << reading.setAsidePath;
    EXPECT_EQ(readText(reading.setAsidePath), text) << what << ": the file was changed";
  }

  // Twice in the same second: two names, nothing overwritten.
  TempFolder dir;
  writeText(dir.file(), "first");
  const std::string first = ZelReadSession(dir.file()).setAsidePath;
  writeText(dir.file(), "second");
  const std::string second = ZelReadSession(dir.file()).setAsidePath;
  EXPECT_NE(first, second);
  EXPECT_EQ(readText(first), "first");
  EXPECT_EQ(readText(second), "second");
}

TEST(SessionFile, UnknownNamesAndWrongKindsAreIgnoredAndValuesClamped) {
  TempFolder dir;
  writeText(dir.file(), sessionWithValues("<key>LowCut</key><real>5</real>"
                                          "<key>Output</key><integer>99</integer>"
                                          "<key>Mode</key><real>1.6</real>"
                                          "<key>Slope</key><real>48</real>"
                                          "<key>Bogus</key><real>3</real>"
                                          "<key>Drive</key><string>loud</string>"
                                          "<key>Mix</key><true/>",
                                          "<key>preset</key><integer>4</integer><key>theme</key><string>neon</string>"
                                          "<key>zoom</key><real>7</real>"));
  const ZelSessionReading reading = ZelReadSession(dir.file());
  ASSERT_EQ(reading.outcome, ZelSessionReading::Outcome::Restored);
  const ZelSessionState defaults = ZelSessionState::defaults();
  EXPECT_EQ(reading.state.values[kPidLowCut], 20.0f);
  EXPECT_EQ(reading.state.values[kPidOutput], 24.0f);
  EXPECT_EQ(reading.state.values[kPidMode], 2.0f);
  EXPECT_EQ(reading.state.values[kPidSlope], 48.0f);
  EXPECT_EQ(reading.state.values[kPidDrive], defaults.values[kPidDrive]);
  EXPECT_EQ(reading.state.values[kPidMix], defaults.values[kPidMix]);
  EXPECT_EQ(reading.state.presetName, "");
  EXPECT_FALSE(reading.state.dark);
  EXPECT_EQ(reading.state.zoom, 1.0);
  // Clamped LowCut, Output, Mode; ignored Bogus, Drive, Mix, zoom.
  EXPECT_EQ(reading.notes.size(), 7u);
  EXPECT_TRUE(fs::exists(dir.file())) << "a usable file stays where it is";
}

TEST(SessionFile, TheDefaultPlaceFollowsXdgConfigHome) {
  const char* savedConfig = std::getenv("XDG_CONFIG_HOME");
  const char* savedHome = std::getenv("HOME");
  const std::string config = savedConfig ? savedConfig : "", home = savedHome ? savedHome : "";
  ::setenv("XDG_CONFIG_HOME", "/cfg", 1);
  ::setenv("HOME", "/home/someone", 1);
  EXPECT_EQ(ZelDefaultSessionPath(), "/cfg/vantry/session.plist");
  ::setenv("XDG_CONFIG_HOME", "relative/ignored", 1);
  EXPECT_EQ(ZelDefaultSessionPath(), "/home/someone/.config/vantry/session.plist");
  ::unsetenv("XDG_CONFIG_HOME");
  ::unsetenv("HOME");
  EXPECT_EQ(ZelDefaultSessionPath(), "");
  savedConfig ? ::setenv("XDG_CONFIG_HOME", config.c_str(), 1) : ::unsetenv("XDG_CONFIG_HOME");
  savedHome ? ::setenv("HOME", home.c_str(), 1) : ::unsetenv("HOME");
}

TEST(SessionKeeper, WritesASecondAfterAChangeAndOnRequest) {
  TempFolder dir;
  ZelVirtualClock clock;
  ZelRunLoop loop(clock);
  ZelStandaloneUnit unit(loop, 2, 2);
  sample().applyTo(unit);
  ZelSessionKeeper keeper(loop, unit, dir.file());
  EXPECT_FALSE(keeper.hasUnsavedChanges());

  // A drag: a change every 0.1 s for 2.5 s is written every second.
  for (int step = 1; step <= 25; ++step) {
    unit.setParameter(kPidDegrade, float(step), nullptr);
    ZelRunVirtualTime(loop, clock, step * 0.1);
    if (step == 9) {
      EXPECT_FALSE(fs::exists(dir.file())) << "written before a second passed";
    }
  }
  EXPECT_EQ(keeper.writeCount(), 2u);
  ZelRunVirtualTime(loop, clock, 4.0);
  EXPECT_EQ(keeper.writeCount(), 3u);
  EXPECT_FALSE(keeper.hasUnsavedChanges());
  const ZelSessionReading reading = ZelReadSession(dir.file());
  EXPECT_EQ(reading.state.values[kPidDegrade], 25.0f);
  EXPECT_NEAR(reading.state.values[kPidLowCut], 640.0f, 0.1f) << "the standalone unit's positions go back to hertz";
  EXPECT_EQ(reading.state.presetName, sample().presetName);
  EXPECT_TRUE(reading.state.dark);

  // Setting a value it already has is no change; the theme and preset are.
  unit.setParameter(kPidDegrade, 25, nullptr);
  EXPECT_FALSE(keeper.hasUnsavedChanges());
  unit.setPresetName("Radio");
  EXPECT_TRUE(keeper.hasUnsavedChanges());
  EXPECT_TRUE(keeper.flush());
  EXPECT_EQ(ZelReadSession(dir.file()).state.presetName, "Radio");
  unit.setInterfacePreference(true);
  EXPECT_TRUE(keeper.hasUnsavedChanges());
  EXPECT_TRUE(keeper.flush());
  EXPECT_FALSE(ZelReadSession(dir.file()).state.dark);
  EXPECT_TRUE(keeper.flush(true));
  EXPECT_EQ(keeper.writeCount(), 6u);
}

}  // namespace
