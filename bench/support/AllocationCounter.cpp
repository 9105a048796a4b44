#include "bench/support/AllocationCounter.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> gAllocations{0};
}  // namespace

ZEL_NAMESPACE_BEGIN
std::size_t ZelAllocationCount() { return gAllocations.load(); }
ZEL_NAMESPACE_END

void* operator new(std::size_t n) {
  gAllocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(n ? n : 1)) return p;
  throw std::bad_alloc();
}
// The replacement pairs malloc with free by construction.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
#pragma GCC diagnostic pop
