// Memory of the runtime, with the new-handler protocol of operator new.
#pragma once

#include <cstddef>

#include "platform/base/export.h"

/// When memory runs out, the installed new handler is called and the allocation tried again;
/// without one std::bad_alloc is raised.
[[nodiscard]] OD_API void* odrxAlloc(std::size_t bytes);
OD_API void odrxFree(void* memory) noexcept;
