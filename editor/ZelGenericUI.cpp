// The editor's assembly: construction, regions, the sub-views, the registry
// of controls, the deferred drawer step, drawing, keys and teardown.
#include "editor/ZelGenericUI.h"

#include <algorithm>
#include <stdexcept>

#include "editor/ZelLogoStamp.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "editor/ZelPresetsDrawer.h"
#include "toolkit/widgets/ZelSymbolButton.h"
#include "toolkit/foundation/ZelSpeedLim.h"
#include "sketch/ZelParameterSketch.h"
#include "theme/ZelUITheme.h"
#include "editor/containers/ZelClumpView.h"
#include "editor/containers/ZelClumpsView.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr double kPowerBoxWidth = 62;
constexpr double kPresetBarHeight = 30;
constexpr double kAdvancedInset = 14;
constexpr double kDrawerStepDelay = 0.1;

ZelRunLoop& requireRunLoop(ZelRunLoop* given) {
  ZelRunLoop* loop = given ? given : ZelRunLoop::current();
  if (!loop) throw std::invalid_argument("ZelGenericUI needs a run loop");
  return *loop;
}

// Runs `method` on the editor with no argument, for buttons.
ZelControl::Action call(ZelGenericUI* ui, void (ZelGenericUI::*method)()) {
  return [ui, method](ZelControl&) { (ui->*method)(); };
}

}  // namespace

ZelGenericUI::ZelGenericUI(CGRect frame, const ZelConfig* config, ZelRunLoop* runLoop)
    : ZelView(frame), runLoop_(requireRunLoop(runLoop)) {
  setIdentifier("editor");
  sketchSpeedLim_ = std::make_unique<ZelSpeedLim>(runLoop_);
  advFlashLim_ = std::make_unique<ZelSpeedLim>(runLoop_);
  advFlashLim_->setTrailing(false);
  const std::size_t count = config ? static_cast<std::size_t>(std::max<std::int64_t>(0, config->numParameters())) : 0;
  memoizedPValues_.assign(count, 0.0f);
  memoizedPValuesChanged_.assign(count, 0);
  if (config) {
    config->enumerateParameters([this](const ZelParameter& p, const ZelClump&) {
      if (p.pid < 0 || p.pid >= static_cast<std::int64_t>(memoizedPValues_.size())) return;
      memoizedPValues_[static_cast<std::size_t>(p.pid)] = p.initialValue;
      memoizedPValuesChanged_[static_cast<std::size_t>(p.pid)] = 1;
    });
  }
  keyboard_ = std::make_unique<ZelKeyboardHandler>();
  keyboard_->setConfig(config);
  setConfig(config);
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { setNeedsDisplay(); });
  potentiallySaveToUndoRedoStack();
}

ZelGenericUI::~ZelGenericUI() { teardown(); }

void ZelGenericUI::teardown() {
  runLoop_.cancelAllForTarget(this);
  themeObservation_.reset();
  for (ZelParameterControl* control : parameterControls_) {
    control->setDelegate(nullptr);
    control->setAction({});
    control->setTarget(nullptr);
    if (control->superview()) control->removeFromSuperview();
  }
  parameterControls_.clear();
  focusedControl_ = wasFocusedControl_ = nullptr;
  waitingDrawer_ = nullptr;
  for (ZelDrawerView* drawer : {advDrawer_, static_cast<ZelDrawerView*>(presetDrawer_)}) {
    if (!drawer) continue;
    drawer->setDelegate(nullptr);
    drawer->setMiniatureDelegate(nullptr);
  }
  // Everything below the editor goes now, while the editor is whole.
  while (!subviews().empty()) subviews().back()->removeFromSuperview();
  advDrawer_ = nullptr;
  presetDrawer_ = nullptr;
  sketch_ = nullptr;
  powerBox_ = nullptr;
  presetBar_ = nullptr;
  clumpsView_ = advClumpsView_ = nullptr;
  pendingAdvClumpsView_.reset();
  memoizedPValues_.clear();
  memoizedPValuesChanged_.clear();
  keyboard_->setUi(nullptr);
  runLoop_.cancelAllForTarget(this);
}

// ---- Setup.

void ZelGenericUI::setConfig(const ZelConfig* config) {
  if (config_ || !config) return;
  config_ = config;
  computeLayout();
  keyboard_->setUi(this);
  addPowerBox();
  addClumpsView();
  addPresetBar();
  addAndRegisterParameterControls();
}

void ZelGenericUI::computeLayout() {
  const CGRect b = bounds();
  CGRect rest = b;
  CGRectDivide(rest, &layout_.powerBox, &rest, std::min(kPowerBoxWidth, b.size.width), CGRectMaxXEdge);
  CGRectDivide(rest, &layout_.header, &rest, 0, CGRectMaxYEdge);
  CGRectDivide(rest, &layout_.presetBar, &rest, std::min(kPresetBarHeight, rest.size.height), CGRectMinYEdge);
  layout_.clumps = rest;
}

void ZelGenericUI::addPowerBox() {
  if (powerBox_) return;
  const std::vector<const ZelClump*> power = config_->clumpsOfType(ZelClumpType::PowerBox);
  auto box = std::make_unique<ZelPowerBox>(layout_.powerBox, power.empty() ? nullptr : power.front(),
                                           config_->hasAdvancedControls());
  box->setMetadata(&config_->metadata());
  box->book()->setAction(call(this, &ZelGenericUI::bookTapped));
  box->gear()->setAction(call(this, &ZelGenericUI::gearTapped));
  box->themeButton()->setAction(call(this, &ZelGenericUI::toggleUITheme));
  box->logo()->setAction(call(this, &ZelGenericUI::logoTapped));
  box->logo()->setZoomActions({kZoomSteps.begin(), kZoomSteps.end()}, [this] { return zoom_; },
                              [this](double zoom) { zoomTo(zoom); });
  for (ZelControl* c : std::initializer_list<ZelControl*>{box->book(), box->gear(), box->themeButton(), box->logo()})
    c->setTarget(this);
  powerBox_ = addSubview(std::move(box));
}

void ZelGenericUI::addClumpsView() {
  if (clumpsView_) return;
  auto view = std::make_unique<ZelClumpsView>(layout_.clumps, config_);
  view->setInset(config_->metadata().inset);
  view->setDrawOutsideBorder(false);
  view->setLayout(config_->pluginLayoutForBounds(view->bounds()));
  clumpsView_ = addSubview(std::move(view));
}

void ZelGenericUI::addPresetBar() {
  if (presetBar_) return;
  auto bar = std::make_unique<ZelPresetBar>(layout_.presetBar, config_->presets());
  if (ZelParameterControl* preset = bar->presetControl()) {
    preset->setTargetAction(this, &ZelGenericUI::presetUpdated);
    preset->setDelegate(this);
  }
  if (bar->save()) bar->save()->setAction(call(this, &ZelGenericUI::presetSaveTapped));
  if (bar->more()) bar->more()->setAction(call(this, &ZelGenericUI::morePresetsTapped));
  ZelKeyboardHandler* keys = keyboard_.get();
  if (bar->undo()) bar->undo()->setAction([keys](ZelControl&) { keys->keyboardShortcutUndo(); });
  if (bar->redo()) bar->redo()->setAction([keys](ZelControl&) { keys->keyboardShortcutRedo(); });
  presetBar_ = addSubview(std::move(bar));
  syncUndoRedoButtonsToStackState();
}

// ---- Controls.

void ZelGenericUI::addAndRegisterParameterControls() {
  if (registered_) return;
  registered_ = true;
  parameterControls_.reserve(memoizedPValues_.size());
  addClumpViews(*clumpsView_, ZelClumpType::Normal);
  if (config_->hasAdvancedControls()) {
    pendingAdvClumpsView_ = std::make_unique<ZelClumpsView>(clumpsView_->bounds(), config_);
    advClumpsView_ = pendingAdvClumpsView_.get();
    advClumpsView_->setIdentifier("advancedClumps");
    advClumpsView_->setInset(kAdvancedInset);
    advClumpsView_->setDrawOutsideBorder(true);
    advClumpsView_->setLayout(
        config_->advancedLayoutForBounds(CGRectInset(clumpsView_->bounds(), kAdvancedInset, kAdvancedInset)));
    addClumpViews(*advClumpsView_, ZelClumpType::Advanced);
    if (config_->metadata().hasGenericHQMode) moveHQControlIntoAdvancedClumps();
  }
  if (powerBox_) registerParameterControls(*powerBox_, *powerBox_);
}

void ZelGenericUI::addClumpViews(ZelClumpsView& into, ZelClumpType type) {
  config_->enumerateClumpsOfType(type, [&](const ZelClump& clump) {
    const CGRect frame = into.layout() ? into.layout()->frameForIndex(clump.cid) : CGRectZero;
    ZelClumpView* view = into.addSubview(std::make_unique<ZelClumpView>(frame, &clump));
    registerParameterControls(*view, into);
  });
}

void ZelGenericUI::moveHQControlIntoAdvancedClumps() {
  ZelParameterControl* hq = parameterControlWithCodename(config_->metadata().genericHQParameter);
  if (!hq || hq->superview() == advClumpsView_) return;
  std::unique_ptr<ZelView> detached = hq->removeFromSuperview();
  if (detached) advClumpsView_->addSubview(std::move(detached));
}

// A displaced control stands in the coordinates of `displacedInto` (the
// clumps view that holds the clump).
void ZelGenericUI::registerParameterControls(ZelClumpView& clumpView, ZelView& displacedInto) {
  for (ZelParameterControl* control : clumpView.parameterControls()) {
    if (auto displaced = clumpView.takeDisplacedControl(control)) displacedInto.addSubview(std::move(displaced));
    registerParameterControl(*control);
  }
  // The editor's registry is the one list from now on.
  clumpView.clearParameterControls();
}

void ZelGenericUI::registerParameterControl(ZelParameterControl& control) {
  parameterControls_.push_back(&control);
  control.setTargetAction(this, &ZelGenericUI::handleParameterControlUpdated);
  control.setDelegate(this);
}

ZelParameterControl* ZelGenericUI::parameterControlWithCodename(std::string_view name) const {
  for (ZelParameterControl* control : parameterControls_)
    if (control->parameter() && control->parameter()->codesafeName == name) return control;
  return nullptr;
}

bool ZelGenericUI::isInClumpOfType(const ZelParameterControl& control, ZelClumpType type) const {
  const ZelParameter* p = control.parameter();
  const ZelClumpType actual = p && p->clump ? p->clump->clumpType : ZelClumpType::Normal;
  return actual == type;
}

// ---- The deferred drawer step.

void ZelGenericUI::startDeferredDrawerStep() {
  const ZelCallKey key{this, "deferredDrawerStep"};
  runLoop_.cancel(key);
  runLoop_.schedule(kDrawerStepDelay, [this] { runDeferredDrawerStep(); }, key);
}

void ZelGenericUI::runDeferredDrawerStep() {
  if (window()) window()->makeFirstResponder(this);
  addAdvancedControlsDrawer();
  addPresetDrawer();
}

// Drawers go just below the preset bar: a drawer rising from below comes
// out from behind the bar.
template <class Drawer>
Drawer* ZelGenericUI::insertDrawer(std::unique_ptr<Drawer> drawer) {
  Drawer* raw = drawer.get();
  std::size_t index = subviews().size();
  for (std::size_t i = 0; i < subviews().size(); ++i)
    if (subviews()[i].get() == presetBar_) index = i;
  insertSubview(std::move(drawer), index);
  return raw;
}

void ZelGenericUI::addAdvancedControlsDrawer() {
  if (advDrawer_ || !pendingAdvClumpsView_ || !config_ || !config_->hasAdvancedControls()) return;
  auto drawer = std::make_unique<ZelDrawerView>(clumpsView_->frame(), config_, false);
  drawer->setIdentifier("advancedDrawer");
  drawer->contentView()->addSubview(std::move(pendingAdvClumpsView_));
  drawer->setToggle(powerBox_ ? powerBox_->gear() : nullptr);
  drawer->setDelegate(this);
  drawer->setMiniatureDelegate(this);
  advDrawer_ = insertDrawer(std::move(drawer));
}

void ZelGenericUI::addPresetDrawer() {
  if (presetDrawer_ || !config_ || !config_->presets() || !presetBar_) return;
  auto drawer = std::make_unique<ZelPresetsDrawer>(layout_.clumps, config_, false);
  drawer->setIdentifier("presetsDrawer");
  drawer->setToggle(presetBar_->more());
  drawer->setPresetControl(presetBar_->presetControl());
  drawer->setDelegate(this);
  drawer->setMiniatureDelegate(this);
  drawer->setAnimatesVisibility(false);
  if (presetBar_->presetControl()) drawer->presetSelected(presetBar_->presetControl()->floatValue());
  presetDrawer_ = insertDrawer(std::move(drawer));
}

// ---- Drawing and keys.

void ZelGenericUI::drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) {
  ZelView::drawRect(ctx, dirtyRect);
  ZelUITheme::theme()->backgroundPattern().setAsFill(ctx);
  ctx.fillRect(bounds());
}

bool ZelGenericUI::keyDown(const ZelEvent& event) {
  if (keyboard_->handleKeyDownEvent(event)) return true;
  return ZelView::keyDown(event);
}

bool ZelGenericUI::performKeyEquivalent(const ZelEvent& event) {
  if (keyboard_->handlePerformKeyEquivalent(event)) return true;
  return ZelView::performKeyEquivalent(event);
}

bool ZelGenericUI::flagsChanged(const ZelEvent& event) {
  keyboard_->handleFlagsChanged(event, window());
  return ZelView::flagsChanged(event);
}

ZEL_NAMESPACE_END
