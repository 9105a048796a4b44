// The controls the editor's golden pictures do not show (other slider
// styles, minus infinity, the note slider, horizontal sliders and toggles,
// the power switch off, a dirty preset) drawn for real (cairo, offscreen) in both themes at
// scale 1 and 2: nothing crashes and every control puts ink on its area.
// With ZEL_CONTROLS_PNG_DIR set the pictures are also written there, to be
// looked at.
#ifdef ZEL_TEST_HAVE_CAIRO

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "PrimaryTestSupport.h"
#include "controls/ZelPresetControl.h"
#include "controls/ZelPrimaryControls.h"
#include "controls/ZelVerticalSlider.h"
#include "theme/ZelUITheme.h"
#include "toolkit/cairo/ZelOffscreenWindowHost.h"

using namespace zel;
using namespace zel::testing;

namespace {

// The editor's backdrop: the theme's texture.
class Backdrop : public ZelView {
 public:
  using ZelView::ZelView;
  void drawRect(ZelGraphicsContext& ctx, CGRect) override {
    const ZelUITheme& theme = *ZelUITheme::theme();
    ctx.setFillColor(theme.backgroundColor());
    ctx.fillRect(bounds());
    theme.backgroundPattern().setAsFill(ctx);
    ctx.fillRect(bounds());
  }
};

struct Entry {
  std::unique_ptr<ZelParameter> parameter;
  CGRect frame;
  float value;
  ZelFloatControl* control = nullptr;
};

ZelPlist::Dictionary Keys(std::initializer_list<std::pair<const std::string, ZelPlist>> keys) { return keys; }

std::vector<Entry> GalleryEntries() {
  std::vector<Entry> e;
  auto percent = [](const char* style, const char* colour) {
    return Param(Keys({{"controlStyle", Str(style)}, {"color", Str(colour)}, {"formatString", Str("%0.1f")},
                       {"tickmarks", Numbers({0, 25, 50, 75, 100})},
                       {"minorTickmarks", Numbers({10, 20, 30, 40, 60, 70, 80, 90})},
                       {"cueValues", Numbers({0, 25, 50, 75, 100})}}));
  };
  e.push_back({percent("Default", "#D9822B"), CGRectMake(10, 150, 65, 230), 62});
  e.push_back({FrequencyParam(Keys({{"controlStyle", Str("Pilled")}, {"color", Str("#2B9ED9")},
                                    {"tickmarks", Numbers({100, 1000, 10000})},
                                    {"minorTickmarks", Numbers({30, 50, 70, 200, 300, 500, 700, 2000, 3000, 5000, 7000})},
                                    {"cueValues", Numbers({50, 100, 200, 500, 1000, 2000, 5000, 10000})}})),
               CGRectMake(85, 150, 65, 230), 1200});
  e.push_back({Param(Keys({{"controlStyle", Str("Filled")}, {"color", Str("#4E6FD9")}, {"unit", Str("Decibels")},
                           {"minValue", Num(-24)}, {"maxValue", Num(24)}, {"formatString", Str("%0.1f")},
                           {"tickmarks", Numbers({-24, -12, 0, 12, 24})}, {"minorTickmarks", Numbers({-18, -6, 6, 18})},
                           {"cueValues", Numbers({-24, -12, -6, 0, 6, 12, 24})}})),
               CGRectMake(160, 150, 65, 230), -7.5f});
  e.push_back({percent("Shadowed", "#C8463C"), CGRectMake(235, 150, 65, 230), 30});
  // The description's default colour (black), at minus infinity.
  e.push_back({Param(Keys({{"unit", Str("Decibels")}, {"minValue", Num(-96)}, {"maxValue", Num(0)},
                           {"showsNegativeInfinity", ZelPlist::boolean(true)}, {"formatString", Str("%0.1f")},
                           {"tickmarks", Numbers({-96, -72, -48, -24, 0})}, {"cueValues", Numbers({-72, -48, -24, 0})}})),
               CGRectMake(310, 150, 65, 230), -96});
  e.push_back({Param(Keys({{"controlType", Str("NoteSlider")}, {"unit", Str("Note")}, {"maxValue", Num(127)},
                           {"color", Str("#8A5CC2")}, {"cueValues", Numbers({0, 36, 60, 96, 127})},
                           {"tickmarks", Numbers({0, 12, 24, 36, 48, 60, 72, 84, 96, 108, 120})}})),
               CGRectMake(385, 150, 65, 230), 61});
  e.push_back({percent("Default", "#3FA66A"), CGRectMake(460, 330, 190, 40), 45});
  e.back().parameter = Param(Keys({{"horizontal", ZelPlist::boolean(true)}, {"color", Str("#3FA66A")},
                                   {"formatString", Str("%0.0f")}, {"tickmarks", Numbers({0, 50, 100})},
                                   {"cueValues", Numbers({0, 50, 100})}}));
  e.push_back({BooleanParam(Keys({{"codesafeName", Str("MasterOnOff")}, {"color", Str("#D9822B")}})),
               CGRectMake(460, 140, 58, 56), 1});
  e.push_back({BooleanParam(Keys({{"codesafeName", Str("MasterOnOff")}, {"color", Str("#D9822B")}})),
               CGRectMake(530, 140, 58, 56), 0});
  e.push_back({Param(Keys({{"controlType", Str("Toggle")}, {"unit", Str("Indexed")}, {"maxValue", Num(1)},
                           {"stringValues", Strings({"Off", "On"})}, {"color", Str("#D9822B")}})),
               CGRectMake(460, 95, 120, 30), 0});
  e.push_back({PresetsParam(), CGRectMake(260, 20, 240, 30), 2});
  return e;
}

struct Gallery {
  explicit Gallery(double scale) : host(window, scale) {
    auto backdrop = std::make_unique<Backdrop>(CGRectMake(0, 0, 670, 400));
    window.setContentView(std::move(backdrop));
    entries = GalleryEntries();
    for (auto& entry : entries) {
      auto control = ZelMakePrimaryControl(entry.frame, entry.parameter.get());
      control->setFloatValue(entry.value);
      entry.control = window.contentView()->addSubview(std::move(control));
    }
    // States worth seeing: focus, a typed number, dimmed, disabled, dirty.
    entries[0].control->setHighlit(true);
    auto* typed = dynamic_cast<ZelVerticalSlider*>(entries[3].control);
    typed->setDisplayingTransientBufferValue(true);
    typed->displayTransientBufferValue(ZelVerticalSlider::formattedReadoutStringForValue("42.5", "", 14));
    entries[4].control->setDimmed(true);
    entries[5].control->setPreventInteraction(true);
    dynamic_cast<ZelPresetControl*>(entries.back().control)->setDirty(true);
    ZelRunVirtualTime(loop, clock, 0.5);  // the focus border has faded in
  }
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {670, 400}};
  ZelOffscreenWindowHost host;
  std::vector<Entry> entries;
};

// The current theme for the scope of a test (the theme is process-wide).
struct ThemeScope {
  explicit ThemeScope(bool dark) {
    if ((ZelUITheme::theme() == ZelUITheme::dark()) != dark) ZelUITheme::toggleThemeForWindow(nullptr), toggled = true;
  }
  ~ThemeScope() {
    if (toggled) ZelUITheme::toggleThemeForWindow(nullptr);
  }
  bool toggled = false;
};

int DifferingPixels(const ZelImage& a, const ZelImage& b, CGRect area, double scale) {
  int n = 0, height = a.height();
  int x0 = static_cast<int>(area.origin.x * scale), x1 = static_cast<int>((area.origin.x + area.size.width) * scale);
  int y0 = static_cast<int>(area.origin.y * scale), y1 = static_cast<int>((area.origin.y + area.size.height) * scale);
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) n += a.pixel(x, height - 1 - y) != b.pixel(x, height - 1 - y);
  }
  return n;
}

}  // namespace

class ControlGallery : public ::testing::TestWithParam<std::tuple<bool, double>> {};

TEST_P(ControlGallery, EveryControlDrawsInBothThemesAndScales) {
  auto [dark, scale] = GetParam();
  ThemeScope theme(dark);
  Gallery gallery(scale);
  gallery.host.renderAll();
  auto withControls = gallery.host.snapshot();
  if (const char* dir = std::getenv("ZEL_CONTROLS_PNG_DIR")) {
    std::string name = std::string(dir) + "/controls-" + (dark ? "dark" : "light") + "@" +
                       std::to_string(static_cast<int>(scale)) + "x.png";
    EXPECT_TRUE(gallery.host.writePNG(name));
  }
  for (auto& entry : gallery.entries) entry.control->setHidden(true);
  gallery.host.renderAll();
  auto backdropOnly = gallery.host.snapshot();
  for (const auto& entry : gallery.entries) {
    int ink = DifferingPixels(*withControls, *backdropOnly, entry.frame, scale);
    EXPECT_GT(ink, 20 * scale * scale) << entry.parameter->name << " at " << entry.frame.origin.x << ","
                                       << entry.frame.origin.y;
  }
}

INSTANTIATE_TEST_SUITE_P(ThemesAndScales, ControlGallery,
                         ::testing::Combine(::testing::Bool(), ::testing::Values(1.0, 2.0)));

#endif  // ZEL_TEST_HAVE_CAIRO
