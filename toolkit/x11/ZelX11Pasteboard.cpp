#include "toolkit/x11/ZelX11Pasteboard.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>

#include "toolkit/core/ZelEvent.h"

ZEL_NAMESPACE_BEGIN

namespace {

constexpr std::size_t kDefaultChunk = 256 * 1024;
// Room for the request's own header in a ChangeProperty.
constexpr std::size_t kRequestOverhead = 64;
// A paste larger than this is refused (no text) rather than buffered.
constexpr std::size_t kMaxPasteBytes = 64 * 1024 * 1024;
// A requestor that stops taking chunks is dropped after this long.
constexpr double kTransferTimeout = 5.0;

std::string latin1FromUTF8(const std::string& utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    std::size_t length = 1;
    unsigned char b = static_cast<unsigned char>(utf8[i]);
    if (b >= 0xF0) length = 4;
    else if (b >= 0xE0) length = 3;
    else if (b >= 0xC0) length = 2;
    char32_t c = ZelFirstCodePoint(utf8.substr(i, length));
    out += c != 0 && c < 0x100 ? static_cast<char>(c) : '?';
    i += length;
  }
  return out;
}

std::string utf8FromLatin1(const std::string& latin1) {
  std::string out;
  out.reserve(latin1.size());
  for (char c : latin1) out += ZelUTF8FromCodePoint(static_cast<unsigned char>(c));
  return out;
}

}  // namespace

ZelX11Pasteboard::ZelX11Pasteboard(ZelX11Connection& connection, ZelX11Id window, ZelRunLoop& runLoop)
    : connection_(connection), window_(window), runLoop_(runLoop), chunk_(kDefaultChunk) {
  setChunkSize(kDefaultChunk);
}

ZelX11Pasteboard::~ZelX11Pasteboard() { runLoop_.cancelAllForTarget(this); }

void ZelX11Pasteboard::setChunkSize(std::size_t bytes) {
  std::size_t limit = connection_.maxRequestBytes() - kRequestOverhead;
  chunk_ = std::clamp<std::size_t>(bytes, 1, limit);
}

// ---- Owner.

void ZelX11Pasteboard::setString(const std::string& text) {
  Display* d = connection_.display();
  text_ = std::make_shared<const std::string>(text);
  ownedSince_ = eventTime_;
  XSetSelectionOwner(d, connection_.atoms().clipboard, window_, eventTime_);
  owned_ = XGetSelectionOwner(d, connection_.atoms().clipboard) == window_;
  XFlush(d);
}

void ZelX11Pasteboard::loseOwnership() {
  owned_ = false;
  text_.reset();  // running transfers keep their own reference
}

bool ZelX11Pasteboard::isTextTarget(ZelX11Id target) const {
  const ZelX11Atoms& a = connection_.atoms();
  return target == a.utf8String || target == a.textPlain || target == a.textPlainUTF8 || target == a.string;
}

void ZelX11Pasteboard::answerRequest(const XEvent& event) {
  const XSelectionRequestEvent& request = event.xselectionrequest;
  // Obsolete clients give no property: the target's name is used instead.
  ZelX11Id property = request.property != None ? request.property : request.target;
  bool ours = owned_ && request.selection == connection_.atoms().clipboard;
  XEvent reply{};
  reply.xselection.type = SelectionNotify;
  reply.xselection.requestor = request.requestor;
  reply.xselection.selection = request.selection;
  reply.xselection.target = request.target;
  reply.xselection.time = request.time;
  reply.xselection.property = ours ? writeTarget(request.requestor, property, request.target) : None;
  XSendEvent(connection_.display(), request.requestor, False, NoEventMask, &reply);
  XFlush(connection_.display());
}

// Writes the target's content to the requestor's property; the property to
// report, or None when the target is not offered.
ZelX11Id ZelX11Pasteboard::writeTarget(ZelX11Id requestor, ZelX11Id property, ZelX11Id target) {
  Display* d = connection_.display();
  const ZelX11Atoms& a = connection_.atoms();
  if (target == a.targets) {
    writeTargets(requestor, property);
  } else if (target == a.timestamp) {
    long time = static_cast<long>(ownedSince_);
    XChangeProperty(d, requestor, property, XA_INTEGER, 32, PropModeReplace, reinterpret_cast<unsigned char*>(&time), 1);
  } else if (!isTextTarget(target) || !writeText(requestor, property, target)) {
    return None;
  }
  return property;
}

void ZelX11Pasteboard::writeTargets(ZelX11Id requestor, ZelX11Id property) {
  const ZelX11Atoms& a = connection_.atoms();
  Atom offered[] = {a.targets, a.timestamp, a.utf8String, a.textPlainUTF8, a.textPlain, a.string};
  XChangeProperty(connection_.display(), requestor, property, XA_ATOM, 32, PropModeReplace,
                  reinterpret_cast<unsigned char*>(offered), static_cast<int>(std::size(offered)));
}

bool ZelX11Pasteboard::writeText(ZelX11Id requestor, ZelX11Id property, ZelX11Id target) {
  Display* d = connection_.display();
  const ZelX11Atoms& a = connection_.atoms();
  auto data = target == a.string ? std::make_shared<const std::string>(latin1FromUTF8(*text_)) : text_;
  ZelX11Id type = target == a.string ? XA_STRING : target;
  if (data->size() <= chunk_) {
    XChangeProperty(d, requestor, property, type, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(data->data()), static_cast<int>(data->size()));
    return true;
  }
  // Too large for one request: announce the size, then send a chunk each
  // time the requestor deletes the property.
  endTransfer(requestor, property);
  XSelectInput(d, requestor, PropertyChangeMask);
  long size = static_cast<long>(data->size());
  XChangeProperty(d, requestor, property, a.incr, 32, PropModeReplace, reinterpret_cast<unsigned char*>(&size), 1);
  transfers_.push_back(Transfer{requestor, property, type, std::move(data), 0, false, 0});
  ++incrementalCopies_;
  armTransferTimeout(transfers_.back());
  return true;
}

void ZelX11Pasteboard::continueTransfer(ZelX11Id requestor, ZelX11Id property) {
  for (Transfer& t : transfers_) {
    if (t.requestor != requestor || t.property != property) continue;
    if (t.finished) {
      endTransfer(requestor, property);
    } else {
      sendChunk(t);
      armTransferTimeout(t);
    }
    XFlush(connection_.display());
    return;
  }
}

// The last chunk is empty: it tells the requestor the transfer is over.
void ZelX11Pasteboard::sendChunk(Transfer& t) {
  std::size_t n = std::min(chunk_, t.data->size() - t.offset);
  XChangeProperty(connection_.display(), t.requestor, t.property, t.type, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(t.data->data() + t.offset), static_cast<int>(n));
  t.offset += n;
  t.finished = n == 0;
}

void ZelX11Pasteboard::endTransfer(ZelX11Id requestor, ZelX11Id property) {
  auto it = std::find_if(transfers_.begin(), transfers_.end(),
                         [&](const Transfer& t) { return t.requestor == requestor && t.property == property; });
  if (it == transfers_.end()) return;
  runLoop_.cancel(it->timeout);
  transfers_.erase(it);
  bool stillWatched = std::any_of(transfers_.begin(), transfers_.end(),
                                  [&](const Transfer& t) { return t.requestor == requestor; });
  if (!stillWatched) XSelectInput(connection_.display(), requestor, NoEventMask);
}

void ZelX11Pasteboard::armTransferTimeout(Transfer& t) {
  if (t.timeout) runLoop_.cancel(t.timeout);
  ZelX11Id requestor = t.requestor, property = t.property;
  t.timeout = runLoop_.schedule(
      kTransferTimeout, [this, requestor, property] { endTransfer(requestor, property); },
      ZelCallKey{this, "transferTimeout"});
}

// ---- Requestor.

void ZelX11Pasteboard::requestString(StringCallback callback) {
  if (owned_ && text_) {
    runLoop_.schedule(0, [callback = std::move(callback), text = *text_] { callback(text); },
                      ZelCallKey{this, "answer"});
    return;
  }
  waiting_.push_back(std::move(callback));
  if (incoming_ != Incoming::Idle) return;  // the answer in progress serves everyone
  received_.clear();
  convert(connection_.atoms().utf8String);
}

void ZelX11Pasteboard::convert(ZelX11Id target) {
  Display* d = connection_.display();
  incoming_ = Incoming::Converting;
  askedTarget_ = target;
  XDeleteProperty(d, window_, connection_.atoms().selectionProperty);
  XConvertSelection(d, connection_.atoms().clipboard, target, connection_.atoms().selectionProperty, window_,
                    eventTime_);
  XFlush(d);
  armRequestTimeout();
}

void ZelX11Pasteboard::armRequestTimeout() {
  if (requestTimeout_) runLoop_.cancel(requestTimeout_);
  requestTimeout_ = runLoop_.schedule(
      timeout_,
      [this] {
        requestTimeout_ = 0;
        finish(std::nullopt);
      },
      ZelCallKey{this, "requestTimeout"});
}

// Reads and deletes our property (deleting it is what asks an incremental
// sender for the next chunk). False when it holds nothing readable.
bool ZelX11Pasteboard::readProperty(std::string& bytes, ZelX11Id& type) {
  Atom actualType = None;
  int format = 0;
  unsigned long items = 0, after = 0;
  unsigned char* data = nullptr;
  int status = XGetWindowProperty(connection_.display(), window_, connection_.atoms().selectionProperty, 0,
                                  static_cast<long>(kMaxPasteBytes / 4), True, AnyPropertyType, &actualType,
                                  &format, &items, &after, &data);
  bool ok = status == Success && actualType != None;
  if (ok && format == 8) bytes.assign(reinterpret_cast<const char*>(data), items);
  else bytes.clear();
  type = actualType;
  if (data) XFree(data);
  return ok && (format == 8 || actualType == connection_.atoms().incr);
}

void ZelX11Pasteboard::receiveNotify(const XEvent& event) {
  const XSelectionEvent& notify = event.xselection;
  if (incoming_ != Incoming::Converting || notify.selection != connection_.atoms().clipboard) return;
  if (notify.property == None) {
    // No UTF-8 on offer: ask once more for plain Latin-1 text.
    if (askedTarget_ == connection_.atoms().utf8String) convert(connection_.atoms().string);
    else finish(std::nullopt);
    return;
  }
  std::string bytes;
  ZelX11Id type = None;
  if (!readProperty(bytes, type)) return finish(std::nullopt);
  if (type == connection_.atoms().incr) {
    incoming_ = Incoming::Incremental;  // the delete above started the transfer
    XFlush(connection_.display());
    armRequestTimeout();
    return;
  }
  finish(type == XA_STRING ? utf8FromLatin1(bytes) : bytes);
}

void ZelX11Pasteboard::receiveChunk() {
  std::string bytes;
  ZelX11Id type = None;
  if (!readProperty(bytes, type)) return;
  XFlush(connection_.display());
  if (bytes.empty()) {
    ++incrementalPastes_;
    return finish(receivedType_ == XA_STRING ? utf8FromLatin1(received_) : received_);
  }
  if (received_.size() + bytes.size() > kMaxPasteBytes) return finish(std::nullopt);
  if (received_.empty()) receivedType_ = type;
  received_ += bytes;
  armRequestTimeout();
}

void ZelX11Pasteboard::finish(std::optional<std::string> answer) {
  if (requestTimeout_) runLoop_.cancel(requestTimeout_);
  requestTimeout_ = 0;
  incoming_ = Incoming::Idle;
  received_.clear();
  received_.shrink_to_fit();
  std::vector<StringCallback> callbacks;
  callbacks.swap(waiting_);
  auto shared = std::make_shared<const std::optional<std::string>>(std::move(answer));
  for (StringCallback& cb : callbacks) {
    runLoop_.schedule(0, [cb = std::move(cb), shared] { cb(*shared); }, ZelCallKey{this, "answer"});
  }
}

// ---- Events.

bool ZelX11Pasteboard::handleEvent(const XEvent& event) {
  switch (event.type) {
    case SelectionRequest:
      answerRequest(event);
      return true;
    case SelectionClear:
      if (event.xselectionclear.window != window_) return false;
      if (event.xselectionclear.selection == connection_.atoms().clipboard) loseOwnership();
      return true;
    case SelectionNotify:
      if (event.xselection.requestor != window_) return false;
      receiveNotify(event);
      return true;
    case PropertyNotify:
      return handlePropertyEvent(event);
    default:
      return false;
  }
}

bool ZelX11Pasteboard::handlePropertyEvent(const XEvent& event) {
  const XPropertyEvent& p = event.xproperty;
  if (p.window == window_) {
    if (p.atom != connection_.atoms().selectionProperty) return false;
    if (p.state == PropertyNewValue && incoming_ == Incoming::Incremental) receiveChunk();
    return true;
  }
  if (p.state == PropertyDelete) continueTransfer(p.window, p.atom);
  return true;
}

ZEL_NAMESPACE_END
