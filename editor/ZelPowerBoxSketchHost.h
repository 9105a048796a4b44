// Lets the parameter sketch see the power box it sits in (its logo stamp
// layer) without the sketch knowing the power box's class.
//
// Ownership: the power box is not owned; the editor keeps this adapter for
// as long as the power box and its sketch live. Threading: main thread only.
#pragma once

#include "editor/ZelPowerBox.h"
#include "sketch/ZelSketchHost.h"

ZEL_NAMESPACE_BEGIN

class ZelPowerBoxSketchHost final : public ZelSketchHost {
 public:
  explicit ZelPowerBoxSketchHost(ZelPowerBox* powerBox) : powerBox_(powerBox) {}
  ~ZelPowerBoxSketchHost() = default;
  ZelLayer* logoStampLayer() const override { return powerBox_ ? powerBox_->logoStampLayer() : nullptr; }

 private:
  ZelPowerBox* powerBox_;
};

ZEL_NAMESPACE_END
