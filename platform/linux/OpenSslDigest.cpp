#include <openssl/evp.h>

#include <array>
#include <cstdlib>
#include <iterator>
#include <stdexcept>

#include <fmt/format.h>

#include "platform/Digest.h"

namespace velto {
namespace {

class OpenSslDigest final : public Digest {
public:
    explicit OpenSslDigest(const EVP_MD* algorithm)
        : algorithm_(algorithm), context_(EVP_MD_CTX_new(), &EVP_MD_CTX_free) {
        start();
    }

    void update(std::span<const std::byte> bytes) override {
        require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
    }

    std::string finish() override {
        std::array<unsigned char, EVP_MAX_MD_SIZE> value;
        unsigned length = 0;
        require(EVP_DigestFinal_ex(context_.get(), value.data(), &length));
        start();
        std::string text;
        text.reserve(2 * length);
        for (unsigned index = 0; index < length; ++index) {
            fmt::format_to(std::back_inserter(text), "{:02x}", value[index]);
        }
        return text;
    }

private:
    void start() { require(EVP_DigestInit_ex(context_.get(), algorithm_, nullptr)); }

    static void require(int succeeded) {
        // Only a library without the algorithm fails here (a restricted build).
        if (succeeded != 1) throw std::runtime_error("the digest is not available");
    }

    const EVP_MD* algorithm_;
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_;
};

}  // namespace

std::unique_ptr<Digest> makeDigest(DigestKind kind) {
    return std::make_unique<OpenSslDigest>(kind == DigestKind::md5 ? EVP_md5() : EVP_sha256());
}

}  // namespace velto
