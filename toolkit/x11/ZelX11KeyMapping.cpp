#include "toolkit/x11/ZelX11KeyMapping.h"

#include <X11/X.h>
#include <X11/keysym.h>

#include <iterator>

ZEL_NAMESPACE_BEGIN

namespace {

struct SpecialKey {
  std::uint32_t keysym;
  char32_t character;
  std::uint16_t keyCode;
  bool numericPad;
};

// Keys whose characters and codes do not come from the text they type.
constexpr SpecialKey kSpecialKeys[] = {
    {XK_Return, U'\r', ZelKeyCodeReturn, false},
    {XK_KP_Enter, 0x03, ZelKeyCodeKeypadEnter, true},
    {XK_Tab, U'\t', ZelKeyCodeTab, false},
    {XK_ISO_Left_Tab, U'\t', ZelKeyCodeTab, false},
    {XK_BackSpace, 0x7F, ZelKeyCodeDelete, false},
    {XK_Delete, 0xF728, ZelKeyCodeDelete, false},
    {XK_KP_Delete, 0xF728, ZelKeyCodeDelete, true},
    {XK_Escape, 0x1B, ZelKeyCodeEscape, false},
    {XK_Up, ZelUpArrowFunctionKey, ZelKeyCodeUpArrow, true},
    {XK_KP_Up, ZelUpArrowFunctionKey, ZelKeyCodeUpArrow, true},
    {XK_Down, ZelDownArrowFunctionKey, ZelKeyCodeDownArrow, true},
    {XK_KP_Down, ZelDownArrowFunctionKey, ZelKeyCodeDownArrow, true},
    {XK_Left, ZelLeftArrowFunctionKey, ZelKeyCodeLeftArrow, true},
    {XK_KP_Left, ZelLeftArrowFunctionKey, ZelKeyCodeLeftArrow, true},
    {XK_Right, ZelRightArrowFunctionKey, ZelKeyCodeRightArrow, true},
    {XK_KP_Right, ZelRightArrowFunctionKey, ZelKeyCodeRightArrow, true},
    {XK_Insert, 0xF727, ZelKeyCodeUnknown, false},
    {XK_Home, 0xF729, ZelKeyCodeUnknown, false},
    {XK_End, 0xF72B, ZelKeyCodeUnknown, false},
    {XK_Page_Up, 0xF72C, ZelKeyCodeUnknown, false},
    {XK_Page_Down, 0xF72D, ZelKeyCodeUnknown, false},
    {XK_KP_Insert, 0xF727, ZelKeyCodeUnknown, true},
    {XK_KP_Home, 0xF729, ZelKeyCodeUnknown, true},
    {XK_KP_End, 0xF72B, ZelKeyCodeUnknown, true},
    {XK_KP_Page_Up, 0xF72C, ZelKeyCodeUnknown, true},
    {XK_KP_Page_Down, 0xF72D, ZelKeyCodeUnknown, true},
};

const SpecialKey* specialKey(std::uint32_t keysym) {
  for (const SpecialKey& k : kSpecialKeys) {
    if (k.keysym == keysym) return &k;
  }
  return nullptr;
}

bool isKeypadKeysym(std::uint32_t keysym) { return keysym >= XK_KP_Space && keysym <= XK_KP_Equal; }

// F1 ... F35 as the platform's function-key characters U+F704 onwards.
char32_t functionKeyCharacter(std::uint32_t keysym) {
  return keysym >= XK_F1 && keysym <= XK_F35 ? 0xF704 + (keysym - XK_F1) : 0;
}

std::string utf8(char32_t c) { return c ? ZelUTF8FromCodePoint(c) : std::string(); }

// The key without modifier translation: its first level, or its second
// with Shift (letters are upper-case there; Caps Lock is ignored).
std::uint32_t keysymIgnoringModifiers(const ZelX11KeyInput& key) {
  if ((key.state & ShiftMask) && key.shiftedKeysym) return key.shiftedKeysym;
  return key.unshiftedKeysym ? key.unshiftedKeysym : key.keysym;
}

ZelEventModifierFlags flagsAfterModifierKey(const ZelX11KeyInput& key) {
  unsigned mask = 0;
  switch (key.keysym) {
    case XK_Shift_L: case XK_Shift_R: mask = ShiftMask; break;
    case XK_Control_L: case XK_Control_R: mask = ControlMask; break;
    default: mask = Mod1Mask; break;  // Alt and Meta
  }
  unsigned state = key.release ? key.state & ~mask : key.state | mask;
  return ZelX11ModifierFlags(state);
}

std::uint16_t keyCodeFor(const ZelX11KeyInput& key, const SpecialKey* special) {
  if (special) return special->keyCode;
  if (key.unshiftedKeysym == XK_grave || key.unshiftedKeysym == XK_dead_grave) return ZelKeyCodeGrave;
  return ZelKeyCodeUnknown;
}

}  // namespace

ZelEventModifierFlags ZelX11ModifierFlags(unsigned state) {
  ZelEventModifierFlags flags = 0;
  if (state & ShiftMask) flags |= ZelEventModifierShift;
  if (state & ControlMask) flags |= ZelEventModifierCommand;
  if (state & Mod1Mask) flags |= ZelEventModifierOption;
  return flags;
}

char32_t ZelX11CharacterForKeysym(std::uint32_t keysym) {
  if ((keysym >= 0x20 && keysym <= 0x7E) || (keysym >= 0xA0 && keysym <= 0xFF)) return keysym;
  if ((keysym & 0xFF000000u) == 0x01000000u) return keysym & 0x00FFFFFFu;
  if (const SpecialKey* k = specialKey(keysym)) return k->character;
  if (char32_t f = functionKeyCharacter(keysym)) return f;
  // The keypad's characters sit at their ASCII code + 0xFF80.
  if (keysym == XK_KP_Space || keysym == XK_KP_Tab || keysym == XK_KP_Equal ||
      (keysym >= XK_KP_Multiply && keysym <= XK_KP_9)) {
    return keysym - 0xFF80;
  }
  return 0;
}

bool ZelX11IsModifierKeysym(std::uint32_t keysym) {
  switch (keysym) {
    case XK_Shift_L: case XK_Shift_R: case XK_Control_L: case XK_Control_R:
    case XK_Alt_L: case XK_Alt_R: case XK_Meta_L: case XK_Meta_R:
      return true;
    default:
      return false;
  }
}

ZelEvent ZelX11TranslateKey(const ZelX11KeyInput& key) {
  if (ZelX11IsModifierKeysym(key.keysym)) return ZelEvent::flagsChanged(flagsAfterModifierKey(key));
  const SpecialKey* special = specialKey(key.keysym);
  ZelEvent e;
  e.type = key.release ? ZelEventType::KeyUp : ZelEventType::KeyDown;
  e.modifierFlags = ZelX11ModifierFlags(key.state);
  if ((special && special->numericPad) || isKeypadKeysym(key.keysym)) e.modifierFlags |= ZelEventModifierNumericPad;
  e.keyCode = keyCodeFor(key, special);
  e.isARepeat = key.isARepeat;
  if (special || functionKeyCharacter(key.keysym)) {
    e.characters = utf8(ZelX11CharacterForKeysym(key.keysym));
    e.charactersIgnoringModifiers = e.characters;
    return e;
  }
  e.characters = key.text.empty() ? utf8(ZelX11CharacterForKeysym(key.keysym)) : key.text;
  char32_t plain = ZelX11CharacterForKeysym(keysymIgnoringModifiers(key));
  bool translated = key.state & (ControlMask | Mod1Mask);
  e.charactersIgnoringModifiers = plain ? utf8(plain) : translated ? std::string() : e.characters;
  return e;
}

ZEL_NAMESPACE_END
