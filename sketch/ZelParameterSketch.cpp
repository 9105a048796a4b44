#include "sketch/ZelParameterSketch.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <future>

#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelTransaction.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

// A description cannot make us allocate without bound.
constexpr std::int64_t kMaxParams = 1 << 16;
// The rate assumed until the view joins a window.
constexpr double kDefaultFramesPerSecond = 60;
constexpr double kGuideLineAlpha = 0.35;
constexpr float kPointMin = -1.0f, kPointMax = 2.0f;

float clipPoint(float p) {
  if (!(p >= kPointMin)) return kPointMin;  // NaN too
  return p > kPointMax ? kPointMax : p;
}

}  // namespace

ZelParameterSketch::ZelParameterSketch(CGRect frame, const ZelConfig* config, ZelSketchTraits traits)
    : ZelView(frame), config_(config), traits_(traits) {
  setWantsLayer(true);
  if (config) numParams_ = static_cast<std::size_t>(std::clamp<std::int64_t>(config->numParameters(), 0, kMaxParams));
  timeConstant_ = timeConstantForRate(animationTimeInMilliseconds(), kDefaultFramesPerSecond);
  if (!shouldInterpolate()) return;
  parameterValuesPrev_.assign(numParams_, 0.0f);
  parameterValues_.assign(numParams_, 0.0f);
  parameterValuesInterp_.assign(numParams_, 0.0f);
  changes_.assign(numParams_, 0);
  if (!config) return;
  config->enumerateParameters([this](const ZelParameter& p, const ZelClump&) {
    if (p.pid >= 0 && static_cast<std::size_t>(p.pid) < numParams_)
      parameterValuesPrev_[static_cast<std::size_t>(p.pid)] = p.initialValue;
  });
}

ZelParameterSketch::~ZelParameterSketch() = default;

float ZelParameterSketch::timeConstantForRate(double milliseconds, double framesPerSecond) {
  const double frames = (milliseconds / 5000.0) * framesPerSecond;
  if (!(frames > 0)) return 0.0f;
  return static_cast<float>(std::exp(-1.0 / frames));
}

// ---- Values and frames.

void ZelParameterSketch::copyIn(std::vector<float>& dest, std::span<const float> values) const {
  std::copy_n(values.begin(), std::min(values.size(), dest.size()), dest.begin());
}

void ZelParameterSketch::updateWithParameterValues(std::span<const float> values,
                                                   std::span<const std::uint8_t> changes, bool animate) {
  if (!shouldInterpolate()) {
    getFrameForParameterValues(values, values, changes);
    return;
  }
  interpolating_ = true;
  interpProgress_ = 0;
  copyIn(parameterValues_, values);
  const std::size_t flags = std::min(changes.size(), changes_.size());
  if (!isDisplayLinkRunning()) {
    std::fill(changes_.begin(), changes_.end(), std::uint8_t{0});
    std::copy_n(changes.begin(), flags, changes_.begin());
  } else {
    // A change during an animation keeps what the animation was showing.
    for (std::size_t i = 0; i < flags; ++i) changes_[i] = (changes_[i] || changes[i]) ? 1 : 0;
  }
  if (!animate) copyIn(parameterValuesPrev_, values);
  startDisplayLink();
}

void ZelParameterSketch::getFrameWithDuration(double seconds) {
  if (isMeter()) updateMeterWithDuration(seconds);
  if (!interpolating_) {
    if (!isMeter()) stopDisplayLink();
    return;
  }
  const float t = timeConstant_;
  const float u = 1.0f - t;
  const std::size_t n = numParams_;
  const float* target = parameterValues_.data();
  const float* prev = parameterValuesPrev_.data();
  float* interp = parameterValuesInterp_.data();
  for (std::size_t i = 0; i < n; ++i) interp[i] = target[i] * u + prev[i] * t;
  getFrameForParameterValues(parameterValuesInterp_, parameterValues_, changes_);
  interpProgress_ = t * interpProgress_ + u;
  if (interpProgress_ >= kProgressDone) {
    finishInterpolation();
  } else {
    // Each frame moves a fixed fraction of the remaining way.
    std::copy(parameterValuesInterp_.begin(), parameterValuesInterp_.end(), parameterValuesPrev_.begin());
  }
}

void ZelParameterSketch::finishInterpolation() {
  getFrameForParameterValues(parameterValues_, parameterValues_, changes_);
  interpolating_ = false;
  if (!isMeter()) stopDisplayLink();
  std::copy(parameterValues_.begin(), parameterValues_.end(), parameterValuesPrev_.begin());
}

// ---- Display link.

void ZelParameterSketch::recreateDisplayLink() {
  displayLink_.reset();
  if (!window()) return;
  displayLink_ = std::make_unique<ZelDisplayLink>(window()->frameClock(),
                                                  [this](double duration) { getFrameWithDuration(duration); });
  if (shouldInterpolate())
    timeConstant_ = timeConstantForRate(animationTimeInMilliseconds(), displayLink_->nominalFramesPerSecond());
  // Values that arrived while we had no window still get drawn.
  if (isMeter() || interpolating_) displayLink_->start();
}

void ZelParameterSketch::startDisplayLink() {
  if (displayLink_) displayLink_->start();
}

void ZelParameterSketch::stopDisplayLink() {
  if (displayLink_) displayLink_->stop();
}

// ---- Geometry and layers.

std::unique_ptr<ZelShapeLayer> ZelParameterSketch::styledShapeLayerWithAlpha(double alpha) {
  auto shape = std::make_unique<ZelShapeLayer>();
  shape->setFillColor(std::nullopt);
  shape->setStrokeColor(ZelColor::grey(1.0, alpha));
  shape->setLineWidth(2.0);
  shape->setLineCap(ZelLineCap::Round);
  shape->setLineJoin(ZelLineJoin::Round);
  return shape;
}

CGRect ZelParameterSketch::getPathBounds(const ZelLayer* shape) const {
  const CGRect area = (shape && shape->superlayer()) ? shape->superlayer()->bounds() : bounds();
  double x = std::floor(area.origin.x), y = std::floor(area.origin.y);
  double width = std::floor(area.size.width), height = std::floor(area.size.height);
  if (width > height) {
    x = std::floor(x + (width - height) / 2);
    width = height;
  } else {
    y = std::floor(y + (height - width) / 2);
    height = width;
  }
  return CGRectInset(CGRectMake(x, y, width, height), pathInset().width, pathInset().height);
}

void ZelParameterSketch::updatePath(ZelShapeLayer* shape, bool horizontal, const float* points,
                                    std::size_t count) {
  if (!shape) return;
  ZelPath& path = pathScratch_;
  path.clear();
  const CGRect area = getPathBounds(shape);
  if (!CGRectIsNull(area) && points) {
    const double step = count > 1 ? 1.0 / static_cast<double>(count - 1) : 0.0;
    for (std::size_t i = 0; i < count; ++i) {
      const double p = clipPoint(points[i]);
      const double along = step * static_cast<double>(i);
      const CGPoint at = horizontal ? CGPoint{area.origin.x + area.size.width * along, p * area.size.height + area.origin.y}
                                    : CGPoint{p * area.size.width + area.origin.x, area.origin.y + area.size.height * along};
      if (i == 0) path.moveTo(at);
      else path.lineTo(at);
    }
  }
  shape->exchangePath(path);
}

ZelShapeLayer* ZelParameterSketch::addDashedLineAtValue(float value, bool horizontal, ZelLayer* superlayer) {
  ZelLayer* parent = superlayer ? superlayer : layer();
  auto made = styledShapeLayerWithAlpha(kGuideLineAlpha);
  made->setLineCap(ZelLineCap::Butt);
  made->setLineDashPattern({4.0, 4.0});
  made->setFrame(parent->bounds());
  made->setStrokeColor(ZelUITheme::theme()->backgroundColor().withAlpha(kGuideLineAlpha));
  auto* line = static_cast<ZelShapeLayer*>(parent->insertSublayer(std::move(made), 0));
  const float ends[2] = {value, value};
  updatePath(line, horizontal, ends, 2);
  centerLine_ = line;
  return line;
}

// ---- Visibility.

void ZelParameterSketch::mouseUp(const ZelEvent&) { toggleVisible(!isSketchVisible()); }

void ZelParameterSketch::toggleVisible(bool visible) { layer()->setOpacity(visible ? 1.0 : 0.0); }

bool ZelParameterSketch::isSketchVisible() const { return layer()->opacity() != 0; }

// ---- Window.

double ZelParameterSketch::backingScale() const {
  const double hostScale = powerbox_ ? powerbox_->sketchBackingScale() : 0;
  if (hostScale > 0) return hostScale;
  return window() ? window()->backingScale() : 1.0;
}

void ZelParameterSketch::viewDidMoveToWindow() {
  displayLink_.reset();
  themeObservation_.reset();
  if (!window()) return;
  addPaths();
  viewDidChangeBackingProperties();
  themeUpdated();
  // The theme is process-wide: follow a toggle from any window.
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { themeUpdated(); });
  recreateDisplayLink();
}

void ZelParameterSketch::viewDidChangeBackingProperties() { layer()->setContentsScale(backingScale()); }

void ZelParameterSketch::themeUpdated() {
  ZelTransaction transaction;
  transaction.setDisableActions(true);
  const ZelColor background = ZelUITheme::theme()->backgroundColor();
  if (centerLine_) centerLine_->setStrokeColor(background.withAlpha(kGuideLineAlpha));
  colorSketchWithPrimaryColor(background);
}

// ---- Threads.

void ZelParameterSketch::runOnMainQueueWithoutDeadlocking(ZelRunLoop& mainLoop, const std::function<void()>& task) {
  if (ZelRunLoop::current() == &mainLoop) {
    task();
    return;
  }
  std::promise<void> done;
  std::future<void> finished = done.get_future();
  mainLoop.post([&task, &done] {
    try {
      task();
      done.set_value();
    } catch (...) {
      done.set_exception(std::current_exception());
    }
  });
  finished.get();
}

ZEL_NAMESPACE_END
