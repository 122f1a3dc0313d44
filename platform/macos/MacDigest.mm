#include <CommonCrypto/CommonDigest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "platform/Digest.h"

// MD5 only tells equal files apart from others; nothing is protected by it.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"

namespace velto {
namespace {

struct Md5 {
    using Context = CC_MD5_CTX;
    static constexpr std::size_t size = CC_MD5_DIGEST_LENGTH;
    static constexpr auto start = CC_MD5_Init;
    static constexpr auto add = CC_MD5_Update;
    static constexpr auto end = CC_MD5_Final;
};

struct Sha256 {
    using Context = CC_SHA256_CTX;
    static constexpr std::size_t size = CC_SHA256_DIGEST_LENGTH;
    static constexpr auto start = CC_SHA256_Init;
    static constexpr auto add = CC_SHA256_Update;
    static constexpr auto end = CC_SHA256_Final;
};

template <typename Algorithm>
class MacDigest final : public Digest {
public:
    MacDigest() { Algorithm::start(&context_); }

    void update(std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {  // the length is a 32-bit number there
            const auto part = bytes.first(
                std::min<std::size_t>(bytes.size(), std::numeric_limits<CC_LONG>::max()));
            Algorithm::add(&context_, part.data(), static_cast<CC_LONG>(part.size()));
            bytes = bytes.subspan(part.size());
        }
    }

    std::string finish() override {
        std::string text = endOf(context_);
        Algorithm::start(&context_);
        return text;
    }

    std::string soFar() const override {
        typename Algorithm::Context copy = context_;
        return endOf(copy);
    }

private:
    static std::string endOf(typename Algorithm::Context& context) {
        std::array<unsigned char, Algorithm::size> digest;
        Algorithm::end(digest.data(), &context);
        std::string text;
        for (const unsigned char byte : digest) {
            text += digits[byte >> 4];
            text += digits[byte & 0xF];
        }
        return text;
    }

    static constexpr std::string_view digits = "0123456789abcdef";

    typename Algorithm::Context context_;
};

}  // namespace

std::unique_ptr<Digest> makeDigest(DigestKind kind) {
    if (kind == DigestKind::md5) return std::make_unique<MacDigest<Md5>>();
    return std::make_unique<MacDigest<Sha256>>();
}

}  // namespace velto
