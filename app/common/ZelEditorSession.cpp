#include "app/common/ZelEditorSession.h"

#include "model/ZelConfig.h"
#include "host/ZelHostView.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr CGSize kDefaultEditorSize{480, 380};

}  // namespace

ZelEditorSession::ZelEditorSession(ZelWindow& window, std::unique_ptr<ZelConfig> config)
    : window_(window),
      config_(std::move(config)),
      unit_(std::make_unique<ZelStandInUnit>(window.runLoop(), *config_)),
      sketchFactory_(ZelHostView::productSketchFactory()) {}

ZelEditorSession::~ZelEditorSession() {
  close();
  window_.setKeyWindowChangedHandler({});
}

CGSize ZelEditorSession::editorSizeFor(const ZelConfig& config) {
  const CGSize size = config.preferredSize();
  return size.width > 0 && size.height > 0 ? size : kDefaultEditorSize;
}

void ZelEditorSession::open() {
  if (editor_) return;
  const CGSize size = editorSizeFor(*config_);
  window_.setContentSize(size);
  auto made = std::make_unique<ZelGenericUI>(CGRectMake(0, 0, size.width, size.height), config_.get(),
                                             &window_.runLoop());
  editor_ = made.get();
  unit_->connect(editor_);
  editor_->setDelegate(unit_.get());
  window_.runLoop().schedule(kSketchDelay, [this] { addSketch(); }, ZelCallKey{this, "addSketch"});
  window_.setContentView(std::move(made));
  window_.setKeyWindowChangedHandler([this](bool key) { windowKeyDidChange(key); });
  if (window_.isKeyWindow()) editor_->setHasFocus(true);
  window_.makeFirstResponder(editor_);
  unit_->synchronize();
  if (!unit_->lastPreset().empty()) editor_->lastSavedPresetWasNamed(unit_->lastPreset());
  editor_->startDeferredDrawerStep();
  editor_->setChannelsIn(unit_->channelsIn(), unit_->channelsOut());
}

void ZelEditorSession::close() {
  window_.runLoop().cancelAllForTarget(this);
  unit_->connect(nullptr);
  if (!editor_) return;
  editor_->setDelegate(nullptr);
  editor_ = nullptr;
  // The old editor goes now, while the description it reads still exists.
  window_.setContentView(std::make_unique<ZelView>());
}

void ZelEditorSession::reload(std::unique_ptr<ZelConfig> config) {
  const std::map<std::string, float> byName = unit_->valuesByCodeName(*config_);
  close();
  config_ = std::move(config);
  unit_->adoptValues(*config_, byName);
  open();
}

void ZelEditorSession::addSketch() {
  if (editor_ && sketchFactory_) editor_->addSketchWithSubclass(sketchFactory_);
}

// ---- Focus: the window's key state is the editor's focus.

void ZelEditorSession::windowKeyDidChange(bool key) {
  if (!editor_) return;
  editor_->setHasFocus(key);
  if (!key) return;
  window_.makeFirstResponder(editor_);
  const ZelCallKey call{this, "ensureFirstResponder"};
  window_.runLoop().cancel(call);
  window_.runLoop().schedule(kFocusReassertDelay, [this] { ensureFirstResponder(); }, call);
}

void ZelEditorSession::ensureFirstResponder() {
  if (editor_ && editor_->hasFocus()) window_.makeFirstResponder(editor_);
}

ZEL_NAMESPACE_END
