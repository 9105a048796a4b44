#include "host/ZelHostView.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

#include "dsp/ZelProduct.h"
#include "host/ZelProductSketch.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelWindow.h"
#include "toolkit/foundation/ZelBundle.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr char kSourceName[] = "ZelGenericCocoaViewMM";
constexpr std::string_view kDeliver = "deliver";
constexpr std::string_view kAddSketch = "addSketch";
constexpr std::string_view kEnsureFirstResponder = "ensureFirstResponder";

// The unit's linear position range of the frequency parameters.
constexpr float kPositionLow = 20, kPositionSpan = 19980;
constexpr float kFrequencyLow = 20, kFrequencyRatio = 1000;

std::vector<ZelHostView::ParameterSpec> makeTable(const ZelProduct& product) {
  std::vector<ZelHostView::ParameterSpec> table(product.parameters.size());
  for (const ZelUnitParameter& p : product.parameters) {
    ZelHostView::Conversion c = ZelHostView::Conversion::Plain;
    switch (p.kind) {
      case ZelParameterKind::Switch: c = ZelHostView::Conversion::Switch; break;
      case ZelParameterKind::Plain: c = ZelHostView::Conversion::Plain; break;
      case ZelParameterKind::Frequency: c = ZelHostView::Conversion::Frequency; break;
      case ZelParameterKind::WholeNumber: c = ZelHostView::Conversion::WholeNumber; break;
    }
    table[static_cast<std::size_t>(p.pid)] = {c, p.minimum, p.maximum};
  }
  return table;
}

// Truncated toward zero to 64 bits, the low 32 bits read as unsigned: a
// negative number becomes a large one. Values beyond 64 bits saturate.
float wholeNumber(float v) {
  if (std::isnan(v)) return 0;
  constexpr float kLimit = 9.2233715e18f;  // below 2^63
  const std::int64_t whole = v >= kLimit ? std::numeric_limits<std::int64_t>::max()
                             : v <= -kLimit ? std::numeric_limits<std::int64_t>::min()
                                            : static_cast<std::int64_t>(v);
  return static_cast<float>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(whole)));
}

}  // namespace

ZelUnitMeteringResult ZelGetMeteringResult(ZelUnitConnection& unit) {
  ZelUnitMeteringResult result;
  result.valid = unit.getMetering(result.metering) == kZelUnitNoErr;
  if (!result.valid) result.metering = {};
  return result;
}

const std::vector<ZelHostView::ParameterSpec>& ZelHostView::parameterTable() {
  // The product is chosen before the first view exists; a later choice
  // (a test that switches) gets its own table.
  static const ZelProduct* product = nullptr;
  static std::vector<ParameterSpec> table;
  if (const ZelProduct& current = ZelCurrentProduct(); product != &current) {
    product = &current;
    table = makeTable(current);
  }
  return table;
}

float ZelHostView::editorValueFromUnit(std::uint32_t pid, float x) {
  if (pid >= parameterCount()) return 0;
  const ParameterSpec& spec = parameterTable()[pid];
  float v = x;
  switch (spec.conversion) {
    case Conversion::Switch: v = x == 0 ? 0.0f : 1.0f; break;
    case Conversion::Plain: break;
    case Conversion::Frequency: v = hertzFromPosition(x); break;
    case Conversion::WholeNumber: v = wholeNumber(x); break;
  }
  return std::min(std::max(v, spec.minimum), spec.maximum);
}

float ZelHostView::unitValueFromEditor(std::uint32_t pid, float v) {
  if (pid >= parameterCount()) return 0;
  if (parameterTable()[pid].conversion != Conversion::Frequency) return v;
  return positionFromHertz(v);
}

float ZelHostView::hertzFromPosition(float x) {
  return std::exp(std::log(kFrequencyRatio) * (x - kPositionLow) / kPositionSpan + std::log(kFrequencyLow));
}

float ZelHostView::positionFromHertz(float v) {
  return std::log(v / kFrequencyLow) / std::log(kFrequencyRatio) * kPositionSpan + kPositionLow;
}

ZelSketchFactory ZelHostView::productSketchFactory() {
  const ZelSketchMaker maker = ZelProductSketchMaker(ZelCurrentProduct().slug);
  if (!maker) return {};
  return [maker](CGRect frame, const ZelConfig& config) -> std::unique_ptr<ZelParameterSketch> {
    if (!config.metadata().hasParameterSketch) return nullptr;
    return maker(frame, config);
  };
}

ZelHostView::ZelHostView(ZelRunLoop& runLoop, std::string resourcesDirectory)
    : ZelView(CGRectMake(0, 0, kInitialSize.width, kInitialSize.height)),
      runLoop_(runLoop),
      resourcesDirectory_(std::move(resourcesDirectory)),
      count_(parameterCount()),
      outgoing_(count_, kNothingOutstanding),
      gestures_(count_, 0),
      pendingValue_(count_, 0.0f),
      deliveryPending_(count_, false),
      heldDuringGesture_(count_, false),
      lastSent_(count_, 0.0f),
      sketchFactory_(productSketchFactory()) {}

ZelHostView::ZelHostView(ZelRunLoop& runLoop, std::unique_ptr<ZelConfig> config) : ZelHostView(runLoop) {
  config_ = std::move(config);
  readsBundleConfig_ = !config_;
}

ZelHostView::~ZelHostView() {
  runLoop_.cancelAllForTarget(this);
  if (observedWindow_) observedWindow_->setKeyWindowChangedHandler({});
  removeListeners();
  removeEditor();
}

void ZelHostView::logFailure(int line, const char* operation, ZelUnitStatus status) const {
  char code[5] = {};
  std::memcpy(code, &status, 4);
  char text[256];
  std::snprintf(text, sizeof text, "%s:%d: %s result %d %08X %4.4s\n", kSourceName, line, operation,
                static_cast<int>(status), static_cast<unsigned>(status), code);
  if (logSink_) {
    logSink_(text);
  } else {
    std::fputs(text, stderr);
  }
}

// ---- Connecting.

CGSize ZelHostView::editorSize() const {
  const CGSize preferred = config_ ? config_->preferredSize() : CGSize{0, 0};
  return preferred.width > 0 && preferred.height > 0 ? preferred : kInitialSize;
}

void ZelHostView::setAU(ZelUnitConnection* unit) {
  if (unit_) removeListeners();
  removeEditor();
  runLoop_.cancelAllForTarget(this);
  unit_ = unit;
  std::fill(outgoing_.begin(), outgoing_.end(), kNothingOutstanding);
  std::fill(gestures_.begin(), gestures_.end(), 0);
  std::fill(deliveryPending_.begin(), deliveryPending_.end(), false);
  std::fill(heldDuringGesture_.begin(), heldDuringGesture_.end(), false);
  if (!unit_) return;

  setWantsLayer(true);
  addListeners();

  if (readsBundleConfig_)
    config_ = ZelConfig::configNamed("config",
                                     resourcesDirectory_.empty() ? ZelBundle::resourcesDirectory() : resourcesDirectory_);
  const CGSize size = editorSize();
  if (bounds().size != size) setFrame(CGRectMake(frame().origin.x, frame().origin.y, size.width, size.height));
  auto editor = std::make_unique<ZelGenericUI>(bounds(), config_.get(), &runLoop_);
  editor->setDelegate(this);
  // A unit that meters hands its metering record on to a sketch that meters.
  if (const ZelUnitMeteringResult metering = ZelGetMeteringResult(*unit_); metering.valid) {
    const ZelMeteringFunction function = metering.metering.function;
    editor->setMeteringCallback({reinterpret_cast<void*>(function), metering.metering.context});
  }
  runLoop_.schedule(kSketchDelay, [this] { addSketch(); }, ZelCallKey{this, kAddSketch});
  ui_ = addSubview(std::move(editor));

  observeWindow();
  if (window()) window()->makeFirstResponder(ui_);
  synchronizeUIWithParameterValues();
  ui_->startDeferredDrawerStep();

  std::uint32_t in = 0, out = 0;
  if (ZelUnitStatus s = unit_->getChannelCount(ZelUnitProperty::ChannelsIn, in); s != kZelUnitNoErr) {
    logFailure(109, "in", s);
    in = 0;
  }
  if (ZelUnitStatus s = unit_->getChannelCount(ZelUnitProperty::ChannelsOut, out); s != kZelUnitNoErr) {
    logFailure(110, "out", s);
    out = 0;
  }
  ui_->setChannelsIn(in, out);
  unitZoomChanged();
}

void ZelHostView::removeEditor() {
  if (!ui_) return;
  ui_->setDelegate(nullptr);
  ZelGenericUI* editor = ui_;
  ui_ = nullptr;
  // The editor goes now, while the description it reads still exists.
  editor->removeFromSuperview().reset();
}

void ZelHostView::addSketch() {
  if (ui_ && sketchFactory_) ui_->addSketchWithSubclass(sketchFactory_);
}

void ZelHostView::observeWindow() {
  if (observedWindow_) observedWindow_->setKeyWindowChangedHandler({});
  observedWindow_ = window();
  if (!observedWindow_) return;
  observedWindow_->setKeyWindowChangedHandler([this](bool key) {
    if (key) {
      containingWindowDidBecomeKey();
    } else {
      containingWindowDidResignKey();
    }
  });
  if (observedWindow_->isKeyWindow()) ui_->setHasFocus(true);
}

// ---- The listener.

void ZelHostView::addListeners() {
  if (!unit_ || listening_) return;
  if (ZelUnitStatus s = unit_->createListener(this); s != kZelUnitNoErr) {
    logFailure(172, "AUListenerCreate()", s);
    return;
  }
  listening_ = true;
  for (std::uint32_t pid = 0; pid < count_; ++pid)
    if (ZelUnitStatus s = unit_->addListenerParameter(this, pid); s != kZelUnitNoErr)
      logFailure(176, "AUListenerAddParameter()", s);
}

void ZelHostView::removeListeners() {
  if (!unit_ || !listening_) return;
  listening_ = false;
  for (std::uint32_t pid = 0; pid < count_; ++pid)
    if (ZelUnitStatus s = unit_->removeListenerParameter(this, pid); s != kZelUnitNoErr)
      logFailure(183, "AUListenerRemoveParameter()", s);
  if (ZelUnitStatus s = unit_->disposeListener(this); s != kZelUnitNoErr) logFailure(185, "AUListenerDispose()", s);
}

void ZelHostView::synchronizeUIWithParameterValues() {
  if (!unit_) return;
  for (std::uint32_t pid = 0; pid < count_; ++pid) {
    float value = 0;
    if (ZelUnitStatus s = unit_->getParameter(pid, value); s != kZelUnitNoErr) {
      // Nothing was read: setting it back would overwrite the unit's value.
      logFailure(192, "get", s);
      continue;
    }
    if (ZelUnitStatus s = unit_->setParameter(pid, value, this); s != kZelUnitNoErr) logFailure(193, "set", s);
    if (ZelUnitStatus s = unit_->notifyListeners(pid, this); s != kZelUnitNoErr) logFailure(194, "listen", s);
  }
  std::string name;
  if (unit_->getPresetName(name) == kZelUnitNoErr) lastPreset_ = std::move(name);
  if (ui_) ui_->lastSavedPresetWasNamed(lastPreset_);
}

float ZelHostView::valueForParameterID(std::uint32_t pid) const {
  float value = 0;
  if (!unit_ || unit_->getParameter(pid, value) != kZelUnitNoErr) return 0;
  return value;
}

void ZelHostView::notifyEventType(ZelUnitGesture gesture, std::uint32_t pid) {
  if (unit_ && pid < count_) unit_->postGesture(gesture, pid, this);
}

void ZelHostView::requestPresetNamed(const std::string& name) {
  if (ui_) ui_->requestPresetNamed(name);
}

void ZelHostView::unitPresetNameChanged() {
  std::string name;
  if (!unit_ || unit_->getPresetName(name) != kZelUnitNoErr || name == lastPreset_) return;
  lastPreset_ = std::move(name);
  if (!ui_) return;
  ui_->lastSavedPresetWasNamed(lastPreset_);
  // As at connection, the values follow the name, so that the editor checks
  // them against the preset it now shows (nothing is written to the unit).
  for (std::uint32_t pid = 0; pid < count_; ++pid)
    if (ZelUnitStatus s = unit_->notifyListeners(pid, this); s != kZelUnitNoErr) logFailure(194, "listen", s);
}

void ZelHostView::unitZoomChanged() {
  double zoom = 1.0;
  if (!unit_ || unit_->getZoom(zoom) != kZelUnitNoErr) zoom = 1.0;
  applyZoom(zoom);
}

void ZelHostView::applyZoom(double zoom) {
  // Only the editor's steps: a unit's or host's odd value snaps to one.
  zoom_ = ZelEditorHostLink::nearestZoomStep(zoom);
  if (ui_) ui_->setZoom(zoom_);
  if (zoomHandler_) zoomHandler_(zoom_);
}

void ZelHostView::parameterListener(const void* sender, std::uint32_t pid, float value) {
  (void)sender;
  if (pid >= count_) {
    runLoop_.schedule(0, [this, pid, value] { deliver(pid, value); }, ZelCallKey{this, kDeliver});
    return;
  }
  // The echo of the editor's own last change consumes its mark; the value
  // is delivered either way, unless the user is dragging that control.
  if (outgoing_[pid] == value) outgoing_[pid] = kNothingOutstanding;
  pendingValue_[pid] = value;
  if (gestures_[pid] > 0) {
    heldDuringGesture_[pid] = true;
    return;
  }
  scheduleDelivery(pid);
}

// A flood of reports costs one delivery per id and run-loop turn: the
// latest value.
void ZelHostView::scheduleDelivery(std::uint32_t pid) {
  if (deliveryPending_[pid]) return;
  deliveryPending_[pid] = true;
  runLoop_.schedule(
      0,
      [this, pid] {
        deliveryPending_[pid] = false;
        if (gestures_[pid] > 0) return;  // a new gesture began meanwhile
        deliver(pid, pendingValue_[pid]);
      },
      ZelCallKey{this, kDeliver});
}

void ZelHostView::deliver(std::uint32_t pid, float value) {
  if (!ui_) return;
  // Nothing a host sends is trusted: a value that is not a number moves
  // nothing.
  if (std::isnan(value)) return;
  ui_->updateParameterKeyed(pid, editorValueFromUnit(pid, value));
}

// ---- Focus.

void ZelHostView::containingWindowDidResignKey() {
  if (ui_) ui_->setHasFocus(false);
}

void ZelHostView::containingWindowDidBecomeKey() {
  if (!ui_) return;
  ui_->setHasFocus(true);
  if (window()) window()->makeFirstResponder(ui_);
  const ZelCallKey call{this, kEnsureFirstResponder};
  runLoop_.cancel(call);
  runLoop_.schedule(kFocusReassertDelay, [this] { ensureFirstResponder(); }, call);
}

void ZelHostView::ensureFirstResponder() {
  if (ui_ && ui_->hasFocus() && window()) window()->makeFirstResponder(ui_);
}

// ---- What the editor tells the unit.

void ZelHostView::interfaceUpdatedParameterKeyed(ZelGenericUI& ui, std::int64_t key, float value) {
  (void)ui;
  if (!unit_ || key < 0 || key >= static_cast<std::int64_t>(count_)) return;
  const auto pid = static_cast<std::uint32_t>(key);
  const float x = unitValueFromEditor(pid, value);
  outgoing_[pid] = x;
  lastSent_[pid] = x;
  if (ZelUnitStatus s = unit_->setParameter(pid, x, this); s != kZelUnitNoErr) logFailure(242, "native ui set", s);
}

void ZelHostView::interfaceBeganInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) {
  (void)ui;
  if (key >= 0 && key < static_cast<std::int64_t>(count_)) ++gestures_[static_cast<std::size_t>(key)];
  if (key >= 0) notifyEventType(ZelUnitGesture::Begin, static_cast<std::uint32_t>(key));
}

void ZelHostView::interfaceEndedInteractionWithParameterKeyed(ZelGenericUI& ui, std::int64_t key) {
  (void)ui;
  if (key >= 0 && key < static_cast<std::int64_t>(count_)) {
    const auto pid = static_cast<std::uint32_t>(key);
    int& open = gestures_[pid];
    open = std::max(open - 1, 0);
    if (open == 0 && heldDuringGesture_[pid]) {
      heldDuringGesture_[pid] = false;
      pendingValue_[pid] = lastSent_[pid];
      scheduleDelivery(pid);
    }
  }
  if (key >= 0) notifyEventType(ZelUnitGesture::End, static_cast<std::uint32_t>(key));
}

void ZelHostView::interfaceDidUpdateCurrentPresetToValueNamed(ZelGenericUI& ui, const std::string& name) {
  (void)ui;
  lastPreset_ = name;
  if (unit_) unit_->setPresetName(name);
}

void ZelHostView::interfaceDidUpdateInterfacePreference(ZelGenericUI& ui, std::string_view key, double value) {
  (void)ui;
  if (key == "zoom") {
    applyZoom(value);
    if (unit_) unit_->setZoom(zoom_);
    return;
  }
  // Anything else is the theme toggle.
  if (unit_) unit_->setInterfacePreference(value != 0);
}

ZEL_NAMESPACE_END
