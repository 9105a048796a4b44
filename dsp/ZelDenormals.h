// Flush-to-zero and denormals-are-zero for the life of a scope, restoring
// the caller's floating-point mode afterwards: the unit's recursive filters
// never crawl through subnormal numbers as a signal dies away.
// Threading: affects the calling thread only.
#pragma once

#include <cstdint>

#include "dsp/ZelDspNamespace.h"

ZEL_DSP_NAMESPACE_BEGIN

class ZelDenormalScope {
 public:
#if defined(__SSE__) || defined(__x86_64__)
  ZelDenormalScope() : saved_(__builtin_ia32_stmxcsr()) { __builtin_ia32_ldmxcsr(saved_ | 0x8040u); }
  ~ZelDenormalScope() { __builtin_ia32_ldmxcsr(saved_); }

 private:
  unsigned saved_;
#elif defined(__aarch64__)
  ZelDenormalScope() {
    __asm__ __volatile__("mrs %0, fpcr" : "=r"(saved_));
    const std::uint64_t flushing = saved_ | (1ull << 24);
    __asm__ __volatile__("msr fpcr, %0" : : "r"(flushing));
  }
  ~ZelDenormalScope() { __asm__ __volatile__("msr fpcr, %0" : : "r"(saved_)); }

 private:
  std::uint64_t saved_;
#else
  ZelDenormalScope() = default;
#endif

 public:
  ZelDenormalScope(const ZelDenormalScope&) = delete;
  ZelDenormalScope& operator=(const ZelDenormalScope&) = delete;
};

ZEL_DSP_NAMESPACE_END
