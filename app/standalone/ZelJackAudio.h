// The standalone app's sound: a JACK client that plays the live unit.
//
// open() never starts a server (JackNoStartServer): without one it fails
// with a reason and the app goes on without sound. Once running, the
// client has the unit's channel count of inputs and outputs ("in_1",
// "out_1", ...) and connects them to the system's physical capture and
// playback ports, or to the ports named instead.
//
// What the server does is followed off the audio thread: a new sample rate
// prepares a new unit on the main thread (ZelStandaloneUnit::setSampleRate),
// which the audio thread takes at its next block; a buffer size is noted
// (the unit takes any block size); xruns are counted; the server going away
// ends the client and tells the status handler. The JACK callbacks only set
// atomics and wake the run loop; service(), called by the app's event loop
// on the main thread, does the rest.
//
// Ownership: owns the JACK client; the unit and the run loop are not owned
// and must outlive it. close() (or the destructor) deactivates and closes
// the client before anything it plays goes.
// Threading: everything here is main thread, except the JACK callbacks in
// the .cpp file (the process callback on JACK's audio thread: no
// allocation, lock, wait or I/O).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/standalone/ZelStandaloneUnit.h"
#include "toolkit/foundation/ZelRunLoop.h"

ZEL_NAMESPACE_BEGIN

struct ZelJackOptions {
  std::string clientName = ZelCurrentProduct().name;  // the product's name; JACK makes it unique
  bool connectPhysical = true;        // to the system's capture and playback ports
  // Ports to connect instead of the physical ones: an input port feeds our
  // inputs in turn (one port: all of them); our outputs go to the output
  // ports in turn (one port: all of them go there).
  std::vector<std::string> connectIn, connectOut;
  bool measure = false;  // time every process call (statistics())
};

struct ZelJackStatistics {
  std::uint64_t blocks = 0, frames = 0, xruns = 0;
  double meanMicroseconds = 0, maxMicroseconds = 0;
  double sampleRate = 0;
  std::uint32_t bufferSize = 0;
};

class ZelJackAudio {
 public:
  // A running client, or nullptr with the reason in `error`.
  static std::unique_ptr<ZelJackAudio> open(ZelRunLoop& runLoop, ZelStandaloneUnit& unit,
                                            const ZelJackOptions& options, std::string& error);
  ~ZelJackAudio();
  ZelJackAudio(const ZelJackAudio&) = delete;
  ZelJackAudio& operator=(const ZelJackAudio&) = delete;

  // The client's name as the server made it unique ("Name", "Name-01").
  const std::string& clientName() const { return clientName_; }
  bool isRunning() const { return client_ != nullptr; }

  // Told once, on the main thread, when the server went away (its reason).
  void setShutdownHandler(std::function<void(const std::string& reason)> handler) {
    shutdownHandler_ = std::move(handler);
  }
  // Main thread: takes what the callbacks noted (a new rate, the server's
  // end) and frees units the audio thread put aside.
  void service();
  // Deactivates and closes the client (its ports go); idempotent.
  void close();

  ZelJackStatistics statistics() const;

  struct Callbacks;  // the JACK side (ZelJackAudio.cpp)

 private:
  ZelJackAudio(ZelRunLoop& runLoop, ZelStandaloneUnit& unit, const ZelJackOptions& options);
  bool start(std::string& error);
  void connectPorts();
  void watchLeftovers();

  ZelRunLoop& runLoop_;
  ZelStandaloneUnit& unit_;
  ZelJackOptions options_;
  struct Shared;  // what the callbacks and the main thread share
  std::unique_ptr<Shared> shared_;
  void* client_ = nullptr;  // jack_client_t*
  std::string clientName_;
  std::function<void(const std::string&)> shutdownHandler_;
};

ZEL_NAMESPACE_END
