// Input events as the views receive them: mouse, scroll wheel, keys and
// modifier changes. A backend translates its native events into these; the
// window routes them (ZelWindow). Locations are in window coordinates, in
// points, y growing upward. Plain values; copy freely.
#pragma once

#include <cstdint>
#include <string>

#include "toolkit/foundation/Geometry.h"

ZEL_NAMESPACE_BEGIN

enum class ZelEventType {
  LeftMouseDown,
  LeftMouseDragged,  // pointer moved with a button held (any button)
  LeftMouseUp,
  RightMouseDown,
  RightMouseUp,
  MouseMoved,  // pointer moved with no button held (only an open menu listens)
  ScrollWheel,
  KeyDown,
  KeyUp,
  FlagsChanged,
};

// Modifier flags, named after what the editor means by them. On this
// platform "Command" is the Ctrl key and "Option" is Alt.
using ZelEventModifierFlags = std::uint32_t;
inline constexpr ZelEventModifierFlags ZelEventModifierShift = 1u << 17;
inline constexpr ZelEventModifierFlags ZelEventModifierCommand = 1u << 20;  // Ctrl
inline constexpr ZelEventModifierFlags ZelEventModifierOption = 1u << 19;   // Alt
// Set on keys of the numeric keypad and on the arrow keys.
inline constexpr ZelEventModifierFlags ZelEventModifierNumericPad = 1u << 21;
// The modifiers a user holds (without the numeric-pad flag).
inline constexpr ZelEventModifierFlags ZelEventModifierDeviceIndependentMask =
    ZelEventModifierShift | ZelEventModifierCommand | ZelEventModifierOption;

// Virtual key codes of the keys the keyboard handling tests by number.
inline constexpr std::uint16_t ZelKeyCodeReturn = 36;
inline constexpr std::uint16_t ZelKeyCodeTab = 48;
inline constexpr std::uint16_t ZelKeyCodeGrave = 50;  // the key left of 1: ` and ~
inline constexpr std::uint16_t ZelKeyCodeDelete = 51;  // backspace
inline constexpr std::uint16_t ZelKeyCodeEscape = 53;
inline constexpr std::uint16_t ZelKeyCodeKeypadEnter = 76;
inline constexpr std::uint16_t ZelKeyCodeLeftArrow = 123;
inline constexpr std::uint16_t ZelKeyCodeRightArrow = 124;
inline constexpr std::uint16_t ZelKeyCodeDownArrow = 125;
inline constexpr std::uint16_t ZelKeyCodeUpArrow = 126;
// Any other key: the backend gives 0xFFFF unless it knows a better number.
inline constexpr std::uint16_t ZelKeyCodeUnknown = 0xFFFF;

// Function-key characters (code points) the arrow keys deliver.
inline constexpr char16_t ZelUpArrowFunctionKey = 0xF700;
inline constexpr char16_t ZelDownArrowFunctionKey = 0xF701;
inline constexpr char16_t ZelLeftArrowFunctionKey = 0xF702;
inline constexpr char16_t ZelRightArrowFunctionKey = 0xF703;

// The UTF-8 text of one code point (for building key characters).
std::string ZelUTF8FromCodePoint(char32_t c);
// The first code point of a UTF-8 string (0 for an empty or broken one).
char32_t ZelFirstCodePoint(const std::string& utf8);

struct ZelEvent {
  ZelEventType type = ZelEventType::LeftMouseDown;
  CGPoint locationInWindow;  // mouse and scroll events; the pointer's last position otherwise
  ZelEventModifierFlags modifierFlags = 0;
  double timestamp = 0;  // seconds on the run loop's clock
  int clickCount = 0;    // mouse down/up: 1, 2 for a double click ...

  // Keys. `characters` is the text the key produces with its modifiers,
  // `charactersIgnoringModifiers` without them except Shift (an upper-case
  // letter means Shift is held), both UTF-8; arrows carry U+F700...U+F703.
  std::string characters;
  std::string charactersIgnoringModifiers;
  std::uint16_t keyCode = ZelKeyCodeUnknown;
  bool isARepeat = false;

  // Scroll wheel: line-based deltas (one notch = 1.0; no precise deltas and
  // no phases on this platform). Positive y scrolls up, positive x left.
  double scrollingDeltaX = 0, scrollingDeltaY = 0;
  bool hasPreciseScrollingDeltas() const { return false; }

  bool isMouseEvent() const;
  bool isKeyEvent() const { return type == ZelEventType::KeyDown || type == ZelEventType::KeyUp; }
  bool has(ZelEventModifierFlags flag) const { return (modifierFlags & flag) != 0; }

  // Builders for backends and tests.
  static ZelEvent mouse(ZelEventType type, CGPoint location, ZelEventModifierFlags flags = 0, int clickCount = 1);
  static ZelEvent scroll(CGPoint location, double deltaX, double deltaY, ZelEventModifierFlags flags = 0);
  // A key event whose characters are `characters` for both fields.
  static ZelEvent key(ZelEventType type, std::string characters, std::uint16_t keyCode = ZelKeyCodeUnknown,
                      ZelEventModifierFlags flags = 0);
  // An arrow key down: the function-key character, its key code and the
  // numeric-pad flag added to `flags`.
  static ZelEvent arrowKey(char16_t functionKey, ZelEventModifierFlags flags = 0);
  static ZelEvent flagsChanged(ZelEventModifierFlags flags);
};

ZEL_NAMESPACE_END
