#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "cleaning/DigestStore.h"
#include "platform/Digest.h"
#include "platform/FileStamp.h"

namespace velto {

/// How far the comparison of a file's whole content has come. It is read once, from its start, by
/// and by; between two parts it is closed.
struct ContentReading {
    std::int64_t length = 0;             // of the file
    std::int64_t compared = 0;           // with the others of its set
    std::size_t comparisons = 0;         // so often
    std::int64_t read = 0;               // what the digest has seen; less where it is remembered
    std::unique_ptr<Digest> digest;      // SHA-256; null before the first part
    double begun = 0;                    // when the first part was read; seconds since 1970
    std::optional<FileStamp> stamp;      // at the start; nothing: the system does not say
    std::string beginnings;              // DigestStore::Part::beginnings, as far as known
    std::optional<std::string> whole{};  // remembered

    /// What is known of the next beginning: nothing when it has to be read.
    std::optional<std::string> nextBeginning() const {
        const std::size_t start = comparisons * DigestStore::beginningLength;
        if (beginnings.size() < start + DigestStore::beginningLength) return std::nullopt;
        return beginnings.substr(start, DigestStore::beginningLength);
    }
};

}  // namespace velto
