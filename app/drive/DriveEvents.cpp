#include "app/drive/DriveEvents.h"

#include <string>

ZEL_NAMESPACE_BEGIN

namespace {

struct NamedKey {
  std::string_view name;
  char32_t character;
  std::uint16_t keyCode;
  bool numericPad;
};

constexpr NamedKey kNamedKeys[] = {
    {"return", U'\r', ZelKeyCodeReturn, false},
    {"enter", 0x03, ZelKeyCodeKeypadEnter, true},
    {"tab", U'\t', ZelKeyCodeTab, false},
    {"grave", U'`', ZelKeyCodeGrave, false},
    {"delete", 0x7F, ZelKeyCodeDelete, false},
    {"escape", 0x1B, ZelKeyCodeEscape, false},
    {"up", ZelUpArrowFunctionKey, ZelKeyCodeUpArrow, true},
    {"down", ZelDownArrowFunctionKey, ZelKeyCodeDownArrow, true},
    {"left", ZelLeftArrowFunctionKey, ZelKeyCodeLeftArrow, true},
    {"right", ZelRightArrowFunctionKey, ZelKeyCodeRightArrow, true},
};

bool isLetter(char32_t c) { return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z'); }
char32_t upper(char32_t c) { return c >= U'a' && c <= U'z' ? c - 32 : c; }

ZelEvent namedKeyEvent(const NamedKey& key, ZelEventModifierFlags modifiers) {
  // The grave key gives the tilde with Shift.
  const char32_t c = key.keyCode == ZelKeyCodeGrave && (modifiers & ZelEventModifierShift) ? U'~' : key.character;
  if (key.numericPad) modifiers |= ZelEventModifierNumericPad;
  return ZelEvent::key(ZelEventType::KeyDown, ZelUTF8FromCodePoint(c), key.keyCode, modifiers);
}

ZelEvent characterEvent(char32_t c, ZelEventModifierFlags modifiers) {
  if (isLetter(c) && (modifiers & ZelEventModifierShift)) c = upper(c);
  ZelEvent e = ZelEvent::key(ZelEventType::KeyDown, ZelUTF8FromCodePoint(c),
                             c == U'`' || c == U'~' ? ZelKeyCodeGrave : ZelKeyCodeUnknown, modifiers);
  if (isLetter(c) && (modifiers & ZelEventModifierCommand)) e.characters = std::string(1, static_cast<char>(c & 0x1F));
  return e;
}

// The one code point of `text`, or 0 when it holds none or more than one.
char32_t singleCodePoint(std::string_view text) {
  const std::string s(text);
  const char32_t c = ZelFirstCodePoint(s);
  if (c == 0 || ZelUTF8FromCodePoint(c).size() != s.size()) return 0;
  return c;
}

}  // namespace

std::optional<ZelEventModifierFlags> ZelDriveParseModifiers(std::string_view text) {
  ZelEventModifierFlags flags = 0;
  while (true) {
    const std::size_t comma = text.find(',');
    const std::string_view name = text.substr(0, comma);
    if (name == "shift") flags |= ZelEventModifierShift;
    else if (name == "ctrl") flags |= ZelEventModifierCommand;
    else if (name == "alt") flags |= ZelEventModifierOption;
    else return std::nullopt;
    if (comma == std::string_view::npos) return flags;
    text.remove_prefix(comma + 1);
  }
}

std::optional<ZelEvent> ZelDriveKeyEvent(std::string_view name, ZelEventModifierFlags modifiers) {
  for (const NamedKey& key : kNamedKeys)
    if (key.name == name) return namedKeyEvent(key, modifiers);
  const char32_t c = singleCodePoint(name);
  if (c == 0) return std::nullopt;
  return characterEvent(c, modifiers);
}

ZelEvent ZelDriveCharacterEvent(char32_t c) { return characterEvent(c, 0); }

ZelEvent ZelDriveKeyUp(const ZelEvent& down) {
  ZelEvent up = down;
  up.type = ZelEventType::KeyUp;
  return up;
}

ZEL_NAMESPACE_END
