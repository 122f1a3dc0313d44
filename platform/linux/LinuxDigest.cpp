#include <glib.h>
#include <openssl/evp.h>

#include <array>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <fmt/format.h>

#include "platform/Digest.h"

namespace velto {
namespace {

/// OpenSSL has no MD5 where a system admits nothing but what a standard of security approves; GLib,
/// which has it for uses like this one, always does.
class GlibMd5 final : public Digest {
public:
    void update(std::span<const std::byte> bytes) override {
        g_checksum_update(checksum_.get(), reinterpret_cast<const guchar*>(bytes.data()),
                          static_cast<gssize>(bytes.size()));
    }

    std::string finish() override {
        std::string text = g_checksum_get_string(checksum_.get());
        g_checksum_reset(checksum_.get());
        return text;
    }

    std::string soFar() const override {
        const Checksum copy(g_checksum_copy(checksum_.get()), &g_checksum_free);
        return g_checksum_get_string(copy.get());
    }

private:
    using Checksum = std::unique_ptr<GChecksum, decltype(&g_checksum_free)>;

    Checksum checksum_{g_checksum_new(G_CHECKSUM_MD5), &g_checksum_free};
};

class OpenSslSha256 final : public Digest {
public:
    OpenSslSha256() { start(); }

    void update(std::span<const std::byte> bytes) override {
        require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
    }

    std::string finish() override {
        std::string text = endOf(context_.get());
        start();
        return text;
    }

    std::string soFar() const override {
        const Context copy(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
        require(EVP_MD_CTX_copy_ex(copy.get(), context_.get()));
        return endOf(copy.get());
    }

private:
    using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

    void start() { require(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr)); }

    static std::string endOf(EVP_MD_CTX* context) {
        std::array<unsigned char, EVP_MAX_MD_SIZE> value;
        unsigned length = 0;
        require(EVP_DigestFinal_ex(context, value.data(), &length));
        std::string text;
        text.reserve(2 * length);
        for (unsigned index = 0; index < length; ++index) {
            fmt::format_to(std::back_inserter(text), "{:02x}", value[index]);
        }
        return text;
    }

    static void require(int succeeded) {
        // Only a library without the algorithm fails here (a restricted build).
        if (succeeded != 1) throw std::runtime_error("the digest is not available");
    }

    Context context_{EVP_MD_CTX_new(), &EVP_MD_CTX_free};
};

}  // namespace

std::unique_ptr<Digest> makeDigest(DigestKind kind) {
    if (kind == DigestKind::md5) return std::make_unique<GlibMd5>();
    return std::make_unique<OpenSslSha256>();
}

}  // namespace velto
