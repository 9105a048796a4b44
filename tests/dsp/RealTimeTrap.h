// Catches what the audio thread must never do: while a trap is armed on a
// thread, every heap allocation or release, mutex lock, condition wait,
// sleep and file read or write made on that thread is counted.
#pragma once

namespace zel::dsptest {

class RealTimeTrap {
 public:
  RealTimeTrap();   // arms the calling thread
  ~RealTimeTrap();  // disarms it
  RealTimeTrap(const RealTimeTrap&) = delete;
  RealTimeTrap& operator=(const RealTimeTrap&) = delete;

  // What was caught since this trap was armed.
  int violations() const;
};

}  // namespace zel::dsptest
