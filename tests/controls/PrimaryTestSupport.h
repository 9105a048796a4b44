// Pieces of the concrete controls' tests: parameters of each kind, a window
// to click in, and the events a user makes.
#pragma once

#include <memory>

#include "ControlsTestSupport.h"
#include "model/ZelPresets.h"

namespace zel::testing {

inline ZelPlist Strings(std::initializer_list<const char*> items) {
  ZelPlist::Array a;
  for (const char* s : items) a.push_back(Str(s));
  return ZelPlist::array(std::move(a));
}
inline ZelPlist Numbers(std::initializer_list<double> items) {
  ZelPlist::Array a;
  for (double v : items) a.push_back(Num(v));
  return ZelPlist::array(std::move(a));
}

// 20 Hz ... 20 kHz, logarithmic, steps 1 / 1 / 10.
inline std::unique_ptr<ZelParameter> FrequencyParam(ZelPlist::Dictionary keys = {}) {
  ZelPlist::Dictionary d{{"unit", Str("Hertz")},        {"logarithmic", ZelPlist::boolean(true)},
                         {"minValue", Num(20)},         {"maxValue", Num(20000)},
                         {"initialValue", Num(1000)},   {"fineGranularity", Num(1)},
                         {"formatString", Str("%0.0f")}, {"cueValues", Numbers({50, 200, 1000, 5000})}};
  for (auto& [key, value] : keys) d[key] = value;
  return Param(std::move(d));
}

// Stereo / Mono / Mid-Side, an indexed 0 ... 2 cycle.
inline std::unique_ptr<ZelParameter> ModeParam(ZelPlist::Dictionary keys = {}) {
  ZelPlist::Dictionary d{{"unit", Str("Indexed")},
                         {"controlType", Str("Cycle")},
                         {"maxValue", Num(2)},
                         {"initialValue", Num(0)},
                         {"coarseGranularity", Num(1)},
                         {"stringValues", Strings({"Stereo", "Mono", "Mid/Side"})}};
  for (auto& [key, value] : keys) d[key] = value;
  return Param(std::move(d));
}

inline std::unique_ptr<ZelParameter> BooleanParam(ZelPlist::Dictionary keys = {}) {
  ZelPlist::Dictionary d{{"unit", Str("Boolean")},     {"controlType", Str("Boolean")},
                         {"maxValue", Num(1)},         {"initialValue", Num(1)},
                         {"stringValues", Strings({"Off", "On"})}};
  for (auto& [key, value] : keys) d[key] = value;
  return Param(std::move(d));
}

inline std::unique_ptr<ZelPresets> PresetsParam() {
  ZelPlist::Dictionary d{{"name", Str("Preset")},      {"codesafeName", Str("Preset")},
                         {"unit", Str("Indexed")},     {"controlType", Str("Preset")},
                         {"maxValue", Num(2)},         {"granularity", Num(1)},
                         {"stringValues", Strings({"Default", "Telephone", "AM Radio"})}};
  return std::make_unique<ZelPresets>(ZelPlist::dictionary(std::move(d)));
}

// A window to click in: events at window coordinates, routed as a backend
// would send them.
struct ClickFixture : WindowFixture {
  void down(CGPoint p, ZelEventModifierFlags flags = 0) { send(ZelEventType::LeftMouseDown, p, flags); }
  void drag(CGPoint p, ZelEventModifierFlags flags = 0) { send(ZelEventType::LeftMouseDragged, p, flags); }
  void up(CGPoint p, ZelEventModifierFlags flags = 0) { send(ZelEventType::LeftMouseUp, p, flags); }
  void scroll(CGPoint p, double lines, ZelEventModifierFlags flags = 0) {
    window.sendEvent(ZelEvent::scroll(p, 0, lines, flags));
  }
  void click(CGPoint p, ZelEventModifierFlags flags = 0) { down(p, flags), up(p, flags); }
  void send(ZelEventType type, CGPoint p, ZelEventModifierFlags flags) {
    window.sendEvent(ZelEvent::mouse(type, p, flags));
  }
};

// Counts the actions a control sends.
struct ActionCounter {
  int count = 0;
  void attach(ZelControl& control) {
    control.setAction([this](ZelControl&) { ++count; });
  }
};

}  // namespace zel::testing
