#include <cstddef>
#include <cstdint>

#include "fuzz/engine/Target.h"

/// What libFuzzer calls, again and again, with inputs of its making.
extern "C" __attribute__((visibility("default"))) int LLVMFuzzerTestOneInput(
    const std::uint8_t* data, std::size_t size) {
    velto::fuzz::targets().front().run({reinterpret_cast<const char*>(data), size});
    return 0;
}
