// Types arbitrary keys into the product's editor: the first byte picks the
// control to focus, each following byte is one key (digits, ".", "-", "k",
// Return, Enter, Tab, the key left of 1, Delete, Escape, arrows, or any
// other character). Every value sent to the host stays finite and inside
// its range (FuzzEditor.h checks).
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzEditor.h"

using namespace zel;

namespace {

ZelEvent keyFor(std::uint8_t byte) {
  static constexpr std::array<char, 14> kChars = {'0', '1', '2', '5', '9', '.', '-', 'k', '3', '4', '6', '7', '8', 'e'};
  const auto key = [](std::string c, std::uint16_t code = ZelKeyCodeUnknown) {
    return ZelEvent::key(ZelEventType::KeyDown, std::move(c), code);
  };
  switch (byte % 24) {
    case 14: return key("\r", ZelKeyCodeReturn);
    case 15: return key("\x03", ZelKeyCodeKeypadEnter);
    case 16: return key("\t", ZelKeyCodeTab);
    case 17: return key("`", ZelKeyCodeGrave);
    case 18: return key("\x7f", ZelKeyCodeDelete);
    case 19: return key("\x1b", ZelKeyCodeEscape);
    case 20: return ZelEvent::arrowKey(ZelUpArrowFunctionKey, byte & 0x80 ? ZelEventModifierShift : 0);
    case 21: return ZelEvent::arrowKey(ZelDownArrowFunctionKey, byte & 0x80 ? ZelEventModifierCommand : 0);
    case 22: return key(std::string(1, char(byte)));
    case 23: return key("\xc3\xa9");
    default: return key(std::string(1, kChars[byte % 24]));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::Editor* editor = new fuzz::Editor;  // one editor for the whole run
  if (size == 0 || size > 256) return -1;
  editor->ui->focus().bringParameterControlIntoFocus(nullptr);
  editor->ui->keyboard().resetNumberBuffer();
  editor->resetValues();
  editor->run(0.05);
  const auto& controls = editor->ui->parameterControls();
  editor->ui->focus().bringParameterControlIntoFocus(controls[data[0] % controls.size()]);
  for (std::size_t i = 1; i < size; ++i) editor->window.sendEvent(keyFor(data[i]));
  editor->window.sendEvent(ZelEvent::key(ZelEventType::KeyDown, "\r", ZelKeyCodeReturn));
  editor->run(0.05);
  editor->check();
  return 0;
}
