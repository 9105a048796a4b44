#include <chrono>
#include <cmath>
#include <memory>

#include "EditorTestSupport.h"
#include "editor/ZelKeyboardHandler.h"
#include "editor/ZelLogoStamp.h"
#include "editor/ZelPowerBox.h"
#include "toolkit/core/ZelMenu.h"

using namespace zel;
using namespace zel::editor_test;

namespace {

ZelEvent Key(std::string characters, std::uint16_t code = ZelKeyCodeUnknown, ZelEventModifierFlags flags = 0) {
  return ZelEvent::key(ZelEventType::KeyDown, std::move(characters), code, flags);
}

// Types each character as a key press through the window.
void Type(EditorHarness& h, std::string_view text) {
  for (char c : text) h.window.sendEvent(Key(std::string(1, c)));
}

const std::string kBase = "https://www.zel-audio.example/tst/2.0";

}  // namespace

TEST(ZelKeyboardHandler, TabCommitsATypedNumberBeforeMovingOn) {
  EditorHarness h(SmallConfig());
  h.ui->focus().bringParameterControlIntoFocus(&h.control("A"));
  Type(h, "7");
  h.window.sendEvent(Key("\t", ZelKeyCodeTab));
  EXPECT_EQ(h.host.updates, (std::vector<RecordingHost::Update>{{1, 7}}));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 7);
  EXPECT_EQ(h.ui->focus().focusedControl(), &h.control("B"));
  EXPECT_EQ(h.ui->keyboard().numberBuffer(), "");
}

TEST(ZelKeyboardHandler, TabSkipsDisabledControlsAndStaysInsideTheAdvancedDrawer) {
  EditorHarness h(SmallConfig());
  auto focused = [&] { return h.ui->focus().focusedControl(); };
  const ZelEvent tab = Key("\t", ZelKeyCodeTab);
  h.ui->setChannelsIn(1, 1);  // Mode and Width disabled
  h.window.sendEvent(tab);
  h.window.sendEvent(tab);
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("A"));

  h.ui->drawers().toggleAdvancedDrawer();
  h.run(1.0);
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("Adv"));
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("Toggle"));
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("Adv"));
}

TEST(ZelKeyboardHandler, ShortcutsNeedCommandAndArrowsStepTheFocusedControl) {
  EditorHarness h(SmallConfig());
  ZelKeyboardHandler& keys = h.ui->keyboard();
  EXPECT_FALSE(keys.handlePerformKeyEquivalent(Key("v")));
  EXPECT_TRUE(keys.handlePerformKeyEquivalent(Key("n", ZelKeyCodeUnknown, ZelEventModifierCommand)));
  EXPECT_FALSE(keys.handlePerformKeyEquivalent(Key("q", ZelKeyCodeUnknown, ZelEventModifierCommand)));
  EXPECT_TRUE(h.host.updates.empty());

  h.window.sendEvent(Key("o", ZelKeyCodeUnknown, ZelEventModifierCommand));
  EXPECT_EQ(h.host.updates.back(), (RecordingHost::Update{0, 0}));
  h.run(0.1);
  EXPECT_FALSE(h.ui->isProcessing());
  h.window.sendEvent(Key("o", ZelKeyCodeUnknown, ZelEventModifierCommand));
  h.run(0.1);
  EXPECT_TRUE(h.ui->isProcessing());
  h.window.sendEvent(Key("a", ZelKeyCodeUnknown, ZelEventModifierCommand));
  EXPECT_TRUE(h.ui->drawers().isAdvancedDrawerVisible());
  h.window.sendEvent(Key("t", ZelKeyCodeUnknown, ZelEventModifierCommand));
  h.window.sendEvent(Key("t", ZelKeyCodeUnknown, ZelEventModifierCommand));
  EXPECT_EQ(h.host.prefs.size(), 2u);

  // Arrows: nothing focused, nothing handled; then normal, fine, coarse.
  EXPECT_FALSE(h.window.sendEvent(ZelEvent::arrowKey(ZelUpArrowFunctionKey)));
  h.ui->focus().bringParameterControlIntoFocus(&h.control("Adv"));
  h.window.sendEvent(ZelEvent::arrowKey(ZelUpArrowFunctionKey));
  EXPECT_FLOAT_EQ(h.control("Adv").floatValue(), 1);
  h.window.sendEvent(ZelEvent::arrowKey(ZelDownArrowFunctionKey, ZelEventModifierCommand));
  EXPECT_FLOAT_EQ(h.control("Adv").floatValue(), 0.9f);
  h.window.sendEvent(ZelEvent::arrowKey(ZelUpArrowFunctionKey, ZelEventModifierShift));
  EXPECT_GE(h.control("Adv").floatValue(), 10);
}

TEST(ZelKeyboardHandler, CopyWritesChangedValuesAndPasteResetsTheRest) {
  EditorHarness h(SmallConfig());
  ZelKeyboardHandler& keys = h.ui->keyboard();
  EXPECT_EQ(keys.currentParametersURLEncoded(), kBase + "/?");
  h.userSets("A", 55.5f);
  h.userSets("B", 20);
  h.userSets("Power", 0);  // never written
  h.run(0.1);
  h.window.sendEvent(Key("c", ZelKeyCodeUnknown, ZelEventModifierCommand));
  EXPECT_EQ(h.platform.memoryPasteboard().content(), kBase + "/?a:55.5/B:20");

  // The text of the defaults resets everything, the power included.
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "/?"));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 10);
  EXPECT_EQ(h.control("B").floatValue(), 0);
  EXPECT_EQ(h.control("Power").floatValue(), 1);

  // The query form of a web link works too; "x" keeps a value.
  h.userSets("Width", 40);
  h.run(0.1);
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "?B=4&Width=x"));
  h.run(0.1);
  EXPECT_EQ(h.control("B").floatValue(), 4);
  EXPECT_EQ(h.control("A").floatValue(), 10);
  EXPECT_EQ(h.control("Width").floatValue(), 40);
}

// "x" keeps a value only under the key copy writes for the parameter: its
// minimal name ("a" for A), or its code name when it has no minimal name
// (B). The code name of a parameter with a minimal name resets it; a number
// is taken under either name.
TEST(ZelKeyboardHandler, PasteKeepsAValueOnlyUnderItsCopiedKey) {
  EditorHarness h(SmallConfig());
  ZelKeyboardHandler& keys = h.ui->keyboard();
  auto setUp = [&] {
    h.userSets("A", 55);
    h.userSets("B", 20);
    h.run(0.1);
  };
  setUp();
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "/?A:x/B:x"));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 10);  // reset: "A" is not its copied key
  EXPECT_EQ(h.control("B").floatValue(), 20);  // kept: B has no minimal name

  setUp();
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "?a=x&b=x"));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 55);
  EXPECT_EQ(h.control("B").floatValue(), 0);  // "b" names nothing

  setUp();
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "/?A:x/a:30"));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 30);
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "/?A:42"));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 42);
}

// Pasted values outside a parameter's range (found by fuzz_paste: "Mode=4"
// reached the host as 4) are taken at the nearest end before anything is
// told; the host never hears a value its parameter cannot hold.
TEST(ZelKeyboardHandler, PastedValuesOutsideTheRangeAreClampedBeforeTheHostHearsThem) {
  EditorHarness h(SmallConfig());
  ZelKeyboardHandler& keys = h.ui->keyboard();
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "?a=150&B=-7&Mode=4&Width=1e999"));
  h.run(0.1);
  for (const RecordingHost::Update& u : h.host.updates) {
    const ZelParameter* p = h.config().parameterForPid(u.pid);
    ASSERT_NE(p, nullptr);
    EXPECT_GE(u.value, p->minValue) << p->codesafeName;
    EXPECT_LE(u.value, p->maxValue) << p->codesafeName;
  }
  EXPECT_EQ(h.control("A").floatValue(), 100);
  EXPECT_EQ(h.control("B").floatValue(), 0);
  EXPECT_EQ(h.control("Mode").floatValue(), 2);
  EXPECT_EQ(h.control("Width").floatValue(), 100);
}

TEST(ZelKeyboardHandler, BadPastesChangeNothingAndAMegabyteIsBounded) {
  EditorHarness h(SmallConfig());
  ZelKeyboardHandler& keys = h.ui->keyboard();
  h.userSets("A", 60);
  h.run(0.1);
  h.host.updates.clear();
  for (std::string text : {"", "just words", "/?a:1", "https://x.example/?a:1 b:2", "http://%zz", "1:2"})
    EXPECT_FALSE(keys.applyURLEncodedPreset(text)) << text;
  EXPECT_TRUE(h.host.updates.empty());

  std::string big = kBase + "/?";
  while (big.size() < (1u << 20)) big += "n" + std::to_string(big.size()) + ":1/a:61/";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(keys.applyURLEncodedPreset(big));
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_LT(elapsed, std::chrono::seconds(2));
  EXPECT_LE(h.host.updates.size(), 2 * h.ui->parameterControls().size());
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 61);
}

TEST(ZelKeyboardHandler, ZoomStepsThroughItsSizesAndTellsTheHost) {
  EditorHarness h(SmallConfig());
  auto cmd = [&](const char* key) { h.window.sendEvent(Key(key, ZelKeyCodeUnknown, ZelEventModifierCommand)); };
  auto zooms = [&] {
    std::vector<std::string> out;
    for (const std::string& pref : h.host.prefs)
      if (pref.rfind("zoom=", 0) == 0) out.push_back(pref.substr(5));
    return out;
  };
  cmd("=");
  cmd("+");
  EXPECT_EQ(h.ui->zoom(), 1.5);
  for (int i = 0; i < 4; ++i) cmd("=");
  EXPECT_EQ(h.ui->zoom(), 2.0) << "200% is the largest";
  cmd("-");
  EXPECT_EQ(h.ui->keyboard().numberBuffer(), "") << "Ctrl+minus is no negative number";
  cmd("0");
  EXPECT_EQ(h.ui->keyboard().numberBuffer(), "");
  cmd("-");
  EXPECT_EQ(zooms(), (std::vector<std::string>{"1.25", "1.5", "1.75", "2", "1.75", "1"})) << "only changes are told";

  // The host's zoom is taken as it is, snapped to a step, and not told back.
  h.ui->setZoom(1.6);
  EXPECT_EQ(h.ui->zoom(), 1.5);
  h.ui->setZoom(NAN);
  EXPECT_EQ(h.ui->zoom(), 1.0);
  EXPECT_EQ(zooms().size(), 6u);

  // The logo stamp's menu offers every step, the current one greyed.
  std::unique_ptr<ZelMenu> menu = h.ui->powerBox()->logo()->newAboutMenu();
  std::vector<std::string> offered;
  for (const ZelMenuItem& item : menu->items())
    if (item.title.rfind("Zoom", 0) == 0) offered.push_back(item.title + (item.enabled ? "" : " (current)"));
  EXPECT_EQ(offered, (std::vector<std::string>{"Zoom 100% (current)", "Zoom 125%", "Zoom 150%", "Zoom 175%",
                                               "Zoom 200%"}));
  menu->items()[static_cast<std::size_t>(menu->indexOfItem("Zoom 175%"))].action();
  EXPECT_EQ(h.ui->zoom(), 1.75);
  EXPECT_EQ(zooms().back(), "1.75");
}

TEST(ZelKeyboardHandler, APitchIsTypedAsANoteNameOrAsANumber) {
  Array clumps;
  clumps.push_back(Clump("Main", "Normal",
                         {Param(1, "Note", 0, 127, 60, {{"unit", S("Note")}, {"controlType", S("NoteSlider")}}),
                          Param(2, "B", 1, 100, 0)}));
  EditorHarness h(std::make_unique<ZelConfig>(D({{"clumps", A(std::move(clumps))}})));
  h.ui->focus().bringParameterControlIntoFocus(&h.control("Note"));
  Type(h, "A#3");
  EXPECT_EQ(h.ui->keyboard().numberBuffer(), "A#3");
  h.window.sendEvent(Key("\r", ZelKeyCodeReturn));
  EXPECT_EQ(h.host.updates.back(), (RecordingHost::Update{1, 58}));
  Type(h, "eb4");
  h.window.sendEvent(Key("\r", ZelKeyCodeReturn));
  EXPECT_EQ(h.host.updates.back(), (RecordingHost::Update{1, 63}));
  Type(h, "72");
  h.window.sendEvent(Key("\r", ZelKeyCodeReturn));
  EXPECT_EQ(h.host.updates.back(), (RecordingHost::Update{1, 72}));
  // Letters are no number anywhere else: the other control leaves them alone.
  h.ui->focus().bringParameterControlIntoFocus(&h.control("B"));
  Type(h, "a");
  EXPECT_EQ(h.ui->keyboard().numberBuffer(), "");
}
