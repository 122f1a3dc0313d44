#include "analysis/folders/number_text.h"

#include <fmt/format.h>

namespace velto::number_text {

/// FNV-1a of 64 bits.
std::string checksumOf(std::string_view content) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (const char character : content) {
        sum ^= static_cast<unsigned char>(character);
        sum *= 0x100000001B3;
    }
    return fmt::format("{:016x}", sum);
}

}  // namespace velto::number_text
