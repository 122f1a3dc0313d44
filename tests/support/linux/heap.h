#pragma once

#include <malloc.h>

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// Both sanitizers have it; GCC comes without the header that says so.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // NOLINT: their name
#define VELTO_SANITIZED_HEAP
#endif

namespace velto {

/// Bytes in use on the heap of this process.
inline std::size_t heapInUse() {
#ifdef VELTO_SANITIZED_HEAP
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

}  // namespace velto
