// From an X key event, as Xlib looked it up, to the editor's key event:
// characters, characters ignoring modifiers, the virtual key codes the
// keyboard handling tests, the arrows as function-key characters with the
// numeric-pad flag, and the modifier flags (Shift, Ctrl as Command, Alt
// (Mod1) as Option).
//
// Pure functions over plain values (keysyms are numbers), so the table is
// testable without a server. Any thread.
#pragma once

#include <cstdint>
#include <string>

#include "toolkit/core/ZelEvent.h"

ZEL_NAMESPACE_BEGIN

// One key press or release as the lookup saw it.
struct ZelX11KeyInput {
  std::uint32_t keysym = 0;           // what the key gives with the modifiers held
  std::uint32_t unshiftedKeysym = 0;  // the key's first level
  std::uint32_t shiftedKeysym = 0;    // its second level; 0 when it has none
  unsigned state = 0;                 // the X modifier mask before the event
  std::string text;                   // UTF-8 from the input method or the lookup
  bool release = false;
  bool isARepeat = false;
};

// The editor's modifier flags for an X modifier mask.
ZelEventModifierFlags ZelX11ModifierFlags(unsigned state);

// The character a keysym stands for (Latin-1, the Unicode keysyms, the
// keypad and the control keys), 0 when it has none we know.
char32_t ZelX11CharacterForKeysym(std::uint32_t keysym);

// Whether the keysym is a modifier key (Shift, Control, Alt, Meta): its
// presses and releases become flags-changed events.
bool ZelX11IsModifierKeysym(std::uint32_t keysym);

// The event for a key. Modifier keys give FlagsChanged with the flags as
// they are after the event; other keys KeyDown or KeyUp.
ZelEvent ZelX11TranslateKey(const ZelX11KeyInput& key);

ZEL_NAMESPACE_END
