// The dashed outline that marks the focused control. The dashes are fitted
// to the outline's length so that the pattern closes without a seam, and
// they move slowly ("PhaseShift", two periods every 2 s) only while the
// border is visible.
//
// Defaults: no fill, line width 2, dash [3, 2], butt caps, round joins,
// opacity 0 (hidden until a control gains focus).
//
// Ownership: a layer, owned by its superlayer (or whoever holds it).
// Threading: main thread only.
#pragma once

#include <vector>

#include "toolkit/core/ZelShapeLayer.h"

ZEL_NAMESPACE_BEGIN

// The dash arithmetic: for an outline of `length` points, N = round(L / 5)
// periods of dash and gap 3 : 2. `periods` is at least 1.
struct ZelDashFit {
  double length = 0;
  long periods = 1;
  double dash = 3, gap = 2;
};
// L = 2·(width + height) − 8·rounding + 2π·rounding.
ZelDashFit ZelFitDashesToOutline(CGSize size, double rounding);

class ZelFocusBorder : public ZelShapeLayer {
 public:
  ZelFocusBorder();

  // Sets the opacity, then moves the dashes only while it is above 0.
  void setOpacity(double opacity) override;
  // Refits the dashes to the current outline; on: adds the endless
  // "PhaseShift" animation of the dash phase; off: removes it.
  void animate(bool on);
  // Stores the rounding, sets the frame and the rounded-rectangle path.
  void updateWithFrame(CGRect frame, double rounding);
  double rounding() const { return rounding_; }

  // The border colour; the stroke uses it at alpha 0.7.
  ZelColor strokeNSColor() const { return strokeNSColor_; }
  void setStrokeNSColor(ZelColor color);

 private:
  double rounding_ = 0;
  ZelColor strokeNSColor_{0, 0, 0, 1};
};

ZEL_NAMESPACE_END
