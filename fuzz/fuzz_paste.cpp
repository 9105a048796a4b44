// Pastes arbitrary text into the product's editor: the text goes to the
// clipboard and Ctrl+V reads it back (the keyboard handler's paste path).
// Whatever the text, every value sent to the host stays finite and inside
// its range (FuzzEditor.h checks), and the editor survives.
#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzEditor.h"

using namespace zel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::Editor* editor = new fuzz::Editor;  // one editor for the whole run
  editor->resetValues();
  editor->run(0.05);
  editor->platform.memoryPasteboard().setString(std::string(reinterpret_cast<const char*>(data), size));
  editor->window.sendEvent(ZelEvent::key(ZelEventType::KeyDown, "v", ZelKeyCodeUnknown, ZelEventModifierCommand));
  editor->run(0.05);
  editor->check();
  return 0;
}
