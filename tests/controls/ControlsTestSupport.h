// Shared pieces of the control tests: a parameter builder, primary controls
// that record what the base hands them, delegates that log, a window.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "controls/ZelParameterControl.h"
#include "tests/support/GeometryPrinting.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace zel::testing {

inline ZelPlist Num(double v) { return ZelPlist::real(v); }
inline ZelPlist Str(const char* s) { return ZelPlist::string(s); }

// "Drive", 0...100, steps 1 / 0.1 / 10, initial 50; `keys` override.
inline std::unique_ptr<ZelParameter> Param(ZelPlist::Dictionary keys = {}) {
  ZelPlist::Dictionary d{{"name", Str("Drive")},        {"codesafeName", Str("Drive")}, {"maxValue", Num(100)},
                         {"initialValue", Num(50)},     {"granularity", Num(1)},        {"fineGranularity", Num(0.1)},
                         {"coarseGranularity", Num(10)}};
  for (auto& [key, value] : keys) d[key] = value;
  return std::make_unique<ZelParameter>(ZelPlist::dictionary(std::move(d)));
}

class RecordingPrimary : public ZelFloatControl {
 public:
  using ZelFloatControl::ZelFloatControl;
  std::vector<std::string> hooks;
  std::vector<ZelGranularities> granularities;
  float scrollStart = 0;
  double scrollDelta = 0;
  int setValueCalls = 0;
  void setFloatValue(float value) override { ++setValueCalls, ZelFloatControl::setFloatValue(value); }

 protected:
  void handleMouseDownWithEvent(const ZelEvent&, ZelGranularities g) override { note("down", g); }
  void handleMouseDraggedWithEvent(const ZelEvent&, ZelGranularities g) override { note("drag", g); }
  void handleMouseUpWithEvent(const ZelEvent&, ZelGranularities g) override { note("up", g); }
  void handleScrollWithEvent(const ZelEvent&, float start, double delta, ZelGranularities g) override {
    scrollStart = start, scrollDelta = delta;
    note("scroll", g);
  }
  void note(const char* hook, ZelGranularities g) { hooks.push_back(hook), granularities.push_back(g); }
};

// A primary that can show typed numbers.
class TypingPrimary : public RecordingPrimary, public ZelTransientBufferDisplay {
 public:
  using RecordingPrimary::RecordingPrimary;
  bool displaying = false;
  ZelStyledString shown;
  int discards = 0;
  void displayTransientBufferValue(const ZelStyledString& s) override { shown = s; }
  void discardTransientBufferValue() override { ++discards, displaying = false; }
  double transientStringPreferredFontSize() const override { return 21; }
  bool displayingTransientBufferValue() const override { return displaying; }
  void setDisplayingTransientBufferValue(bool on) override { displaying = on; }
};

inline std::unique_ptr<ZelFloatControl> MakeRecording(CGRect frame, const ZelParameter* p) {
  return std::make_unique<RecordingPrimary>(frame, p);
}
inline std::unique_ptr<ZelFloatControl> MakeTyping(CGRect frame, const ZelParameter* p) {
  return std::make_unique<TypingPrimary>(frame, p);
}

struct FloatDelegateLog : ZelFloatControlDelegate {
  std::vector<ZelInteractionState> states;
  int docs = 0;
  void floatControlInteractionDidChangeTo(ZelFloatControl&, ZelInteractionState s) override { states.push_back(s); }
  void floatControlHasRequestedDocumentation(ZelFloatControl&) override { ++docs; }
  void floatControlDidTapMeaninglessly(ZelFloatControl&) override {}
};

// Logs each message as its sender plus a word.
struct ParameterDelegateLog : ZelParameterControlDelegate {
  std::vector<std::pair<ZelParameterControl*, std::string>> log;
  void parameterControlDidChangeInteractionState(ZelParameterControl& c, ZelInteractionState s) override {
    log.emplace_back(&c, s == ZelInteractionBegan ? "began" : "ended");
  }
  void parameterControlHasRequestedDocumentation(ZelParameterControl& c) override { log.emplace_back(&c, "docs"); }
  void parameterControlDidTapMeaninglessly(ZelParameterControl& c) override { log.emplace_back(&c, "tap"); }
};

// A key window on a virtual clock with a null backend.
struct WindowFixture {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelNullPlatformWindow platform{loop};
  ZelWindow window{loop, {400, 300}};
  WindowFixture() { window.setPlatformWindow(&platform), window.setKeyWindow(true); }
  ~WindowFixture() { window.setPlatformWindow(nullptr); }
  template <class T>
  T* add(std::unique_ptr<T> view) { return window.contentView()->addSubview(std::move(view)); }
  // Runs everything due up to the absolute time `t`.
  void runUntil(double t) { clock.set(t), loop.runDue(); }
};

}  // namespace zel::testing
