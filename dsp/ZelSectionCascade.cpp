#include "dsp/ZelSectionCascade.h"

ZEL_DSP_NAMESPACE_BEGIN

namespace {
#define ZEL_CASCADE_WIDTH 2
#include "dsp/ZelSectionCascadeKernel.inc"
}  // namespace

#if defined(__x86_64__) && defined(ZEL_CASCADE_AVX2)
// Built in ZelSectionCascadeAvx2.cpp.
void ZelRunCascadeAvx2(const ZelCascadeSection* from, const ZelCascadeSection* to, int count,
                       ZelCascadeState* states, int channels, float* const* x, int n);

namespace {
bool hasAvx2() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
}
const bool kAvx2 = hasAvx2();
}  // namespace

void ZelRunCascade(const ZelCascadeSection* from, const ZelCascadeSection* to, int count,
                   ZelCascadeState* states, int channels, float* const* x, int n) {
  if (kAvx2) ZelRunCascadeAvx2(from, to, count, states, channels, x, n);
  else runCascade(from, to, count, states, channels, x, n);
}
#else
void ZelRunCascade(const ZelCascadeSection* from, const ZelCascadeSection* to, int count,
                   ZelCascadeState* states, int channels, float* const* x, int n) {
  runCascade(from, to, count, states, channels, x, n);
}
#endif

ZEL_DSP_NAMESPACE_END
