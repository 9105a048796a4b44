#include <chrono>

#include "EditorTestSupport.h"
#include "editor/ZelKeyboardHandler.h"

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

TEST(ZelKeyboardHandler, TheNumberBufferFollowsItsRules) {
  EditorHarness h(SmallConfig());
  ZelKeyboardHandler& keys = h.ui->keyboard();
  Type(h, "12k5");
  EXPECT_EQ(keys.numberBuffer(), "12k");  // "k" closes the entry
  keys.resetNumberBuffer();
  Type(h, ".5.");
  EXPECT_EQ(keys.numberBuffer(), ".5");
  keys.resetNumberBuffer();
  Type(h, "-3-");
  EXPECT_EQ(keys.numberBuffer(), "-3");  // "-" only first
  EXPECT_FALSE(keys.handleKeyDownEvent(Key("-")));
  EXPECT_TRUE(h.window.sendEvent(Key("\b", ZelKeyCodeDelete)));
  EXPECT_EQ(keys.numberBuffer(), "-");
  keys.deleteLastCharacterInNumberBuffer();
  EXPECT_FALSE(keys.deleteLastCharacterInNumberBuffer());
  EXPECT_FALSE(keys.handleKeyDownEvent(Key("q")));
}

TEST(ZelKeyboardHandler, ReturnSendsTheTypedNumberOrTogglesABoolean) {
  EditorHarness h(SmallConfig());
  ZelKeyboardHandler& keys = h.ui->keyboard();
  h.ui->bringParameterControlIntoFocus(&h.control("A"));
  Type(h, "42");
  EXPECT_TRUE(h.window.sendEvent(Key("\r", ZelKeyCodeReturn)));
  EXPECT_EQ(keys.numberBuffer(), "");
  EXPECT_EQ(h.host.updates, (std::vector<RecordingHost::Update>{{1, 42}}));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 42);

  // Tab commits a number being typed, then moves on.
  Type(h, "7");
  h.window.sendEvent(Key("\t", ZelKeyCodeTab));
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 7);
  EXPECT_EQ(h.ui->focusedControl(), &h.control("B"));

  h.ui->toggleAdvancedDrawer();
  h.run(1.0);
  h.ui->bringParameterControlIntoFocus(&h.control("Toggle"));
  Type(h, "3");
  h.window.sendEvent(Key("\x03", ZelKeyCodeKeypadEnter));
  h.run(0.1);
  EXPECT_EQ(h.control("Toggle").floatValue(), 1);
  EXPECT_EQ(keys.numberBuffer(), "3");  // left alone
}

TEST(ZelKeyboardHandler, TabWalksTheTabOrderWrapsSkipsDisabledAndStopsWithThePowerOff) {
  EditorHarness h(SmallConfig());
  auto focused = [&] { return h.ui->focusedControl(); };
  const ZelEvent tab = Key("\t", ZelKeyCodeTab);
  const ZelEvent backTab = Key("\t", ZelKeyCodeTab, ZelEventModifierShift);
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("A"));
  h.window.sendEvent(backTab);  // wraps backwards past the advanced names
  EXPECT_EQ(focused(), &h.control("Width"));
  h.window.sendEvent(tab);  // and forwards to the first
  EXPECT_EQ(focused(), &h.control("A"));
  h.ui->setChannelsIn(1, 1);  // Mode and Width disabled
  h.window.sendEvent(tab);
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("A"));
  h.window.sendEvent(Key("`", ZelKeyCodeGrave));
  EXPECT_EQ(focused(), &h.control("B"));

  // In the advanced drawer only advanced controls take part.
  h.ui->toggleAdvancedDrawer();
  h.run(1.0);
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("Adv"));
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("Toggle"));
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), &h.control("Adv"));

  h.ui->updateParameterKeyed(0, 0);
  EXPECT_EQ(h.ui->keyboard().adjacentParameterControl(focused(), 1), nullptr);
  h.ui->bringParameterControlIntoFocus(nullptr);
  h.window.sendEvent(tab);
  EXPECT_EQ(focused(), nullptr);
}

TEST(ZelKeyboardHandler, EscapeUnfocusesFirstThenClosesDrawers) {
  EditorHarness h(SmallConfig());
  const ZelEvent escape = Key("\x1b", ZelKeyCodeEscape);
  h.ui->togglePresetsDrawer();
  h.run(1.0);
  h.ui->bringParameterControlIntoFocus(h.presetControl());
  EXPECT_TRUE(h.ui->isPresetsDrawerVisible());
  EXPECT_TRUE(h.window.sendEvent(escape));
  EXPECT_EQ(h.ui->focusedControl(), nullptr);
  EXPECT_TRUE(h.ui->isPresetsDrawerVisible());
  EXPECT_TRUE(h.window.sendEvent(escape));
  EXPECT_FALSE(h.ui->isPresetsDrawerVisible());
  EXPECT_FALSE(h.ui->keyboard().handleKeyDownEvent(escape));  // nothing left to do
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
  EXPECT_TRUE(h.ui->isAdvancedDrawerVisible());
  h.window.sendEvent(Key("t", ZelKeyCodeUnknown, ZelEventModifierCommand));
  h.window.sendEvent(Key("t", ZelKeyCodeUnknown, ZelEventModifierCommand));
  EXPECT_EQ(h.host.prefs.size(), 2u);

  // Undo, redo with Command-Shift-Z, and "r" loads the first preset.
  h.userSets("B", 30);
  h.run(1.0);
  h.window.sendEvent(Key("z", ZelKeyCodeUnknown, ZelEventModifierCommand));
  h.run(0.1);
  EXPECT_EQ(h.control("B").floatValue(), 0);
  h.window.sendEvent(Key("Z", ZelKeyCodeUnknown, ZelEventModifierCommand | ZelEventModifierShift));
  h.run(0.1);
  EXPECT_EQ(h.control("B").floatValue(), 30);
  h.window.sendEvent(Key("r", ZelKeyCodeUnknown, ZelEventModifierCommand));
  h.run(0.1);
  EXPECT_EQ(h.control("B").floatValue(), 0);
  EXPECT_EQ(h.host.presets.back(), "Init");

  // Arrows: nothing focused, nothing handled; then normal, fine, coarse.
  EXPECT_FALSE(h.window.sendEvent(ZelEvent::arrowKey(ZelUpArrowFunctionKey)));
  h.ui->bringParameterControlIntoFocus(&h.control("Adv"));
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

  // Pasting through the clipboard answers later; "x" keeps, names or
  // minimal names set, unknown names are ignored.
  h.userSets("Width", 40);
  h.run(0.1);
  h.platform.memoryPasteboard().setString(kBase + "/?a:55.5/Width:x/B:3/Nope:4/Mode:2");
  EXPECT_TRUE(h.window.sendEvent(Key("v", ZelKeyCodeUnknown, ZelEventModifierCommand)));
  EXPECT_EQ(h.control("A").floatValue(), 10);
  h.run(0.1);
  EXPECT_EQ(h.control("A").floatValue(), 55.5f);
  EXPECT_EQ(h.control("B").floatValue(), 3);
  EXPECT_EQ(h.control("Mode").floatValue(), 2);
  EXPECT_EQ(h.control("Width").floatValue(), 40);
  // The query form of a web link works too.
  EXPECT_TRUE(keys.applyURLEncodedPreset(kBase + "?B=4&Width=x"));
  h.run(0.1);
  EXPECT_EQ(h.control("B").floatValue(), 4);
  EXPECT_EQ(h.control("A").floatValue(), 10);
  EXPECT_EQ(h.control("Width").floatValue(), 40);
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
