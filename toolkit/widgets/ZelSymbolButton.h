// A round icon button showing one glyph of the theme's icon font. It can
// show a selected spotlight (a dark disc behind the glyph), pulse a warning
// light (a light disc) and flash the spotlight briefly. The action is sent
// on mouse-down, with a short pulse of the glyph; a disabled button ignores
// clicks and shows its glyph at 20 % opacity.
//
// Layers (the view's root layer masks to bounds), bottom to top: warning
// light, spotlight, glyph. The accessors return layers owned by the root
// layer; they live as long as the button.
//
// Ownership: the button is owned by its superview; its action and target as
// ZelControl. Threading: main thread only.
#pragma once

#include <string>

#include "toolkit/core/ZelAnimation.h"
#include "toolkit/core/ZelControl.h"
#include "toolkit/core/ZelTextLayer.h"
#include "toolkit/foundation/ZelColor.h"

ZEL_NAMESPACE_BEGIN

// The short "transform.scale" pulse controls give a layer when clicked:
// 1.0 to 1.2 over 0.09 s, ease-out, auto-reversing, removed on completion.
ZelBasicAnimation ZelStandardPulseAnimation();

class ZelSymbolButton : public ZelControl {
 public:
  // `glyph` is UTF-8 (usually one of ZelIconGlyph's constants), drawn in
  // the icon face at `size` points in `color`.
  ZelSymbolButton(CGRect frame, std::string glyph, double size, ZelColor color);
  ~ZelSymbolButton() override;

  // Shows another glyph (or colour): the glyph layer is re-sized to the
  // text and centred in the bounds on whole points.
  void resetGlyph(std::string glyph, ZelColor color);

  ZelTextLayer* glyph() const { return glyph_; }
  ZelLayer* spotlight() const { return spotlight_; }
  ZelLayer* warningLight() const { return warningLight_; }
  const std::string& glyphString() const { return glyphString_; }
  double size() const { return size_; }
  ZelColor color() const { return color_; }

  // Glyph opacity 1 when enabled, 0.2 when disabled.
  void setEnabled(bool enabled) override;
  bool isSelected() const { return selected_; }
  // Shows (1) or hides (0) the spotlight.
  void setSelected(bool selected);
  bool isWarning() const { return warning_; }
  // Shows or hides the warning light; a change of value also pulses it
  // (key "pulse": scale 1.0 to 1.2, 0.33 s, ease-out, auto-reversing, 6
  // repeats). Setting the value it already has changes nothing.
  void setWarning(bool warning);
  // Flashes the spotlight once (key "flash": opacity 0 to 1 over 0.125 s,
  // ease-out, auto-reversing); a flash replaces a running one.
  void flash();

  void mouseDown(const ZelEvent& event) override;
  void viewDidMoveToWindow() override;

 private:
  ZelTextLayer* glyph_ = nullptr;
  ZelLayer* spotlight_ = nullptr;
  ZelLayer* warningLight_ = nullptr;
  std::string glyphString_;
  double size_ = 0;
  ZelColor color_;
  bool selected_ = false;
  bool warning_ = false;
};

ZEL_NAMESPACE_END
