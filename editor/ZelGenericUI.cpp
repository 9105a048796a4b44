// The editor's assembly: construction of the pieces, regions, the sub-views,
// the registry of controls, the deferred drawer step, the sketch, drawing,
// keys and teardown.
#include "editor/ZelGenericUI.h"

#include <algorithm>
#include <stdexcept>

#include "editor/ZelLogoStamp.h"
#include "editor/ZelPowerBox.h"
#include "editor/ZelPresetBar.h"
#include "editor/ZelPresetsDrawer.h"
#include "toolkit/widgets/ZelSymbolButton.h"
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

constexpr double kSketchFadeDuration = 1.0;
constexpr double kFirstSketchUpdateDelay = 0.01;

ZelRunLoop& requireRunLoop(ZelRunLoop* given) {
  ZelRunLoop* loop = given ? given : ZelRunLoop::current();
  if (!loop) throw std::invalid_argument("ZelGenericUI needs a run loop");
  return *loop;
}

// Runs `method` on a piece of the editor with no argument, for buttons.
template <class Piece>
ZelControl::Action call(Piece* piece, void (Piece::*method)()) {
  return [piece, method](ZelControl&) { (piece->*method)(); };
}

}  // namespace

ZelGenericUI::ZelGenericUI(CGRect frame, const ZelConfig* config, ZelRunLoop* runLoop)
    : ZelView(frame), runLoop_(requireRunLoop(runLoop)) {
  setIdentifier("editor");
  hostLink_ = std::make_unique<ZelEditorHostLink>(*this);
  values_ = std::make_unique<ZelEditorValues>(*this, config, runLoop_);
  rules_ = std::make_unique<ZelInteractionRules>(*this);
  presets_ = std::make_unique<ZelEditorPresets>(*this);
  undo_ = std::make_unique<ZelEditorUndo>(*this);
  keyboard_ = std::make_unique<ZelKeyboardHandler>();
  keyboard_->setConfig(config);
  focus_ = std::make_unique<ZelEditorFocus>(*this);
  drawers_ = std::make_unique<ZelEditorDrawers>(*this, runLoop_);
  setConfig(config);
  themeObservation_ = ZelNotificationCenter::defaultCenter().addObserver(
      kZelUIThemeUpdatedNotification, nullptr, [this](const ZelNotification&) { setNeedsDisplay(); });
  undo_->potentiallySaveToUndoRedoStack();
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
  focus_->clear();
  drawers_->detach();
  // Everything below the editor goes now, while the editor is whole.
  while (!subviews().empty()) subviews().back()->removeFromSuperview();
  sketch_ = nullptr;
  powerBox_ = nullptr;
  presetBar_ = nullptr;
  clumpsView_ = advClumpsView_ = nullptr;
  pendingAdvClumpsView_.reset();
  values_->clear();
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
  ZelEditorHostLink* link = hostLink_.get();
  box->book()->setAction(call(link, &ZelEditorHostLink::bookTapped));
  box->gear()->setAction(call(drawers_.get(), &ZelEditorDrawers::gearTapped));
  box->themeButton()->setAction(call(link, &ZelEditorHostLink::toggleUITheme));
  box->logo()->setAction(call(link, &ZelEditorHostLink::logoTapped));
  box->logo()->setZoomActions({ZelEditorHostLink::kZoomSteps.begin(), ZelEditorHostLink::kZoomSteps.end()},
                              [link] { return link->zoom(); }, [link](double zoom) { link->zoomTo(zoom); });
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
    preset->setTargetAction(presets_.get(), &ZelEditorPresets::presetUpdated);
    preset->setDelegate(hostLink_.get());
  }
  if (bar->save()) bar->save()->setAction(call(presets_.get(), &ZelEditorPresets::presetSaveTapped));
  if (bar->more()) bar->more()->setAction(call(presets_.get(), &ZelEditorPresets::morePresetsTapped));
  ZelKeyboardHandler* keys = keyboard_.get();
  if (bar->undo()) bar->undo()->setAction([keys](ZelControl&) { keys->keyboardShortcutUndo(); });
  if (bar->redo()) bar->redo()->setAction([keys](ZelControl&) { keys->keyboardShortcutRedo(); });
  presetBar_ = addSubview(std::move(bar));
  undo_->syncUndoRedoButtonsToStackState();
}

// ---- Controls.

void ZelGenericUI::addAndRegisterParameterControls() {
  if (registered_) return;
  registered_ = true;
  parameterControls_.reserve(values_->memoizedPValues().size());
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
  control.setTargetAction(values_.get(), &ZelEditorValues::handleParameterControlUpdated);
  control.setDelegate(hostLink_.get());
}

ZelParameterControl* ZelGenericUI::parameterControlWithCodename(std::string_view name) const {
  for (ZelParameterControl* control : parameterControls_)
    if (control->parameter() && control->parameter()->codesafeName == name) return control;
  return nullptr;
}

// ---- The deferred drawer step.

void ZelGenericUI::startDeferredDrawerStep() {
  const ZelCallKey key{this, "deferredDrawerStep"};
  runLoop_.cancel(key);
  runLoop_.schedule(kDrawerStepDelay, [this] { runDeferredDrawerStep(); }, key);
}

void ZelGenericUI::runDeferredDrawerStep() {
  if (window()) window()->makeFirstResponder(this);
  drawers_->addAdvancedControlsDrawer(std::move(pendingAdvClumpsView_));
  drawers_->addPresetDrawer();
}

// ---- Channel layouts and the sketch.

void ZelGenericUI::setChannelsIn(std::uint32_t channelsIn, std::uint32_t channelsOut) {
  channelsIn_ = channelsIn, channelsOut_ = channelsOut;
  rules_->setChannelsIn(channelsIn, channelsOut);
  if (sketch_) sketch_->setChannels(channelsIn, channelsOut);
}

void ZelGenericUI::addSketchWithSubclass(const ZelSketchFactory& factory) {
  if (sketch_ || !factory || !config_ || !powerBox_) return;
  std::unique_ptr<ZelParameterSketch> made = factory(powerBox_->sketchArea(), *config_);
  if (!made) return;
  made->setPowerbox(powerBox_);
  made->setMeteringCallback(meteringCallback_);
  if (channelsOut_ > 0) made->setChannels(channelsIn_, channelsOut_);
  made->setAlphaValue(0);
  sketch_ = powerBox_->addSubview(std::move(made));
  sketch_->animateAlphaValue(1.0, kSketchFadeDuration);
  const ZelCallKey key{this, "sendMemoizedPValuesToSketch"};
  runLoop_.cancel(key);
  ZelEditorValues* values = values_.get();
  runLoop_.schedule(kFirstSketchUpdateDelay, [values] { values->sendMemoizedPValuesToSketch(); }, key);
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
