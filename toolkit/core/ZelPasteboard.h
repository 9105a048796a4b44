// The clipboard as the editor sees it: plain text in, plain text out. Reading
// never blocks the UI: the answer arrives later, through the run loop (on X11
// the selection owner may be another process that takes its time).
//
// Threading: main thread only. Callbacks run on the main thread from the run
// loop, never inside the call that asked.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

class ZelRunLoop;

class ZelPasteboard {
 public:
  // The clipboard's text, or nothing when it holds no text (or the owner
  // did not answer).
  using StringCallback = std::function<void(std::optional<std::string>)>;

  virtual ~ZelPasteboard() = default;
  // Empties the clipboard and makes `text` its content (we become the owner).
  virtual void setString(const std::string& text) = 0;
  // Asks for the clipboard's text; `callback` runs later from the run loop,
  // exactly once, unless the pasteboard is destroyed first.
  virtual void requestString(StringCallback callback) = 0;
};

// A clipboard inside the process (offscreen use and tests). Answers through
// the given run loop, which must outlive it; pending answers are cancelled
// when it is destroyed.
class ZelMemoryPasteboard final : public ZelPasteboard {
 public:
  explicit ZelMemoryPasteboard(ZelRunLoop& runLoop);
  ~ZelMemoryPasteboard() override;
  ZelMemoryPasteboard(const ZelMemoryPasteboard&) = delete;
  ZelMemoryPasteboard& operator=(const ZelMemoryPasteboard&) = delete;

  void setString(const std::string& text) override;
  void requestString(StringCallback callback) override;
  // Empties the clipboard (a request then answers nothing).
  void clear() { content_.reset(); }
  // What it holds now, synchronously (for tests and the scripted driver).
  const std::optional<std::string>& content() const { return content_; }

 private:
  ZelRunLoop& runLoop_;
  std::optional<std::string> content_;
};

ZEL_NAMESPACE_END
