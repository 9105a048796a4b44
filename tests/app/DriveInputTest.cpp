// The driver's words as keyboard and mouse input: what a real key press on
// this platform would give the window.
#include <gtest/gtest.h>

#include "app/common/ZelNumberWords.h"
#include "app/drive/DriveEvents.h"
#include "app/drive/DriveScript.h"

namespace {

using namespace zel;

// The everyday keys (return, enter, arrows, tab, escape, delete, Ctrl+Z and
// Ctrl+Shift+Z) are exercised by the driver scripts; these are the rest.
TEST(DriveInput, ShiftedAndNonASCIIKeysAndUnknownNames) {
  EXPECT_EQ(ZelDriveKeyEvent("grave", ZelEventModifierShift)->characters, "~");
  EXPECT_EQ(ZelDriveKeyEvent("\xc3\xa9", 0)->characters, "\xc3\xa9") << "one character, UTF-8";
  auto typed = ZelDriveCharacterEvent(U'k');
  EXPECT_EQ(typed.charactersIgnoringModifiers, "k");
  EXPECT_EQ(typed.modifierFlags, 0u);
  EXPECT_FALSE(ZelDriveKeyEvent("space", 0));
  EXPECT_FALSE(ZelDriveKeyEvent("ab", 0));
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
