// The drawers: visibility with the delegate's consent, the hide that waits
// for the transition, miniatures, and the presets list.
#include <gtest/gtest.h>

#include "ContainersTestSupport.h"
#include "controls/ZelParameterControl.h"
#include "editor/ZelDrawerView.h"
#include "editor/ZelPresetListView.h"
#include "editor/ZelPresetsDrawer.h"
#include "toolkit/core/ZelWindow.h"

namespace zel::containers_test {
namespace {

struct Host : ZelDrawerViewDelegate, ZelDrawerMiniatureDelegate {
  bool allow = true;
  double fade = 0;  // a "visible" animation of this length is added when > 0
  std::vector<std::string> log;

  bool canDrawerViewToggleVisibilityToVisibility(ZelDrawerView& drawer, bool visible) override {
    log.push_back(std::string("can ") + (visible ? "1" : "0"));
    if (allow && fade > 0) {
      ZelBasicAnimation a("opacity");
      a.setFromValue(visible ? 0.0 : 1.0);
      a.setToValue(visible ? 1.0 : 0.0);
      a.setDuration(fade);
      drawer.layer()->addAnimation(a, "visible");
    }
    return allow;
  }
  void drawerViewDidToggleVisibility(ZelDrawerView&, bool visible) override {
    log.push_back(std::string("did ") + (visible ? "1" : "0"));
  }
  void drawerDidTapMiniature(ZelDrawerView&, int which) override { log.push_back("tap " + std::to_string(which)); }
};

// A window on a virtual clock holding one view at (0, 30).
struct Stage {
  ZelVirtualClock clock;
  ZelRunLoop loop{clock};
  ZelWindow window{loop, {480, 380}};

  Stage() { window.setKeyWindow(true); }
  template <class V>
  V* add(std::unique_ptr<V> view) { return window.contentView()->addSubview(std::move(view)); }
  void run(double seconds) { ZelRunVirtualTime(loop, clock, clock.now() + seconds); }
  void click(CGPoint p) {
    window.sendEvent(ZelEvent::mouse(ZelEventType::LeftMouseDown, p));
    window.sendEvent(ZelEvent::mouse(ZelEventType::LeftMouseUp, p));
  }
  static CGPoint centre(const ZelView& v) {
    return v.convertPointToView({CGRectGetMidX(v.bounds()), CGRectGetMidY(v.bounds())}, nullptr);
  }
};

TEST(DrawerView, VisibilityNeedsTheDelegatesConsent) {
  Stage stage;
  Host host;
  auto* drawer = stage.add(std::make_unique<ZelDrawerView>(CGRectMake(0, 30, 418, 350), nullptr, false));
  drawer->setDelegate(&host);
  EXPECT_FALSE(drawer->isVisible());
  EXPECT_FALSE(drawer->isPresented());
  EXPECT_EQ(stage.window.hitTest({200, 200}), stage.window.contentView());

  host.allow = false;
  EXPECT_FALSE(drawer->toggleVisibility());
  EXPECT_FALSE(drawer->isVisible());
  EXPECT_FALSE(drawer->isPresented());

  host.allow = true;
  EXPECT_TRUE(drawer->toggleVisibility());
  EXPECT_TRUE(drawer->isVisible());
  EXPECT_TRUE(drawer->isPresented());
  EXPECT_EQ(host.log, (std::vector<std::string>{"can 1", "can 1", "did 1"}));
  EXPECT_TRUE(stage.window.hitTest({200, 200})->isDescendantOf(drawer));
}

TEST(DrawerView, HidingWaitsForTheTransition) {
  Stage stage;
  Host host;
  host.fade = 0.5;
  auto* drawer = stage.add(std::make_unique<ZelDrawerView>(CGRectMake(0, 30, 418, 350), nullptr, true));
  drawer->setDelegate(&host);

  ASSERT_TRUE(drawer->toggleVisibility());
  EXPECT_FALSE(drawer->isVisible());
  EXPECT_EQ(stage.window.hitTest({200, 200}), stage.window.contentView());  // no clicks while leaving
  stage.run(0.45);
  EXPECT_TRUE(drawer->isPresented());
  stage.run(0.1);
  EXPECT_FALSE(drawer->isPresented());

  // Shown again before the hide: the pending hide is dropped.
  drawer->toggleVisibility();
  drawer->toggleVisibility();
  drawer->toggleVisibility();
  stage.run(1);
  EXPECT_TRUE(drawer->isVisible());
  EXPECT_TRUE(drawer->isPresented());
}

TEST(DrawerView, WithoutADelegateItFadesItselfOrHidesAtOnce) {
  Stage stage;
  auto* fading = stage.add(std::make_unique<ZelDrawerView>(CGRectMake(0, 30, 418, 350), nullptr, true));
  fading->toggleVisibility();
  const ZelBasicAnimation* fade = fading->layer()->animationForKey("visible");
  ASSERT_NE(fade, nullptr);
  EXPECT_DOUBLE_EQ(fade->duration(), ZelDrawerView::kOwnFadeDuration);
  EXPECT_TRUE(fading->isPresented());
  stage.run(0.3);
  EXPECT_FALSE(fading->isPresented());

  auto* abrupt = stage.add(std::make_unique<ZelDrawerView>(CGRectMake(0, 30, 418, 350), nullptr, true));
  abrupt->setAnimatesVisibility(false);
  abrupt->toggleVisibility();
  EXPECT_EQ(abrupt->layer()->animationForKey("visible"), nullptr);
  EXPECT_FALSE(abrupt->isPresented());
}

TEST(DrawerView, MiniaturesReportTheirTap) {
  Stage stage;
  Host host;
  auto config = ProductConfig();
  auto* drawer = stage.add(std::make_unique<ZelPresetsDrawer>(CGRectMake(0, 30, 418, 350), config.get(), true));
  drawer->setMiniatureDelegate(&host);
  ASSERT_NE(drawer->miniature(ZelDrawerView::kMiniatureHideAll), nullptr);
  ASSERT_NE(drawer->miniature(ZelDrawerView::kMiniatureToggleAdvanced), nullptr);
  stage.click(Stage::centre(*drawer->miniature(ZelDrawerView::kMiniatureToggleAdvanced)));
  stage.click(Stage::centre(*drawer->miniature(ZelDrawerView::kMiniatureHideAll)));
  EXPECT_EQ(host.log, (std::vector<std::string>{"tap 2", "tap 1"}));

  // Without advanced controls there is nothing to switch to.
  auto plain = Config({}, {}, {{"presets", D({{"stringValues", A({S("One")})}})}});

  ZelPresetsDrawer lone(CGRectMake(0, 0, 300, 200), plain.get(), true);
  EXPECT_EQ(lone.miniature(ZelDrawerView::kMiniatureToggleAdvanced), nullptr);
}

// A preset parameter over these names, stepping by whole presets.
Dict PresetRecord(Array names) {
  const double last = static_cast<double>(names.size()) - 1;
  return {{"stringValues", A(std::move(names))}, {"controlType", S("Preset")}, {"unit", S("Indexed")},
          {"minValue", N(0)}, {"maxValue", N(last)}, {"granularity", N(1)}, {"fineGranularity", N(1)}};
}

// The preset drawer over the product's presets, with a preset control
// whose action is counted.
struct PresetStage : Stage {
  std::unique_ptr<ZelConfig> config;
  std::unique_ptr<ZelParameterControl> control;
  ZelPresetsDrawer* drawer = nullptr;
  int actions = 0;

  explicit PresetStage(std::unique_ptr<ZelConfig> c, CGRect frame = CGRectMake(0, 30, 418, 350))
      : config(std::move(c)) {
    const CGRect f = CGRectMake(0, 0, 200, 30);
    control = std::make_unique<ZelParameterControl>(f, f, config->presets(), MakeQuiet);
    control->setAction([this](ZelControl&) { ++actions; });
    drawer = add(std::make_unique<ZelPresetsDrawer>(frame, config.get(), true));
    drawer->setPresetControl(control.get());
  }
  std::size_t rowNamed(const std::string& name) const {
    const auto& rows = drawer->rows();
    for (std::size_t i = 0; i < rows.size(); ++i)
      if (rows[i].title == name) return i;
    return rows.size();
  }
  void clickRow(std::size_t index) {
    const CGRect r = drawer->listView()->visibleFrameOfRow(index);
    stage().click(drawer->listView()->convertPointToView({CGRectGetMidX(r), CGRectGetMidY(r)}, nullptr));
  }
  Stage& stage() { return *this; }
};

TEST(PresetsDrawer, ClickingARowChoosesItsPresetLikeThePresetBar) {
  PresetStage s(ProductConfig());
  const auto& rows = s.drawer->rows();
  ASSERT_FALSE(rows.empty());
  EXPECT_EQ(rows[0].kind, ZelPresetRow::Kind::Section);
  EXPECT_EQ(rows[0].title, "Essentials");

  s.clickRow(s.rowNamed("Underwater"));
  EXPECT_EQ(s.control->floatValue(), 8);
  EXPECT_EQ(s.actions, 1);

  s.clickRow(s.rowNamed("Lo-Fi"));  // a section title
  EXPECT_EQ(s.control->floatValue(), 8);
  EXPECT_EQ(s.actions, 1);

  s.drawer->presetSelected(8.9f);
  EXPECT_EQ(s.drawer->selectedPresetID(), 8);
}

TEST(PresetsDrawer, EntriesWithoutPresetIDAreInert) {
  Dict presets = PresetRecord({S("Zero"), S("One"), S("Two")});
  Dict categorized{{"sections", A({D({{"section", S("Odd")},
                                       {"presets", A({D({{"name", S("Lost")}}),
                                                      D({{"name", S("Second")}, {"presetID", I(2)}})})}})})}};
  PresetStage s(Config({}, {}, {{"presets", D(presets)}, {"categorizedPresets", D(categorized)}}));
  ASSERT_EQ(s.drawer->rows().size(), 3u);
  s.clickRow(s.rowNamed("Lost"));
  s.drawer->chooseRow(1);
  EXPECT_EQ(s.actions, 0);
  EXPECT_EQ(s.control->floatValue(), 0);
  s.clickRow(s.rowNamed("Second"));
  EXPECT_EQ(s.actions, 1);
  EXPECT_EQ(s.control->floatValue(), 2);
}

TEST(PresetsDrawer, WithoutCategoriesOneSectionListsEveryPresetAndScrolls) {
  Array names;
  for (int i = 0; i < 30; ++i) names.push_back(ZelPlist::string("P" + std::to_string(i)));
  PresetStage s(Config({}, {}, {{"presets", D(PresetRecord(names))}}),
                CGRectMake(0, 30, 200, 200));
  const auto& rows = s.drawer->rows();
  ASSERT_EQ(rows.size(), 31u);
  EXPECT_EQ(rows[0].kind, ZelPresetRow::Kind::Section);
  EXPECT_EQ(rows[30].title, "P29");
  EXPECT_EQ(rows[30].presetID, 29);

  // One column (200 points is too narrow for two), taller than the list.
  ZelPresetListView* list = s.drawer->listView();
  ASSERT_GT(list->maxScrollOffset(), 0);
  const CGPoint inside = Stage::centre(*list);
  s.window.sendEvent(ZelEvent::scroll(inside, 0, -2));
  EXPECT_DOUBLE_EQ(list->scrollOffset(), 2 * ZelPresetListView::kScrollLine);
  s.window.sendEvent(ZelEvent::scroll(inside, 0, -1000));
  EXPECT_DOUBLE_EQ(list->scrollOffset(), list->maxScrollOffset());
  s.clickRow(30);  // the last row, scrolled into view
  EXPECT_EQ(s.control->floatValue(), 29);
  s.window.sendEvent(ZelEvent::scroll(inside, 0, 1000));
  EXPECT_DOUBLE_EQ(list->scrollOffset(), 0);
}

}  // namespace
}  // namespace zel::containers_test
