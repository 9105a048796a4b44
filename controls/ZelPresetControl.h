// The preset selector of the preset bar: the current preset's name between
// a left and a right chevron. The chevrons step to the previous and next
// preset (wrapping, as the preset parameter steps) and report the change; a
// click on the name asks the delegate to show the presets
// (floatControlDidTapMeaninglessly). When the settings differ from the
// chosen preset the preset bar marks the control `dirty`: the name turns
// italic and a dot follows it.
//
// Ownership: the parameter (normally the configuration's ZelPresets) is not
// owned. Threading: main thread only.
#pragma once

#include <string>

#include "controls/ZelFloatControl.h"

ZEL_NAMESPACE_BEGIN

class ZelPresetControl : public ZelFloatControl {
 public:
  ZelPresetControl(CGRect frame, const ZelParameter* parameter);
  ~ZelPresetControl() override;

  // The name shown for the current value: the preset's name at the value's
  // whole part, or the value's text for a parameter that holds no presets.
  std::string presetName() const;

  bool dirty() const { return dirty_; }
  void setDirty(bool dirty);

  // ---- ZelFloatControl.
  void setFloatValue(float value) override;
  void setHighlit(bool highlit) override;
  void setDimmed(bool dimmed) override;
  void setPreventInteraction(bool prevent) override;

  // ---- View.
  void setFrame(CGRect frame) override;
  void drawRect(ZelGraphicsContext& ctx, CGRect dirtyRect) override;

  // The parts, in bounds coordinates.
  CGRect previousRect() const;
  CGRect nextRect() const;
  CGRect nameRect() const;

 protected:
  void handleMouseDownWithEvent(const ZelEvent& event, ZelGranularities granularities) override;
  void handleMouseUpWithEvent(const ZelEvent& event, ZelGranularities granularities) override;

 private:
  enum class Part { None, Previous, Next, Name };
  void stepPreset(bool forward);
  void placeFocusBorder();
  void drawChevron(ZelGraphicsContext& ctx, const char* glyph, CGRect rect, bool pressed, ZelColor color,
                   ZelColor pressedColor);

  bool dirty_ = false;
  Part pressed_ = Part::None;
};

ZEL_NAMESPACE_END
