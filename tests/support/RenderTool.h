// What the render tools (zel-render-*) share: the editor's backdrop, the
// product's power box, the stills' file names and the pass through both
// themes. Main thread only, like the views they draw.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "editor/ZelPowerBox.h"
#include "theme/ZelUITheme.h"
#include "model/ZelConfig.h"
#include "toolkit/core/ZelView.h"

namespace zel::render_tool {

// The editor's own backdrop: the texture under everything.
class Backdrop : public ZelView {
 public:
  using ZelView::ZelView;
  void drawRect(ZelGraphicsContext& ctx, CGRect) override {
    ZelUITheme::theme()->backgroundPattern().setAsFill(ctx);
    ctx.fillRect(bounds());
  }
};

// The description's power box (its first PowerBox clump, if any) at `frame`.
// `config` must outlive the box.
inline std::unique_ptr<ZelPowerBox> MakePowerBox(const ZelConfig& config, CGRect frame) {
  const auto power = config.clumpsOfType(ZelClumpType::PowerBox);
  auto box = std::make_unique<ZelPowerBox>(frame, power.empty() ? nullptr : power[0], config.hasAdvancedControls());
  box->setMetadata(&config.metadata());
  return box;
}

// DIR/PREFIX-NAME-THEME@Nx.png
inline std::string StillPath(const std::string& dir, std::string_view prefix, std::string_view name,
                             std::string_view theme, double scale) {
  return dir + "/" + std::string(prefix) + "-" + std::string(name) + "-" + std::string(theme) + "@" +
         std::to_string(static_cast<int>(scale)) + "x.png";
}

// Says on stdout whether the still at `path` was written; returns `ok`.
inline bool ReportStill(const std::string& path, bool ok) {
  std::printf("%s %s\n", ok ? "wrote" : "FAILED", path.c_str());
  return ok;
}

// Calls shoot("light"), then switches the shared theme and calls
// shoot("dark"); true when both calls returned true.
template <class Shoot>
bool InBothThemes(Shoot&& shoot) {
  bool ok = true;
  for (const char* theme : {"light", "dark"}) {
    if (std::string_view(theme) == "dark") ZelUITheme::toggleThemeForWindow(nullptr);
    ok = shoot(theme) && ok;
  }
  return ok;
}

}  // namespace zel::render_tool
