// Counts the program's heap allocations, to show that a steady frame or an
// idle pump makes none. A benchmark that includes this header links
// bench/support/AllocationCounter.cpp, which replaces the global operator
// new (and its matching deletes) for the whole program.
#pragma once

#include <cstddef>

#include "toolkit/foundation/ZelNamespace.h"

ZEL_NAMESPACE_BEGIN

// How many times operator new has run so far; any thread may ask.
std::size_t ZelAllocationCount();

ZEL_NAMESPACE_END
