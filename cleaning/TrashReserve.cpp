#include "cleaning/TrashReserve.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <random>

namespace velto {
namespace {

constexpr std::int64_t usualSize = 1 << 18;  // journal and manifest of some hundred items
constexpr std::int64_t mostKept = 1 << 27;   // of some hundred thousand
// On a disk that is nearly full.
constexpr std::array<std::int64_t, 3> smallerSizes{1 << 16, 1 << 14, 1 << 12};

/// Bytes that no file system stores in less space than they are.
std::string randomBytes(std::int64_t size) {
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::mt19937_64 random(std::random_device{}());
    for (std::size_t at = 0; at < bytes.size(); at += sizeof(std::uint64_t)) {
        const std::uint64_t word = random();
        std::memcpy(&bytes[at], &word, std::min(sizeof word, bytes.size() - at));
    }
    return bytes;
}

}  // namespace

bool isForSpace(const FileError& error) { return error.code() == ENOSPC || error.code() == EDQUOT; }

bool TrashReserve::release() {
    try {
        const auto kept = files_.attributes(path_);
        if (!kept || kept->kind != FileKind::regular) return false;
        files_.removeAll(path_);
        return true;
    } catch (const FileError&) {
        return false;
    }
}

void TrashReserve::keep(std::int64_t records) {
    // A new version of both files stands beside the old one for a moment.
    const std::int64_t wanted = std::clamp(records, usualSize / 2, mostKept / 2) * 2;
    const auto kept = files_.attributes(path_);
    const std::int64_t size = kept ? kept->logicalSize : 0;
    if (size >= std::max(usualSize, wanted / 2)) return;
    const auto hasKept = [&](std::int64_t bytes) {
        try {
            files_.writeAtomically(path_, randomBytes(bytes));
            return true;
        } catch (const FileError&) {
            return false;
        }
    };
    if (hasKept(wanted)) return;
    for (const std::int64_t smaller : smallerSizes) {
        if (smaller <= size || hasKept(smaller)) return;
    }
}

}  // namespace velto
