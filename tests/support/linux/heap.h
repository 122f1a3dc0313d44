#pragma once

#include <malloc.h>

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VELTO_SANITIZED_HEAP
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELTO_SANITIZED_HEAP
#endif
#ifdef VELTO_SANITIZED_HEAP
// Both sanitizers have it; GCC comes without the header that says so.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // NOLINT: their name
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
