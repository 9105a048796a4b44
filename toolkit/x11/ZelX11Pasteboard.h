// The X11 CLIPBOARD selection as the editor's pasteboard.
//
// As owner: setString takes the selection and answers other clients'
// requests for TARGETS, TIMESTAMP, UTF8_STRING, text/plain,
// text/plain;charset=utf-8 and STRING; a text above one transfer chunk goes
// out incrementally (INCR), one chunk each time the requestor deletes the
// property.
// As requestor: requestString converts the selection into a property on our
// window and returns at once; the answer (also INCR) is read as the events
// come in through the window host's pump and delivered through the run
// loop. An owner that does not answer within the timeout (1 s by default)
// gives "no text". While we own the selection a request answers our own
// text without asking the server.
//
// Ownership: owned by the window host, which feeds it its events
// (handleEvent); the connection, our window and the run loop must outlive
// it. Pending callbacks are dropped when it is destroyed.
// Threading: the host's thread only.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/core/ZelPasteboard.h"
#include "toolkit/foundation/ZelRunLoop.h"
#include "toolkit/x11/ZelX11Connection.h"

union _XEvent;

ZEL_NAMESPACE_BEGIN

class ZelX11Pasteboard final : public ZelPasteboard {
 public:
  ZelX11Pasteboard(ZelX11Connection& connection, ZelX11Id window, ZelRunLoop& runLoop);
  ~ZelX11Pasteboard() override;
  ZelX11Pasteboard(const ZelX11Pasteboard&) = delete;
  ZelX11Pasteboard& operator=(const ZelX11Pasteboard&) = delete;

  void setString(const std::string& text) override;
  void requestString(StringCallback callback) override;

  // Selection and property events; true when the event was ours.
  bool handleEvent(const _XEvent& event);
  // The server time of the latest user event (0: CurrentTime), used when
  // taking the selection and asking for it.
  void setEventTime(unsigned long time) { eventTime_ = time; }

  bool ownsClipboard() const { return owned_; }
  // How long an owner may take to answer (and a transfer to progress).
  void setTimeout(double seconds) { timeout_ = seconds; }
  // Bytes per property change; larger texts go out incrementally. The
  // default is 256 KiB, less when the server's requests are smaller.
  void setChunkSize(std::size_t bytes);
  std::size_t chunkSize() const { return chunk_; }
  // Outgoing incremental transfers still running.
  std::size_t activeTransfers() const { return transfers_.size(); }
  // Incremental transfers started as owner and completed as requestor.
  std::size_t incrementalCopies() const { return incrementalCopies_; }
  std::size_t incrementalPastes() const { return incrementalPastes_; }

 private:
  struct Transfer {
    ZelX11Id requestor, property, type;
    std::shared_ptr<const std::string> data;
    std::size_t offset;
    bool finished;  // the closing empty chunk went out
    ZelRunLoop::Handle timeout;
  };
  enum class Incoming { Idle, Converting, Incremental };

  // Owner side.
  void answerRequest(const _XEvent& event);
  ZelX11Id writeTarget(ZelX11Id requestor, ZelX11Id property, ZelX11Id target);
  void writeTargets(ZelX11Id requestor, ZelX11Id property);
  bool writeText(ZelX11Id requestor, ZelX11Id property, ZelX11Id target);
  void continueTransfer(ZelX11Id requestor, ZelX11Id property);
  void sendChunk(Transfer& transfer);
  void endTransfer(ZelX11Id requestor, ZelX11Id property);
  void armTransferTimeout(Transfer& transfer);
  void loseOwnership();
  bool isTextTarget(ZelX11Id target) const;

  // Requestor side.
  void convert(ZelX11Id target);
  void receiveNotify(const _XEvent& event);
  void receiveChunk();
  bool handlePropertyEvent(const _XEvent& event);
  bool readProperty(std::string& bytes, ZelX11Id& type);
  void finish(std::optional<std::string> answer);
  void armRequestTimeout();

  ZelX11Connection& connection_;
  ZelX11Id window_;
  ZelRunLoop& runLoop_;
  unsigned long eventTime_ = 0;
  double timeout_ = 1.0;
  std::size_t chunk_;

  bool owned_ = false;
  unsigned long ownedSince_ = 0;
  std::shared_ptr<const std::string> text_;
  std::vector<Transfer> transfers_;

  Incoming incoming_ = Incoming::Idle;
  ZelX11Id askedTarget_ = 0;
  std::string received_;
  ZelX11Id receivedType_ = 0;
  std::vector<StringCallback> waiting_;
  ZelRunLoop::Handle requestTimeout_ = 0;
  std::size_t incrementalCopies_ = 0, incrementalPastes_ = 0;
};

ZEL_NAMESPACE_END
