// Memory of the runtime.
#include "platform/rx/alloc.h"

#include <new>

void* odrxAlloc(std::size_t bytes) { return ::operator new(bytes); }

void odrxFree(void* memory) noexcept { ::operator delete(memory); }
