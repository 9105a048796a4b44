#include "toolkit/core/ZelEvent.h"

ZEL_NAMESPACE_BEGIN

std::string ZelUTF8FromCodePoint(char32_t c) {
  std::string s;
  if (c < 0x80) {
    s += static_cast<char>(c);
  } else if (c < 0x800) {
    s += static_cast<char>(0xC0 | (c >> 6));
    s += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    s += static_cast<char>(0xE0 | (c >> 12));
    s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    s += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    s += static_cast<char>(0xF0 | (c >> 18));
    s += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    s += static_cast<char>(0x80 | (c & 0x3F));
  }
  return s;
}

char32_t ZelFirstCodePoint(const std::string& utf8) {
  if (utf8.empty()) return 0;
  auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  unsigned char b0 = byte(0);
  int extra = b0 < 0x80 ? 0 : (b0 >> 5) == 0x6 ? 1 : (b0 >> 4) == 0xE ? 2 : (b0 >> 3) == 0x1E ? 3 : -1;
  if (extra < 0 || utf8.size() < static_cast<std::size_t>(extra) + 1) return 0;
  char32_t c = extra == 0 ? b0 : b0 & (0x3F >> extra);
  for (int i = 1; i <= extra; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    c = (c << 6) | (byte(i) & 0x3F);
  }
  return c;
}

bool ZelEvent::isMouseEvent() const {
  switch (type) {
    case ZelEventType::LeftMouseDown:
    case ZelEventType::LeftMouseDragged:
    case ZelEventType::LeftMouseUp:
    case ZelEventType::RightMouseDown:
    case ZelEventType::RightMouseUp:
    case ZelEventType::MouseMoved:
      return true;
    default:
      return false;
  }
}

ZelEvent ZelEvent::mouse(ZelEventType type, CGPoint location, ZelEventModifierFlags flags, int clickCount) {
  ZelEvent e;
  e.type = type;
  e.locationInWindow = location;
  e.modifierFlags = flags;
  e.clickCount = clickCount;
  return e;
}

ZelEvent ZelEvent::scroll(CGPoint location, double deltaX, double deltaY, ZelEventModifierFlags flags) {
  ZelEvent e;
  e.type = ZelEventType::ScrollWheel;
  e.locationInWindow = location;
  e.scrollingDeltaX = deltaX;
  e.scrollingDeltaY = deltaY;
  e.modifierFlags = flags;
  return e;
}

ZelEvent ZelEvent::key(ZelEventType type, std::string characters, std::uint16_t keyCode,
                       ZelEventModifierFlags flags) {
  ZelEvent e;
  e.type = type;
  e.characters = characters;
  e.charactersIgnoringModifiers = std::move(characters);
  e.keyCode = keyCode;
  e.modifierFlags = flags;
  return e;
}

ZelEvent ZelEvent::arrowKey(char16_t functionKey, ZelEventModifierFlags flags) {
  std::uint16_t code = ZelKeyCodeUnknown;
  switch (functionKey) {
    case ZelUpArrowFunctionKey: code = ZelKeyCodeUpArrow; break;
    case ZelDownArrowFunctionKey: code = ZelKeyCodeDownArrow; break;
    case ZelLeftArrowFunctionKey: code = ZelKeyCodeLeftArrow; break;
    case ZelRightArrowFunctionKey: code = ZelKeyCodeRightArrow; break;
    default: break;
  }
  return key(ZelEventType::KeyDown, ZelUTF8FromCodePoint(functionKey), code, flags | ZelEventModifierNumericPad);
}

ZelEvent ZelEvent::flagsChanged(ZelEventModifierFlags flags) {
  ZelEvent e;
  e.type = ZelEventType::FlagsChanged;
  e.modifierFlags = flags;
  return e;
}

ZEL_NAMESPACE_END
