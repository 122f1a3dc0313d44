#include "platform/values/uuid.h"

#include <cstdint>
#include <random>

#include <fmt/format.h>

namespace velto {

std::string newUUID() {
    std::random_device source;
    const std::uint32_t time = source();
    const std::uint32_t version = (source() & 0xFFFF0FFF) | 0x00004000;
    const std::uint32_t variant = (source() & 0x3FFFFFFF) | 0x80000000;
    const std::uint32_t node = source();
    return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:04X}{:08X}", time, version >> 16,
                       version & 0xFFFF, variant >> 16, variant & 0xFFFF, node);
}

}  // namespace velto
