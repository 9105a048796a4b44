// The cascade's kernel for processors with AVX2 and FMA, four lanes a
// vector (this file is built with -mavx2 -mfma; ZelRunCascade calls it only
// where they exist).
#include "dsp/ZelSectionCascade.h"

#if defined(__x86_64__) && defined(ZEL_CASCADE_AVX2)

ZEL_DSP_NAMESPACE_BEGIN

namespace {
#define ZEL_CASCADE_WIDTH 4
#include "dsp/ZelSectionCascadeKernel.inc"
}  // namespace

void ZelRunCascadeAvx2(const ZelCascadeSection* from, const ZelCascadeSection* to, int count,
                       ZelCascadeState* states, int channels, float* const* x, int n) {
  runCascade(from, to, count, states, channels, x, n);
}

ZEL_DSP_NAMESPACE_END

#endif
