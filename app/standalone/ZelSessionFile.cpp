#include "app/standalone/ZelSessionFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "host/ZelHostView.h"
#include "toolkit/foundation/ZelPlistReader.h"

ZEL_NAMESPACE_BEGIN

namespace {

// "<Name> session": the product's name and the word.
std::string formatWord() { return std::string(ZelCurrentProduct().name) + " session"; }
constexpr std::int64_t kVersion = 1;
constexpr std::string_view kWrite = "write";

std::string folderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// mkdir -p for the folder of a file.
bool makeFolders(const std::string& folder, std::string& error) {
  for (std::size_t at = 1; at <= folder.size(); ++at) {
    if (at != folder.size() && folder[at] != '/') continue;
    const std::string part = folder.substr(0, at);
    if (::mkdir(part.c_str(), 0755) != 0 && errno != EEXIST) {
      error = "cannot make the folder " + part + ": " + std::strerror(errno);
      return false;
    }
  }
  return true;
}

bool writeAll(int fd, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += std::size_t(n);
  }
  return true;
}

std::string timestamp() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", &local);
  return text;
}

// Moves a file that cannot be used out of the way, keeping it for a look.
std::string setAside(const std::string& path) {
  const std::string base = path + ".bad-" + timestamp();
  for (int n = 0; n < 100; ++n) {
    const std::string target = n == 0 ? base : base + "-" + std::to_string(n);
    struct stat st {};
    if (::lstat(target.c_str(), &st) == 0) continue;
    if (::rename(path.c_str(), target.c_str()) == 0) return target;
    return {};
  }
  return {};
}

const ZelUnitParameter* parameterNamed(std::string_view codeName) {
  return ZelCurrentProduct().parameter(ZelCurrentProduct().pidOfCodeName(codeName));
}

// Fills `reading` from a property list already read; false with the
// problem set when it is not a session of ours.
bool readState(const ZelPlist& root, ZelSessionReading& reading) {
  const std::string format = formatWord();
  if (root["format"].stringValue() != format) {
    reading.problem = "not a " + format + " (no \"format\" of \"" + format + "\")";
    return false;
  }
  if (root["version"].kind() != ZelPlist::Kind::Integer || root["version"].integerValue() != kVersion) {
    reading.problem = "a session version this " + std::string(ZelCurrentProduct().name) + " does not know";
    return false;
  }
  ZelSessionState& state = reading.state;
  if (const ZelPlist::Dictionary* values = root["values"].asDictionary()) {
    for (const auto& [name, value] : *values) {
      const ZelUnitParameter* p = parameterNamed(name);
      if (!p) {
        reading.notes.push_back("unknown parameter " + name + " ignored");
        continue;
      }
      const double v = value.doubleValue();
      if (!value.isNumber() || value.kind() == ZelPlist::Kind::Boolean || !std::isfinite(v)) {
        reading.notes.push_back(name + ": not a number, ignored");
        continue;
      }
      float clamped = std::clamp(float(v), p->minimum, p->maximum);
      if (p->kind == ZelParameterKind::Switch || p->kind == ZelParameterKind::WholeNumber)
        clamped = std::round(clamped);
      if (clamped != float(v)) reading.notes.push_back(name + ": " + std::to_string(v) + " taken as " +
                                                       std::to_string(clamped));
      state.values[std::size_t(p->pid)] = clamped;
    }
  } else if (root.contains("values")) {
    reading.notes.push_back("\"values\" is not a dictionary, ignored");
  }
  if (const std::string* preset = root["preset"].asString()) state.presetName = *preset;
  state.dark = root["theme"].stringValue() == "dark";
  if (root.contains("zoom")) {
    const ZelPlist& zoom = root["zoom"];
    const double z = zoom.doubleValue();
    if (zoom.isNumber() && zoom.kind() != ZelPlist::Kind::Boolean && std::isfinite(z) && z >= 1 && z <= 2) {
      state.zoom = z;
    } else {
      reading.notes.push_back("zoom: not a number from 1 to 2, ignored");
    }
  }
  return true;
}

}  // namespace

ZelSessionState ZelSessionState::defaults() {
  ZelSessionState state;
  for (const ZelUnitParameter& p : ZelCurrentProduct().parameters) state.values[std::size_t(p.pid)] = p.initial;
  return state;
}

ZelSessionState ZelSessionState::of(const ZelStandaloneUnit& unit) {
  ZelSessionState state;
  for (std::uint32_t pid = 0; pid < state.values.size(); ++pid) state.values[pid] = unit.valueInOwnUnits(pid);
  state.presetName = unit.presetName();
  state.dark = unit.themeFlag();
  state.zoom = unit.zoom();
  return state;
}

void ZelSessionState::applyTo(ZelStandaloneUnit& unit) const {
  for (std::uint32_t pid = 0; pid < values.size(); ++pid)
    unit.setParameter(pid, ZelHostView::unitValueFromEditor(pid, values[pid]), nullptr);
  unit.setPresetName(presetName);
  unit.setThemeFlag(dark);
  unit.setZoom(zoom);
}

std::string ZelDefaultSessionPath() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  std::string folder;
  if (config && config[0] == '/') {
    folder = config;
  } else {
    const char* home = std::getenv("HOME");
    if (!home || !home[0]) return {};
    folder = std::string(home) + "/.config";
  }
  return folder + "/" + ZelCurrentProduct().slug + "/session.plist";
}

ZelSessionReading ZelReadSession(const std::string& path) {
  ZelSessionReading reading;
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0 && errno == ENOENT) return reading;
  ZelPlistReadResult read;
  if (S_ISREG(st.st_mode)) {
    read = ZelPlistReadFile(path, true);
  } else {
    read.diagnostics.push_back({ZelDiagnostic::Severity::Error, {}, "not a regular file"});
  }
  if (read.ok() && readState(read.value, reading)) {
    reading.outcome = ZelSessionReading::Outcome::Restored;
    return reading;
  }
  if (reading.problem.empty())
    reading.problem = read.diagnostics.empty() ? "unreadable" : read.diagnostics.front().message;
  reading.notes.clear();
  reading.state = ZelSessionState::defaults();
  reading.outcome = ZelSessionReading::Outcome::SetAside;
  if (S_ISREG(st.st_mode)) reading.setAsidePath = setAside(path);
  return reading;
}

bool ZelWriteSession(const std::string& path, const ZelSessionState& state, std::string& error) {
  ZelPlist::Dictionary values;
  for (const ZelUnitParameter& p : ZelCurrentProduct().parameters)
    if (std::size_t(p.pid) < state.values.size()) values[p.codeName] = ZelPlist::real(state.values[std::size_t(p.pid)]);
  ZelPlist::Dictionary root;
  root["format"] = ZelPlist::string(formatWord());
  root["version"] = ZelPlist::integer(kVersion);
  root["values"] = ZelPlist::dictionary(std::move(values));
  root["preset"] = ZelPlist::string(state.presetName);
  root["theme"] = ZelPlist::string(state.dark ? "dark" : "light");
  root["zoom"] = ZelPlist::real(state.zoom);
  const std::string xml = ZelPlistToXML(ZelPlist::dictionary(std::move(root)));

  const std::string folder = folderOf(path);
  if (!makeFolders(folder, error)) return false;
  const std::string temporary = path + ".tmp-" + std::to_string(::getpid());
  const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0644);
  if (fd < 0) {
    error = "cannot create " + temporary + ": " + std::strerror(errno);
    return false;
  }
  bool ok = writeAll(fd, xml) && ::fsync(fd) == 0;
  const int writeErrno = errno;
  ok = ::close(fd) == 0 && ok;
  if (!ok) {
    error = "cannot write " + temporary + ": " + std::strerror(writeErrno);
    ::unlink(temporary.c_str());
    return false;
  }
  if (::rename(temporary.c_str(), path.c_str()) != 0) {
    error = "cannot replace " + path + ": " + std::strerror(errno);
    ::unlink(temporary.c_str());
    return false;
  }
  // The rename itself reaches the disk with the folder.
  if (const int dir = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); dir >= 0) {
    ::fsync(dir);
    ::close(dir);
  }
  return true;
}

ZelSessionKeeper::ZelSessionKeeper(ZelRunLoop& runLoop, ZelStandaloneUnit& unit, std::string path)
    : runLoop_(runLoop), unit_(unit), path_(std::move(path)) {
  unit_.setChangeHandler([this] { changed(); });
}

ZelSessionKeeper::~ZelSessionKeeper() {
  unit_.setChangeHandler({});
  runLoop_.cancelAllForTarget(this);
}

void ZelSessionKeeper::changed() {
  dirty_ = true;
  if (scheduled_) return;
  scheduled_ = true;
  runLoop_.schedule(
      kWriteDelay,
      [this] {
        scheduled_ = false;
        flush();
      },
      ZelCallKey{this, kWrite});
}

bool ZelSessionKeeper::flush(bool always) {
  if (!dirty_ && !always) return true;
  std::string error;
  if (!ZelWriteSession(path_, ZelSessionState::of(unit_), error)) {
    if (!failing_) std::fprintf(stderr, "%s: the session is not saved: %s\n", ZelCurrentProduct().slug, error.c_str());
    failing_ = true;
    return false;
  }
  failing_ = false;
  dirty_ = false;
  ++writes_;
  return true;
}

ZEL_NAMESPACE_END
