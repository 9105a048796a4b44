// The key table, without a server: what the editor's keyboard handling
// reads from key events (codes, characters, flags).
#include <gtest/gtest.h>

#include "toolkit/x11/ZelX11KeyMapping.h"
#include "toolkit/x11/ZelX11Scale.h"

#include <X11/X.h>
#include <X11/keysym.h>

using namespace zel;

namespace {

ZelX11KeyInput press(std::uint32_t keysym, unsigned state = 0, std::string text = {}) {
  ZelX11KeyInput k;
  k.keysym = keysym;
  k.unshiftedKeysym = keysym;
  k.state = state;
  k.text = std::move(text);
  return k;
}

ZelX11KeyInput letter(char lower, unsigned state, std::string text) {
  ZelX11KeyInput k = press(static_cast<std::uint32_t>(state & ShiftMask ? lower - 32 : lower), state, std::move(text));
  k.unshiftedKeysym = static_cast<std::uint32_t>(lower);
  k.shiftedKeysym = static_cast<std::uint32_t>(lower - 32);
  return k;
}

}  // namespace

TEST(X11KeyMapping, KeysTheKeyboardHandlerTestsByCode) {
  struct Case {
    std::uint32_t keysym;
    unsigned state;
    std::uint16_t code;
    const char* characters;
    bool numericPad;
  } cases[] = {
      {XK_Return, 0, 36, "\r", false},
      {XK_KP_Enter, 0, 76, "\x03", true},
      {XK_ISO_Left_Tab, ShiftMask, 48, "\t", false},
      {XK_BackSpace, 0, 51, "\x7f", false},
      {XK_Delete, 0, 51, "\xef\x9c\xa8", false},  // U+F728
      {XK_Escape, 0, 53, "\x1b", false},
  };
  for (const Case& c : cases) {
    ZelEvent e = ZelX11TranslateKey(press(c.keysym, c.state));
    SCOPED_TRACE(c.keysym);
    EXPECT_EQ(e.type, ZelEventType::KeyDown);
    EXPECT_EQ(e.keyCode, c.code);
    EXPECT_EQ(e.characters, c.characters);
    EXPECT_EQ(e.charactersIgnoringModifiers, c.characters);
    EXPECT_EQ(e.has(ZelEventModifierNumericPad), c.numericPad);
  }
  EXPECT_TRUE(ZelX11TranslateKey(press(XK_ISO_Left_Tab, ShiftMask)).has(ZelEventModifierShift));

  // The grave key is found by its first level, whatever its shifted text.
  ZelX11KeyInput tilde = press(XK_asciitilde, ShiftMask, "~");
  tilde.unshiftedKeysym = XK_grave;
  tilde.shiftedKeysym = XK_asciitilde;
  EXPECT_EQ(ZelX11TranslateKey(tilde).keyCode, ZelKeyCodeGrave);
  EXPECT_EQ(ZelX11TranslateKey(tilde).characters, "~");
}

TEST(X11KeyMapping, ArrowsAndKeypadCarryTheNumericPadFlag) {
  const std::pair<std::uint32_t, char16_t> arrows[] = {
      {XK_Up, ZelUpArrowFunctionKey}, {XK_Left, ZelLeftArrowFunctionKey}, {XK_KP_Right, ZelRightArrowFunctionKey}};
  for (auto [keysym, function] : arrows) {
    ZelEvent e = ZelX11TranslateKey(press(keysym, ShiftMask | ControlMask));
    EXPECT_EQ(ZelFirstCodePoint(e.charactersIgnoringModifiers), static_cast<char32_t>(function));
    EXPECT_EQ(e.characters, e.charactersIgnoringModifiers);
    EXPECT_EQ(e.modifierFlags,
              ZelEventModifierNumericPad | ZelEventModifierShift | ZelEventModifierCommand);
  }
  ZelEvent five = ZelX11TranslateKey(press(XK_KP_5, Mod2Mask, "5"));
  EXPECT_EQ(five.characters, "5");
  EXPECT_EQ(five.charactersIgnoringModifiers, "5");
  EXPECT_TRUE(five.has(ZelEventModifierNumericPad));
  EXPECT_EQ(ZelX11TranslateKey(press(XK_KP_Decimal, 0, ".")).charactersIgnoringModifiers, ".");
  EXPECT_FALSE(ZelX11TranslateKey(press('5', 0, "5")).has(ZelEventModifierNumericPad));
}

TEST(X11KeyMapping, CharactersIgnoringModifiersKeepOnlyShift) {
  ZelEvent k = ZelX11TranslateKey(letter('k', 0, "k"));
  EXPECT_EQ(k.characters, "k");
  EXPECT_EQ(k.charactersIgnoringModifiers, "k");
  EXPECT_EQ(k.keyCode, ZelKeyCodeUnknown);
  EXPECT_EQ(k.modifierFlags, 0u);

  ZelEvent shifted = ZelX11TranslateKey(letter('k', ShiftMask, "K"));
  EXPECT_EQ(shifted.charactersIgnoringModifiers, "K");
  EXPECT_EQ(shifted.modifierFlags, ZelEventModifierShift);

  // Ctrl is the Command key: Ctrl+z types a control character, but the
  // shortcut table sees "z", and "Z" with Shift (redo).
  ZelEvent undo = ZelX11TranslateKey(letter('z', ControlMask, "\x1a"));
  EXPECT_EQ(undo.characters, "\x1a");
  EXPECT_EQ(undo.charactersIgnoringModifiers, "z");
  EXPECT_EQ(undo.modifierFlags, ZelEventModifierCommand);
  ZelEvent redo = ZelX11TranslateKey(letter('z', ControlMask | ShiftMask, "\x1a"));
  EXPECT_EQ(redo.charactersIgnoringModifiers, "Z");

  // Caps Lock alone does not make the key upper-case; Alt is Option.
  ZelEvent caps = ZelX11TranslateKey(letter('c', LockMask, "C"));
  EXPECT_EQ(caps.characters, "C");
  EXPECT_EQ(caps.charactersIgnoringModifiers, "c");
  EXPECT_EQ(ZelX11TranslateKey(letter('c', Mod1Mask, "c")).modifierFlags, ZelEventModifierOption);

  // Text beyond Latin-1 comes from the input method as UTF-8.
  ZelX11KeyInput euro = press(0x20AC, 0, "\xe2\x82\xac");  // EuroSign
  EXPECT_EQ(ZelX11TranslateKey(euro).characters, "\xe2\x82\xac");
  EXPECT_EQ(ZelX11TranslateKey(euro).charactersIgnoringModifiers, "\xe2\x82\xac");
  EXPECT_EQ(ZelX11CharacterForKeysym(0x1000416), U'\u0416');  // a Unicode keysym
}

TEST(X11KeyMapping, ModifierKeysReportTheFlagsAfterTheEvent) {
  ZelEvent down = ZelX11TranslateKey(press(XK_Shift_L, ControlMask));
  EXPECT_EQ(down.type, ZelEventType::FlagsChanged);
  EXPECT_EQ(down.modifierFlags, ZelEventModifierShift | ZelEventModifierCommand);
  ZelX11KeyInput release = press(XK_Control_R, ShiftMask | ControlMask);
  release.release = true;
  EXPECT_EQ(ZelX11TranslateKey(release).modifierFlags, ZelEventModifierShift);
  EXPECT_EQ(ZelX11TranslateKey(press(XK_Alt_L)).modifierFlags, ZelEventModifierOption);
  ZelX11KeyInput letterUp = letter('k', 0, "k");
  letterUp.release = true;
  EXPECT_EQ(ZelX11TranslateKey(letterUp).type, ZelEventType::KeyUp);
}

TEST(X11Scale, FromTheScreensTextResolution) {
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.antialias:\t1\nXft.dpi:\t192\nXft.hinting:\t1\n")), 2.0);
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.dpi: 144")), 1.5);
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.dpi:\t120\n")), 1.25);
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.dpi:\t110\n")), 1.25);  // nearest quarter
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.dpi:\t72\n")), 1.0);
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.dpi:\t96\nXft.dpi:\t288\n")), 3.0);  // last wins
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.dpi:\t192\nXft.dpi:\tlarge\n")), 2.0);
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("*Xft.dpiX:\t192\nXterm*font: fixed\n")), 1.0);
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("")), 1.0);
  EXPECT_EQ(ZelX11ScaleForDPI(ZelX11DPIFromResources("Xft.dpi:\t-96\n")), 1.0);
}
