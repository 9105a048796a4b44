#include "toolkit/core/ZelPasteboard.h"

#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

ZelMemoryPasteboard::ZelMemoryPasteboard(ZelRunLoop& runLoop) : runLoop_(runLoop) {}

ZelMemoryPasteboard::~ZelMemoryPasteboard() { runLoop_.cancelAllForTarget(this); }

void ZelMemoryPasteboard::setString(const std::string& text) { content_ = text; }

// The answer is what the clipboard holds when asked, delivered on the next
// turn of the run loop, as a selection owner's reply would be.
void ZelMemoryPasteboard::requestString(StringCallback callback) {
  runLoop_.schedule(
      0, [callback = std::move(callback), answer = content_]() { callback(answer); },
      ZelCallKey{this, "requestString"});
}

ZEL_NAMESPACE_END
