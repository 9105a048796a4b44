// The scripted driver's backend: the offscreen host draws (and keeps the
// in-memory clipboard), while addresses the editor opens go to the driver's
// own opener, which prints them as they happen.
//
// Ownership: attaches itself to the window in place of the offscreen host
// and detaches in its destructor; the window, the offscreen host and the
// opener must outlive it. Threading: main thread only.
#pragma once

#include <functional>
#include <string>

#include "toolkit/cairo/ZelOffscreenWindowHost.h"
#include "toolkit/core/ZelPlatformWindow.h"
#include "toolkit/core/ZelURLOpener.h"
#include "toolkit/core/ZelWindow.h"

ZEL_NAMESPACE_BEGIN

// Hands every address to a callback (the driver prints "open ...").
class ZelDriveURLOpener final : public ZelURLOpener {
 public:
  explicit ZelDriveURLOpener(std::function<void(const std::string&)> opened) : opened_(std::move(opened)) {}
  bool open(const std::string& url) override {
    if (opened_) opened_(url);
    return true;
  }

 private:
  std::function<void(const std::string&)> opened_;
};

class ZelDrivePlatformWindow final : public ZelPlatformWindow {
 public:
  ZelDrivePlatformWindow(ZelWindow& window, ZelOffscreenWindowHost& host, ZelURLOpener& opener)
      : window_(window), host_(host), opener_(opener) {
    window_.setPlatformWindow(this);
  }
  ~ZelDrivePlatformWindow() override {
    if (window_.platformWindow() == this) window_.setPlatformWindow(nullptr);
  }
  ZelDrivePlatformWindow(const ZelDrivePlatformWindow&) = delete;
  ZelDrivePlatformWindow& operator=(const ZelDrivePlatformWindow&) = delete;

  void setNeedsRedraw() override { host_.setNeedsRedraw(); }
  double backingScale() const override { return host_.backingScale(); }
  double refreshRate() const override { return host_.refreshRate(); }
  ZelPasteboard& pasteboard() override { return host_.pasteboard(); }
  ZelURLOpener& urlOpener() override { return opener_; }
  void contentSizeDidChange(CGSize size) override { host_.contentSizeDidChange(size); }

 private:
  ZelWindow& window_;
  ZelOffscreenWindowHost& host_;
  ZelURLOpener& opener_;
};

ZEL_NAMESPACE_END
