// Shared pieces of the sketch tests: a description with numbered
// parameters, a window on a virtual clock, a recording sketch and a host
// with a stamp layer.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "model/ZelConfig.h"
#include "sketch/ZelParameterSketch.h"
#include "toolkit/core/ZelFrameClock.h"
#include "toolkit/core/ZelLayer.h"
#include "toolkit/core/ZelView.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelPlist.h"
#include "toolkit/foundation/ZelRunLoop.h"

namespace zel::testing {

// One clump of parameters with pids 0 ... initial.size() - 1.
inline std::unique_ptr<ZelConfig> ConfigWithInitialValues(const std::vector<float>& initial) {
  ZelPlist::Array parameters;
  for (std::size_t pid = 0; pid < initial.size(); ++pid) {
    parameters.push_back(ZelPlist::dictionary({{"pid", ZelPlist::integer(static_cast<std::int64_t>(pid))},
                                               {"initialValue", ZelPlist::real(initial[pid])}}));
  }
  ZelPlist clump = ZelPlist::dictionary({{"parameters", ZelPlist::array(std::move(parameters))}});
  return std::make_unique<ZelConfig>(ZelPlist::dictionary({{"clumps", ZelPlist::array({clump})}}));
}

// A window on a virtual clock; advance() runs frames and delayed calls.
struct VirtualWindow {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {200, 200}};

  template <class T>
  T* add(std::unique_ptr<T> view) {
    return window.contentView()->addSubview(std::move(view));
  }
  void advance(double seconds) { ZelRunVirtualTime(loop, clock, clock.now() + seconds); }
  // Runs exactly one frame of the window's clock.
  void frame() { advance(window.frameClock().frameDuration()); }
};

// Records every frame a sketch draws.
class RecordingSketch : public ZelParameterSketch {
 public:
  struct Frame {
    std::vector<float> values, destValues;
    std::vector<std::uint8_t> changes;
  };
  using ZelParameterSketch::ZelParameterSketch;

  void getFrameForParameterValues(std::span<const float> values, std::span<const float> destValues,
                                  std::span<const std::uint8_t> changes) override {
    frames.push_back({{values.begin(), values.end()},
                      {destValues.begin(), destValues.end()},
                      {changes.begin(), changes.end()}});
  }
  std::vector<Frame> frames;
};

// A power box stand-in: a stamp layer and a scale.
class FakeSketchHost final : public ZelSketchHost {
 public:
  explicit FakeSketchHost(double scale) : scale_(scale) {}
  ZelLayer* logoStampLayer() const override { return stamp_.get(); }
  double sketchBackingScale() const override { return scale_; }

 private:
  std::unique_ptr<ZelLayer> stamp_ = std::make_unique<ZelLayer>();
  double scale_;
};

}  // namespace zel::testing
