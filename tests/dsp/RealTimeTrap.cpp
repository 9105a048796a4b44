#include "RealTimeTrap.h"

#include <dlfcn.h>
#include <pthread.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
// From the sanitizer runtime (its header is not always installed).
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, size_t),
                                                         void (*onFree)(const volatile void*));
#endif

namespace {

thread_local int tArmed = 0;
std::atomic<int> gViolations{0};

inline void caught() {
  if (tArmed) gViolations.fetch_add(1, std::memory_order_relaxed);
}

template <typename F>
F next(const char* name) {
  return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

using Lock = int (*)(pthread_mutex_t*);
using Wait = int (*)(pthread_cond_t*, pthread_mutex_t*);
using Sleep = int (*)(const timespec*, timespec*);
using Write = ssize_t (*)(int, const void*, size_t);
using Read = ssize_t (*)(int, void*, size_t);

// Looked up before main, while nothing is armed.
const Lock realLock = next<Lock>("pthread_mutex_lock");
const Lock realTryLock = next<Lock>("pthread_mutex_trylock");
const Wait realWait = next<Wait>("pthread_cond_wait");
const Sleep realSleep = next<Sleep>("nanosleep");
const Write realWrite = next<Write>("write");
const Read realRead = next<Read>("read");

#if defined(__SANITIZE_ADDRESS__)
// The sanitizer owns malloc; it reports to hooks instead.
void onMalloc(const volatile void*, size_t) { caught(); }
void onFree(const volatile void*) { caught(); }
const int gHooks = __sanitizer_install_malloc_and_free_hooks(onMalloc, onFree);
#endif

}  // namespace

extern "C" {

#if !defined(__SANITIZE_ADDRESS__)
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);

void* malloc(size_t n) {
  caught();
  return __libc_malloc(n);
}
void* calloc(size_t n, size_t size) {
  caught();
  return __libc_calloc(n, size);
}
void* realloc(void* p, size_t n) {
  caught();
  return __libc_realloc(p, n);
}
void free(void* p) {
  if (p) caught();
  __libc_free(p);
}
#endif

int pthread_mutex_lock(pthread_mutex_t* m) {
  caught();
  return (realLock ? realLock : next<Lock>("pthread_mutex_lock"))(m);
}
int pthread_mutex_trylock(pthread_mutex_t* m) {
  caught();
  return (realTryLock ? realTryLock : next<Lock>("pthread_mutex_trylock"))(m);
}
int pthread_cond_wait(pthread_cond_t* c, pthread_mutex_t* m) {
  caught();
  return (realWait ? realWait : next<Wait>("pthread_cond_wait"))(c, m);
}
int nanosleep(const timespec* t, timespec* left) {
  caught();
  return (realSleep ? realSleep : next<Sleep>("nanosleep"))(t, left);
}
ssize_t write(int fd, const void* data, size_t n) {
  caught();
  return (realWrite ? realWrite : next<Write>("write"))(fd, data, n);
}
ssize_t read(int fd, void* data, size_t n) {
  caught();
  return (realRead ? realRead : next<Read>("read"))(fd, data, n);
}

}  // extern "C"

namespace zel::dsptest {

namespace {
int gStart = 0;
}

RealTimeTrap::RealTimeTrap() {
  gStart = gViolations.load();
  ++tArmed;
}
RealTimeTrap::~RealTimeTrap() { --tArmed; }
int RealTimeTrap::violations() const { return gViolations.load() - gStart; }

}  // namespace zel::dsptest
