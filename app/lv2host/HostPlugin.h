// The LV2 side of zel-lv2-host: the lilv world with the features a host
// offers, and one plug-in instance with its ports, its UI (through suil,
// embedded in a host top-level window) and everything the UI did.
#pragma once

#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/log/log.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>
#include <suil/suil.h>

#include <X11/Xlib.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace zel::lv2host {

class HostX11;

struct HostSettings {
  double rate = 48000;
  double scale = 1;
  uint32_t block = 256;
};

// URIs to numbers and back, for the plug-in, its UI and the host.
class UridTable {
public:
  UridTable();
  LV2_URID map(const char* uri);
  const char* unmap(LV2_URID urid) const;
  LV2_URID_Map* mapFeature() { return &map_; }
  LV2_URID_Unmap* unmapFeature() { return &unmap_; }

private:
  std::unordered_map<std::string, LV2_URID> ids_;
  std::vector<std::string> uris_;
  LV2_URID_Map map_;
  LV2_URID_Unmap unmap_;
};

struct LogLine {
  std::string level;  // "error", "warning", "note", "trace"
  std::string text;
};

// The world: lilv, the URID table, the log every plug-in and UI writes to.
// The process's resident memory in KiB (/proc/self/statm).
long residentKiB();

class HostWorld {
public:
  explicit HostWorld(const HostSettings& settings);
  ~HostWorld();
  // Loads a bundle directory given on the command line; empty on success.
  std::string addBundle(const std::string& dir);
  void loadAll();

  LilvWorld* world() const { return world_; }
  UridTable& urids() { return urids_; }
  const HostSettings& settings() const { return settings_; }
  std::vector<LogLine>& log() { return log_; }
  LV2_Log_Log* logFeature() { return &logFeature_; }
  SuilHost* suil() const { return suil_; }

  // Common nodes.
  LilvNode* inputPort;
  LilvNode* outputPort;
  LilvNode* audioPort;
  LilvNode* controlPort;
  LilvNode* cvPort;
  LilvNode* atomPort;
  LilvNode* minimumSize;
  LilvNode* connectionOptional;
  LilvNode* x11UI;
  LilvNode* presetClass;
  LilvNode* rdfsLabel;

private:
  static int logPrintf(LV2_Log_Handle, LV2_URID type, const char* fmt, ...);
  static int logVprintf(LV2_Log_Handle, LV2_URID type, const char* fmt, va_list ap);

  HostSettings settings_;
  LilvWorld* world_;
  UridTable urids_;
  std::vector<LogLine> log_;
  LV2_Log_Log logFeature_;
  SuilHost* suil_;
};

enum class PortKind { Audio, Control, CV, Atom, Other };

struct Port {
  uint32_t index = 0;
  std::string symbol;
  PortKind kind = PortKind::Other;
  bool input = true;
  float value = 0, minimum = 0, maximum = 1;
  std::vector<float> samples;                       // audio and CV
  std::vector<uint64_t> atomBuffer;                 // atom sequence (8-byte aligned)
  std::vector<std::vector<uint8_t>> pendingAtoms;   // from the UI, for the next run
  bool sentToUi = false;
  float lastSent = 0;
  uint64_t atomsPassed = 0;                         // UI->DSP for inputs, DSP->UI for outputs
};

// One thing the UI did, in the order it happened.
struct UiWrite {
  uint64_t sequence;
  uint32_t port;
  uint32_t protocol;  // 0: float, else the URID of atom:eventTransfer
  float value;        // protocol 0
  std::string atomType;
  bool valid;         // to an input port of the right kind
};
struct UiTouch {
  uint64_t sequence;
  uint32_t port;
  bool grabbed;
};

struct UiOpenReport {
  double instantiateMs = 0;
  double firstPaintMs = -1;  // -1: none seen
  long memoryKiB = 0;
  int width = 0, height = 0;
};

class PluginSlot {
public:
  PluginSlot(HostWorld& world, HostX11* x11, int number);
  ~PluginSlot();
  PluginSlot(const PluginSlot&) = delete;
  PluginSlot& operator=(const PluginSlot&) = delete;

  // Finds the plug-in and instantiates and activates it; empty on success.
  std::string load(const std::string& uri);
  const LilvPlugin* plugin() const { return plugin_; }
  const std::string& pluginUri() const { return pluginUri_; }
  bool loaded() const { return instance_ != nullptr; }

  // The UI: `uri` empty picks the first X11 UI. Empty on success.
  std::string openUi(const std::string& uri, UiOpenReport& report, int paintTimeoutMs);
  void closeUi();
  bool uiOpen() const { return ui_ != nullptr; }
  const std::string& uiUri() const { return uiUri_; }
  Window uiWindow() const { return uiWindow_; }
  Window hostWindow() const { return hostWindow_; }
  // One idle call; false when the UI asked to be closed (it is then closed).
  bool idle();

  // Runs `frames` frames in host-sized blocks, passing events both ways.
  void run(uint32_t frames);
  void setSine(double hz, double amplitude) { sineHz_ = hz, sineAmplitude_ = amplitude; }

  Port* port(const std::string& symbol);
  std::vector<Port>& ports() { return ports_; }
  // The host changes an input control: the float, and the UI hears of it.
  void setControl(Port& port, float value);
  // A port_event of `value` for a control port, the port's float untouched
  // (the flood's automation and late echoes); false without a UI.
  bool sendValueToUi(const Port& port, float value);

  // State: a snapshot in memory, and restoring one into a fresh instance
  // (the UI is re-created if it was open). Empty on success.
  LilvState* snapshot();
  std::string restoreIntoNewInstance(const LilvState* state, UiOpenReport& report, int paintTimeoutMs);
  // Applies a state (a preset) to the running instance; returns the number
  // of port values it set.
  int apply(const LilvState* state);

  std::vector<UiWrite>& writes() { return writes_; }
  std::vector<UiTouch>& touches() { return touches_; }
  const std::vector<std::pair<int, int>>& resizeRequests() const { return resizes_; }
  double lastPaintMs() const { return lastPaintMs_; }

private:
public:
  static void uiWriteThunk(SuilController, uint32_t port, uint32_t size, uint32_t protocol, const void* buffer);
  static uint32_t uiPortIndexThunk(SuilController, const char* symbol);
  static void uiTouchThunk(SuilController, uint32_t port, bool grabbed);
  
private:
  static int uiResizeThunk(LV2UI_Feature_Handle, int width, int height);
  static const void* getPortValue(const char* symbol, void* self, uint32_t* size, uint32_t* type);
  static void setPortValue(const char* symbol, void* self, const void* value, uint32_t size, uint32_t type);

  std::string instantiate();
  void freeInstance();
  void sendToUi(Port& port);
  void sendAllControlsToUi();

  HostWorld& world_;
  HostX11* x11_;
  int number_;
  const LilvPlugin* plugin_ = nullptr;
  std::string pluginUri_;
  LilvInstance* instance_ = nullptr;
  std::vector<Port> ports_;
  double sinePhase_ = 0, sineHz_ = 0, sineAmplitude_ = 0;

  // Features of the plug-in.
  std::vector<LV2_Options_Option> pluginOptions_;
  int32_t blockInt_[2] = {};
  int32_t sequenceSize_ = 0;
  float rateFloat_ = 0;
  std::vector<LV2_Feature> pluginFeatureStore_;
  std::vector<const LV2_Feature*> pluginFeatures_;

  // The UI.
  SuilInstance* ui_ = nullptr;
  std::string uiUri_;
  Window hostWindow_ = 0;
  Window uiWindow_ = 0;
  const LV2UI_Idle_Interface* idleInterface_ = nullptr;
  const LV2UI_Show_Interface* showInterface_ = nullptr;
  LV2UI_Resize resize_{};
  std::vector<LV2_Options_Option> uiOptions_;
  float scaleFloat_ = 1, updateRate_ = 60;
  std::vector<LV2_Feature> uiFeatureStore_;
  std::vector<const LV2_Feature*> uiFeatures_;
  double lastPaintMs_ = -1;

  uint64_t sequence_ = 0;
  std::vector<UiWrite> writes_;
  std::vector<UiTouch> touches_;
  std::vector<std::pair<int, int>> resizes_;
  int portValuesSet_ = 0;
};

}  // namespace zel::lv2host
