// The typed-number display the vertical slider and the number control share:
// it keeps the styled text being typed and whether it is shown, and tells
// its control to redraw when either changes. The control draws the text in
// place of its value readout while displayingTransientBufferValue() is true.
//
// Threading: main thread only.
#pragma once

#include "controls/ZelFloatControl.h"

ZEL_NAMESPACE_BEGIN

class ZelTransientReadout : public ZelTransientBufferDisplay {
 public:
  void displayTransientBufferValue(const ZelStyledString& string) override {
    transient_ = string;
    transientReadoutChanged();
  }
  void discardTransientBufferValue() override {
    displaying_ = false;
    transient_ = {};
    transientReadoutChanged();
  }
  bool displayingTransientBufferValue() const override { return displaying_; }
  void setDisplayingTransientBufferValue(bool displaying) override {
    displaying_ = displaying;
    transientReadoutChanged();
  }
  // The text being typed (empty text before the first character).
  const ZelStyledString& transientString() const { return transient_; }

 protected:
  ~ZelTransientReadout() = default;
  // The readout must be drawn again.
  virtual void transientReadoutChanged() = 0;

 private:
  bool displaying_ = false;
  ZelStyledString transient_;
};

ZEL_NAMESPACE_END
