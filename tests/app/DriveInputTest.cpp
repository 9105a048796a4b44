// The driver's words as keyboard and mouse input: what a real key press on
// this platform would give the window.
#include <gtest/gtest.h>

#include "app/common/ZelNumberWords.h"
#include "app/drive/DriveEvents.h"
#include "app/drive/DriveScript.h"

namespace {

using namespace zel;

TEST(DriveInput, KeysCarryTheirCodesCharactersAndFlags) {
  auto ret = ZelDriveKeyEvent("return", 0);
  ASSERT_TRUE(ret);
  EXPECT_EQ(ret->keyCode, ZelKeyCodeReturn);
  EXPECT_EQ(ret->characters, "\r");

  auto enter = ZelDriveKeyEvent("enter", 0);
  EXPECT_EQ(enter->keyCode, ZelKeyCodeKeypadEnter);
  EXPECT_TRUE(enter->has(ZelEventModifierNumericPad));

  auto up = ZelDriveKeyEvent("up", ZelEventModifierShift);
  EXPECT_EQ(ZelFirstCodePoint(up->charactersIgnoringModifiers), char32_t{ZelUpArrowFunctionKey});
  EXPECT_TRUE(up->has(ZelEventModifierNumericPad));
  EXPECT_TRUE(up->has(ZelEventModifierShift));

  EXPECT_EQ(ZelDriveKeyEvent("grave", 0)->keyCode, ZelKeyCodeGrave);
  EXPECT_EQ(ZelDriveKeyEvent("grave", ZelEventModifierShift)->characters, "~");
  EXPECT_EQ(ZelDriveKeyEvent("delete", 0)->keyCode, ZelKeyCodeDelete);
  EXPECT_EQ(ZelDriveKeyEvent("escape", 0)->keyCode, ZelKeyCodeEscape);
  EXPECT_EQ(ZelDriveKeyEvent("tab", ZelEventModifierShift)->keyCode, ZelKeyCodeTab);
  EXPECT_FALSE(ZelDriveKeyEvent("space", 0));
  EXPECT_FALSE(ZelDriveKeyEvent("ab", 0));
}

// Ctrl+Z gives a control character but "z" ignoring modifiers; Shift
// upper-cases the letter in both (the redo shortcut is "Z").
TEST(DriveInput, CommandAndShiftLettersReadAsShortcuts) {
  auto undo = ZelDriveKeyEvent("z", ZelEventModifierCommand);
  EXPECT_EQ(undo->charactersIgnoringModifiers, "z");
  EXPECT_EQ(undo->characters, "\x1a");
  EXPECT_TRUE(undo->has(ZelEventModifierCommand));
  auto redo = ZelDriveKeyEvent("z", ZelEventModifierCommand | ZelEventModifierShift);
  EXPECT_EQ(redo->charactersIgnoringModifiers, "Z");
  auto typed = ZelDriveCharacterEvent(U'k');
  EXPECT_EQ(typed.charactersIgnoringModifiers, "k");
  EXPECT_EQ(typed.modifierFlags, 0u);
  EXPECT_EQ(ZelDriveKeyEvent("\xc3\xa9", 0)->characters, "\xc3\xa9") << "one character, UTF-8";
}

TEST(DriveInput, ModifierListsAreStrict) {
  EXPECT_EQ(ZelDriveParseModifiers("shift,ctrl,alt"),
            ZelEventModifierShift | ZelEventModifierCommand | ZelEventModifierOption);
  EXPECT_EQ(ZelDriveParseModifiers("alt"), ZelEventModifierOption);
  EXPECT_FALSE(ZelDriveParseModifiers(""));
  EXPECT_FALSE(ZelDriveParseModifiers("shift,"));
  EXPECT_FALSE(ZelDriveParseModifiers("cmd"));
}

TEST(DriveInput, WordsCommentsAndNumbers) {
  using W = std::vector<std::string>;
  EXPECT_EQ(ZelDriveWords("  down\t10 20 # grab\r"), (W{"down", "10", "20"}));
  EXPECT_EQ(ZelDriveWords("# only a comment"), W{});
  EXPECT_EQ(ZelDriveWords("clipboard https://x/manual/#Mix"), (W{"clipboard", "https://x/manual/#Mix"}));
  EXPECT_EQ(ZelDriveRestOfLine({"preset", "AM", "Radio"}, 1), "AM Radio");

  EXPECT_EQ(ZelParseNumberWord("-2.5"), -2.5);
  EXPECT_FALSE(ZelParseNumberWord("2.5x"));
  EXPECT_FALSE(ZelParseNumberWord("nan"));
  EXPECT_TRUE(ZelParseAnyNumberWord("nan"));
  EXPECT_FALSE(ZelParseCountWord("-1"));
  EXPECT_EQ(ZelParseCountWord("2"), 2u);
}

}  // namespace
