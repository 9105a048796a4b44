// Reads key events on one window: through an input method context when the
// X input method opens (compose sequences, dead keys, other scripts), else
// through XLookupString. Synthetic events (hosts forward keys with
// XSendEvent) are read like any other.
//
// Ownership: owned by the window host; the display and the window must
// outlive it. Threading: the host's thread.
#pragma once

#include "toolkit/x11/ZelX11Connection.h"
#include "toolkit/x11/ZelX11KeyMapping.h"

union _XEvent;
typedef struct _XIM* XIM;
typedef struct _XIC* XIC;

ZEL_NAMESPACE_BEGIN

class ZelX11KeyboardReader {
 public:
  ZelX11KeyboardReader(_XDisplay* display, ZelX11Id window);
  ~ZelX11KeyboardReader();
  ZelX11KeyboardReader(const ZelX11KeyboardReader&) = delete;
  ZelX11KeyboardReader& operator=(const ZelX11KeyboardReader&) = delete;

  // Every event goes to the input method first; true when it took the event
  // (part of a compose sequence): the caller then drops it.
  bool filter(_XEvent& event);
  // Events the input method needs on our window besides our own.
  long filterEventMask() const;
  void setFocused(bool focused);
  bool usesInputMethod() const { return ic_ != nullptr; }

  // The key press or release as looked up (text, keysyms, state).
  ZelX11KeyInput read(_XEvent& keyEvent);

 private:
  void openInputMethod();
  void closeInputMethod();
  static void inputMethodDestroyed(XIM im, char* self, char* unused);
  std::string lookUpPress(_XEvent& event, unsigned long* keysym);
  std::string lookUpPlain(_XEvent& event, unsigned long* keysym);

  _XDisplay* display_;
  ZelX11Id window_;
  XIM im_ = nullptr;
  XIC ic_ = nullptr;
};

ZEL_NAMESPACE_END
