#pragma once

#include <memory>
#include <span>
#include <string>

namespace velto {

enum class DigestKind { md5, sha256 };

/// A running digest. One thread at a time.
class Digest {
public:
    virtual ~Digest() = default;

    virtual void update(std::span<const std::byte> bytes) = 0;

    /// Lower-case hexadecimal of everything so far (32 characters for MD5, 64 for SHA-256). The
    /// digest then starts anew.
    virtual std::string finish() = 0;

    /// The same, and the digest goes on.
    virtual std::string soFar() const = 0;
};

/// The system library's implementation (on Linux GLib for MD5 and OpenSSL for SHA-256,
/// CommonCrypto on a Mac).
std::unique_ptr<Digest> makeDigest(DigestKind kind);

}  // namespace velto
