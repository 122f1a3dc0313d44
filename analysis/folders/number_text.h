#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace velto::number_text {

// Numbers and names one after another, as the files of a walk keep them: short, quick to read, and
// without a byte that is NUL.

inline constexpr std::uint64_t base = 127;  // a digit and one is never NUL

/// Lowest digit first, each with one added; the high bit says that another follows.
inline void append(std::string& text, std::uint64_t number) {
    std::array<char, 10> digits;  // 127 to the power of ten is more than any number
    char* end = digits.data();
    for (; number >= base; number /= base)
        *end++ = static_cast<char>((number % base + 1) | 0x80);
    *end++ = static_cast<char>(number + 1);
    text.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

/// What is negative is kept as zero.
inline void append(std::string& text, std::int64_t number) {
    append(text, number < 0 ? std::uint64_t{0} : static_cast<std::uint64_t>(number));
}

inline void appendText(std::string& text, std::string_view part) {
    append(text, std::uint64_t{part.size()});
    text += part;
}

inline constexpr std::size_t checksumLength = 16;

/// Of any content, in hexadecimal digits: no change of a single byte leaves it as it was.
std::string checksumOf(std::string_view content);

/// Takes what `append` has written off the front. What is not as it should be is remembered, and
/// from then on everything reads as zero.
class Reader {
public:
    explicit Reader(std::string_view content) : rest_(content) {}

    std::uint64_t number(std::uint64_t most) {
        std::uint64_t result = 0;
        std::uint64_t weight = 1;
        while (isGood_) {
            if (rest_.empty()) return fail();
            const auto byte = static_cast<unsigned char>(rest_.front());
            rest_.remove_prefix(1);
            const std::uint64_t digit = byte & 0x7F;
            std::uint64_t part = 0;
            if (digit == 0 || __builtin_mul_overflow(digit - 1, weight, &part) ||
                __builtin_add_overflow(result, part, &result) || result > most) {
                return fail();
            }
            if ((byte & 0x80) == 0) return result;
            if (__builtin_mul_overflow(weight, base, &weight)) return fail();
        }
        return 0;
    }

    template <typename Number>
    Number number() {
        return static_cast<Number>(
            number(static_cast<std::uint64_t>(std::numeric_limits<Number>::max())));
    }

    std::string_view text(std::size_t length) {
        if (length > rest_.size()) return fail(), std::string_view();
        const std::string_view text = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return text;
    }
    std::string_view text() { return text(number<std::uint32_t>()); }

    std::size_t left() const { return rest_.size(); }
    bool isGood() const { return isGood_; }
    std::uint64_t fail() {
        isGood_ = false;
        return 0;
    }

private:
    std::string_view rest_;
    bool isGood_ = true;
};

}  // namespace velto::number_text
