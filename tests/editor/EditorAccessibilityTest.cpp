// The editor as a screen reader sees it: the tree, what each control says,
// values set through it acting as typed numbers, states following the rules
// and drawers, and the events the watcher derives.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "editor/ZelEditorAccessibility.h"
#include "tests/editor/EditorTestSupport.h"
#include "toolkit/core/ZelAccessible.h"

namespace zel::editor_test {
namespace {

ZelAccessible* Find(ZelAccessible* node, const std::string& name, bool panel = false) {
  if (node->name() == name && (node->role() == ZelAccessibleRole::Panel) == panel) return node;
  for (ZelAccessible* child : node->children())
    if (ZelAccessible* found = Find(child, name, panel)) return found;
  return nullptr;
}

std::vector<std::string> ChildNames(const ZelAccessible* node) {
  std::vector<std::string> names;
  for (const ZelAccessible* child : node->children()) names.push_back(child->name());
  return names;
}

bool Has(const ZelAccessible* node, ZelAccessibleState state) { return (node->states() & state) != 0; }

struct A11yHarness : EditorHarness {
  using EditorHarness::EditorHarness;
  ZelAccessible* root() { return ui->accessibilityElement(); }
  ZelAccessible& element(const std::string& name) {
    ZelAccessible* e = Find(root(), name);
    if (!e) throw std::runtime_error("no element " + name);
    return *e;
  }
};

TEST(ZelEditorAccessibility, TheTreeFollowsTheEditorPanelByPanel) {
  A11yHarness h(SmallConfig());
  ZelAccessible* root = h.root();
  EXPECT_EQ(root->role(), ZelAccessibleRole::Window);
  EXPECT_EQ(root, h.ui->accessibilityElement());  // built once
  EXPECT_EQ(ChildNames(root), (std::vector<std::string>{"Main", "Rules", "Power", "Presets", "Advanced", "Preset list"}));
  EXPECT_EQ(ChildNames(Find(root, "Main", true)), (std::vector<std::string>{"A", "B", "Mode", "Width"}));
  ZelAccessible* advanced = Find(root, "Advanced", true);
  ASSERT_EQ(ChildNames(advanced), (std::vector<std::string>{"Adv"}));
  EXPECT_EQ(ChildNames(advanced->children()[0]), (std::vector<std::string>{"Adv", "Toggle"}));
  EXPECT_EQ(ChildNames(Find(root, "Power", true)),
            (std::vector<std::string>{"Power", "Manual", "Advanced controls", "Light or dark theme", "About"}));
  EXPECT_EQ(ChildNames(Find(root, "Presets", true)),
            (std::vector<std::string>{"Preset", "Undo", "Redo", "Copy settings", "Preset list"}));
  // Identifiers name each element once; parents and indexes agree.
  std::vector<int> ids;
  std::vector<ZelAccessible*> pending{root};
  while (!pending.empty()) {
    ZelAccessible* e = pending.back();
    pending.pop_back();
    ids.push_back(e->identifier());
    EXPECT_EQ(root->find(e->identifier()), e);
    if (e->parent()) {
      EXPECT_EQ(e->parent()->children()[static_cast<std::size_t>(e->indexInParent())], e);
    }
    for (ZelAccessible* c : e->children()) pending.push_back(c);
  }
  std::sort(ids.begin(), ids.end());
  EXPECT_EQ(std::adjacent_find(ids.begin(), ids.end()), ids.end());
}

TEST(ZelEditorAccessibility, ProductControlsSayRoleNameTextAndRange) {
  A11yHarness h(ProductConfig());
  struct Expect {
    const char* name;
    ZelAccessibleRole role;
    double min, max, value;
    const char* text;
  };
  const Expect expected[] = {
      {"Low Cut", ZelAccessibleRole::Slider, 20, 20000, 20, "20 Hz"},
      {"Slope", ZelAccessibleRole::SpinButton, 6, 96, 12, "12 dB/oct"},
      {"Power", ZelAccessibleRole::ToggleButton, 0, 1, 1, "On"},
      {"Mode", ZelAccessibleRole::ComboBox, 0, 2, 0, "Stereo"},
      {"HQ", ZelAccessibleRole::ToggleButton, 0, 1, 0, "Off"},
      {"Hiss", ZelAccessibleRole::Slider, -96, 0, -96, "-\u221e dB"},
  };
  for (const Expect& e : expected) {
    SCOPED_TRACE(e.name);
    ZelAccessible& el = h.element(e.name);
    EXPECT_EQ(el.role(), e.role);
    ASSERT_TRUE(el.value());
    EXPECT_EQ(el.value()->minimum, e.min);
    EXPECT_EQ(el.value()->maximum, e.max);
    EXPECT_EQ(el.value()->current, e.value);
    EXPECT_GT(el.value()->increment, 0);
    EXPECT_EQ(el.description(), e.text);
  }
  // HQ sits in its clump's panel although its view moved out of it.
  EXPECT_EQ(h.element("HQ").parent()->name(), "Quality");
  EXPECT_TRUE(Has(&h.element("Power"), ZelAccessibleChecked));
  EXPECT_FALSE(Has(&h.element("HQ"), ZelAccessibleChecked));
  EXPECT_TRUE(Has(&h.element("HQ"), ZelAccessibleCheckable));
}

TEST(ZelEditorAccessibility, ASetValueIsAGestureWithUndoAndTheDirtyMark) {
  A11yHarness h(SmallConfig());
  ZelAccessible& a = h.element("A");
  const std::size_t snapshots = h.snapshots();
  ASSERT_TRUE(a.setCurrentValue(55));
  EXPECT_EQ(h.host.begins, (std::vector<std::int64_t>{1}));
  EXPECT_EQ(h.host.updates, (std::vector<RecordingHost::Update>{{1, 55}}));
  EXPECT_EQ(h.host.ends, (std::vector<std::int64_t>{1}));
  h.run(1);
  EXPECT_EQ(h.control("A").floatValue(), 55);
  EXPECT_EQ(a.value()->current, 55);
  EXPECT_EQ(h.snapshots(), snapshots + 1);
  EXPECT_TRUE(Has(&h.element("Undo"), ZelAccessibleEnabled));
  EXPECT_EQ(h.element("Preset").description(), "Init, modified");
  // Out of range: clamped as a typed number is.
  ASSERT_TRUE(a.setCurrentValue(1e6));
  EXPECT_EQ(h.control("A").floatValue(), 100);
  // The actions: steps, reset, toggle; each a gesture of its own.
  h.host.begins.clear();
  ASSERT_TRUE(a.performAction(kZelAccessibleDecrement));
  EXPECT_EQ(h.control("A").floatValue(), 99);
  ASSERT_TRUE(a.performAction(kZelAccessibleReset));
  EXPECT_EQ(h.control("A").floatValue(), 10);
  EXPECT_EQ(h.host.begins.size(), 2u);
  EXPECT_FALSE(a.performAction(kZelAccessibleToggle));
  ZelAccessible& toggle = h.element("Toggle");
  ASSERT_TRUE(toggle.performAction(kZelAccessibleToggle));
  EXPECT_EQ(h.control("Toggle").floatValue(), 1);
  EXPECT_EQ(h.host.ends.size(), h.host.begins.size() + 2);  // and the two before
}

TEST(ZelEditorAccessibility, StatesFollowTheRulesAndTheDrawers) {
  A11yHarness h(SmallConfig());
  ZelAccessible& width = h.element("Width");
  ZelAccessible& adv = h.element("Adv");
  EXPECT_TRUE(Has(&width, ZelAccessibleEnabled));
  EXPECT_TRUE(Has(&width, ZelAccessibleShowing));
  // A mono layout disables Width: not enabled, and it cannot be set.
  h.ui->setChannelsIn(1, 1);
  h.run(0.1);
  EXPECT_FALSE(Has(&width, ZelAccessibleEnabled));
  h.host.updates.clear();
  EXPECT_FALSE(width.setCurrentValue(50));
  EXPECT_FALSE(width.performAction(kZelAccessibleIncrement));
  EXPECT_TRUE(h.host.updates.empty());
  // The closed Advanced drawer: its controls are not showing until it opens.
  EXPECT_FALSE(Has(&adv, ZelAccessibleShowing));
  EXPECT_FALSE(adv.grabFocus());
  ASSERT_TRUE(h.element("Advanced controls").performAction(kZelAccessiblePress));
  h.run(1);
  EXPECT_TRUE(Has(&adv, ZelAccessibleShowing));
  EXPECT_TRUE(Has(&h.element("Advanced controls"), ZelAccessibleChecked));
  EXPECT_TRUE(adv.grabFocus());
  EXPECT_TRUE(Has(&adv, ZelAccessibleFocused));
  // A rule that hides: R at 2 hides Width.
  h.userSets("R", 2);
  h.run(0.1);
  EXPECT_FALSE(Has(&width, ZelAccessibleVisible));
  EXPECT_FALSE(Has(&width, ZelAccessibleShowing));
}

TEST(ZelEditorAccessibility, TheWatcherReportsFocusAndValuesOncePerLook) {
  A11yHarness h(SmallConfig());
  ZelAccessibleWatcher watcher;
  EXPECT_TRUE(watcher.look(h.root()).empty());  // the first look only learns
  using Kind = ZelAccessibleEvent::Kind;
  // Tab: the focus moves to A. The window (which the host never told it
  // has the focus, as when embedded) turns active first: screen readers
  // follow the focus into the active window only.
  ASSERT_FALSE(h.ui->hasFocus());
  h.ui->keyboard().tabToNextControlWithDirection(1);
  std::vector<ZelAccessibleEvent> events = watcher.look(h.root());
  const int a = h.element("A").identifier();
  ASSERT_EQ(events.size(), 3u);
  EXPECT_EQ(events[0].identifier, h.root()->identifier());
  EXPECT_EQ(events[0].state, ZelAccessibleActive);
  EXPECT_TRUE(events[0].on);
  EXPECT_EQ(events[1].kind, Kind::State);
  EXPECT_EQ(events[1].state, ZelAccessibleFocused);
  EXPECT_TRUE(events[1].on);
  EXPECT_EQ(events[2].kind, Kind::Focus);
  EXPECT_EQ(events[2].identifier, a);
  // Automation moves B fifty times between two looks: one value event with
  // the last value.
  for (int i = 1; i <= 50; ++i) h.ui->updateParameterKeyed(2, static_cast<float>(i));
  events = watcher.look(h.root());
  const int b = h.element("B").identifier();
  auto values = std::count_if(events.begin(), events.end(), [&](const ZelAccessibleEvent& e) {
    return e.kind == Kind::Value && e.identifier == b && e.value == 50;
  });
  EXPECT_EQ(values, 1);
  EXPECT_TRUE(watcher.look(h.root()).empty());  // nothing moved since
  // The next Tab: A loses the focus, B gains it.
  h.ui->keyboard().tabToNextControlWithDirection(1);
  events = watcher.look(h.root());
  EXPECT_TRUE(std::any_of(events.begin(), events.end(), [&](const ZelAccessibleEvent& e) {
    return e.kind == Kind::State && e.identifier == a && e.state == ZelAccessibleFocused && !e.on;
  }));
  EXPECT_TRUE(std::any_of(events.begin(), events.end(),
                          [&](const ZelAccessibleEvent& e) { return e.kind == Kind::Focus && e.identifier == b; }));
  // A new editor is a new tree: learnt afresh, nothing reported.
  A11yHarness other(SmallConfig());
  EXPECT_TRUE(watcher.look(other.root()).empty());
}

}  // namespace
}  // namespace zel::editor_test
