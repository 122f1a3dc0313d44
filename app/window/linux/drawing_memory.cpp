#include "app/window/linux/drawing_memory.h"

#include <malloc.h>

namespace velto::window {

// Where the processor draws, each frame takes a few pictures of the size of the window and frees
// them. The C library gives that much back to the system at once, and gets it anew page by page:
// that is more than a third of what a frame costs. By itself it would come to keep as much, but
// only after pictures twice as large (mallopt(3), the dynamic threshold).
void keepDrawingMemory() {
#ifdef __GLIBC__
    constexpr int largestPicture = 32 << 20;  // bytes; the most that the C library takes
    mallopt(M_MMAP_THRESHOLD, largestPicture);
    mallopt(M_TRIM_THRESHOLD, largestPicture);
#endif
}

}  // namespace velto::window
