#include "analysis/folders/number_text.h"

#include <cstdint>
#include <cstring>

#include <fmt/format.h>

namespace velto::number_text {
namespace {

constexpr std::size_t wordLength = 8;

/// Up to eight bytes as the machine has them in a number (no file leaves it), and zeros behind.
std::uint64_t wordOf(const char* bytes, std::size_t count) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, count);
    return word;
}

/// Every step leads from two sums to two sums, and from two words to two sums.
std::uint64_t mixed(std::uint64_t sum, std::uint64_t word) {
    sum = (sum ^ word) * 0x9E3779B97F4A7C15;  // odd: the golden ratio's 64 bits
    return sum ^ sum >> 32;
}

}  // namespace

std::string checksumOf(std::string_view content) {
    std::uint64_t sum = content.size();
    for (; content.size() >= wordLength; content.remove_prefix(wordLength))
        sum = mixed(sum, wordOf(content.data(), wordLength));
    return fmt::format("{:016x}", mixed(sum, wordOf(content.data(), content.size())));
}

}  // namespace velto::number_text
