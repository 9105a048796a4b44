// The scripted driver's input words turned into the events a real keyboard
// and mouse would give the window: modifier lists ("shift,ctrl,alt"), key
// names ("a", "return", "up" ...) and typed characters.
//
// Pure functions over plain values; any thread.
#pragma once

#include <optional>
#include <string_view>

#include "toolkit/core/ZelEvent.h"

ZEL_NAMESPACE_BEGIN

// "shift", "ctrl", "alt" separated by commas (ctrl is the Command flag, alt
// the Option flag); none for an unknown or empty name.
std::optional<ZelEventModifierFlags> ZelDriveParseModifiers(std::string_view text);

// The key-down event for `name`: one character (UTF-8), or return, enter,
// tab, grave, delete, escape, up, down, left, right; none for another name.
// As on this platform: Shift upper-cases letters, Ctrl turns a letter's
// characters into its control character while the characters ignoring
// modifiers keep the letter, the arrows carry their function-key
// characters and the numeric-pad flag, the keypad's enter has it too.
std::optional<ZelEvent> ZelDriveKeyEvent(std::string_view name, ZelEventModifierFlags modifiers);

// The key-down event of one typed character, without modifiers.
ZelEvent ZelDriveCharacterEvent(char32_t c);

// The matching key-up of a key-down event.
ZelEvent ZelDriveKeyUp(const ZelEvent& down);

ZEL_NAMESPACE_END
