#include <algorithm>
#include <cstdint>
#include <span>

#include "analysis/growth/GrowthSnapshot.h"
#include "platform/Digest.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// "velto-growth 1 CHECKSUM\n" and then numbers and texts. A number is one more than its value,
// seven bits a byte from the lowest on, the eighth set but in the last byte. So no byte is NUL, and
// a hole or a lost block is told from a snapshot at once.
constexpr std::string_view start = "velto-growth 1 ";
constexpr std::size_t checksumLength = 64;
constexpr std::size_t headLength = start.size() + checksumLength + 1;
constexpr std::uint64_t mostFolders = 1'000'000;
constexpr std::uint64_t mostRoots = 64;
constexpr std::uint64_t mostLeftOut = 10'000;
constexpr std::uint64_t mostBytes = std::uint64_t{1} << 62;
constexpr std::uint64_t mostSmallest = std::uint64_t{1'000'000} << 20;
constexpr auto lastState = FolderState::alreadyWalked;

std::string checksum(std::string_view text) {
    const auto digest = makeDigest(DigestKind::sha256);
    digest->update(std::as_bytes(std::span(text)));
    return digest->finish();
}

void put(std::string& text, std::uint64_t value) {
    std::uint64_t rest = value + 1;
    for (; rest > 0x7F; rest >>= 7)
        text += static_cast<char>((rest & 0x7F) | 0x80);
    text += static_cast<char>(rest);
}

void put(std::string& text, std::string_view part) {
    put(text, part.size());
    text += part;
}

}  // namespace

std::optional<std::string> GrowthSnapshot::encoded() const {
    if (folders_.size() > mostFolders || rootCount_ > mostRoots) return std::nullopt;
    if (facts_.leftOut.size() > mostLeftOut) return std::nullopt;
    for (Index root = 0; root < rootCount_; ++root) {
        if (static_cast<std::uint64_t>(folders_[root].bytes) > mostBytes) return std::nullopt;
    }
    std::string body;
    body.reserve(names_.size() + folders_.size() * 14);
    put(body, static_cast<std::uint64_t>(facts_.moment));
    put(body, static_cast<std::uint64_t>(facts_.smallest));
    put(body, facts_.leftOut.size());
    for (const std::string& path : facts_.leftOut)
        put(body, path);
    put(body, rootCount_);
    for (std::uint32_t root = 0; root < rootCount_; ++root)
        put(body, root < facts_.volumes.size() ? facts_.volumes[root] : std::string());
    put(body, folders_.size());
    for (Index index = 0; index < folders_.size(); ++index) {
        const Folder& folder = folders_[index];
        const auto [first, last] = children(index);
        put(body, name(index));
        put(body, static_cast<std::uint64_t>(folder.bytes));
        put(body, folder.inode);
        put(body, static_cast<std::uint64_t>(folder.state));
        put(body, folder.unreadable);
        put(body, last - first);
        if (static_cast<std::int64_t>(headLength + body.size()) > longest) return std::nullopt;
    }
    return std::string(start) + checksum(body) + "\n" + body;
}

/// Reads the text from its start on; the first thing that cannot be ends it for good.
class SnapshotReader {
public:
    explicit SnapshotReader(std::string_view body) : rest_(body) {}

    std::optional<GrowthSnapshot> read() {
        facts();
        GrowthSnapshot& snapshot = snapshot_;
        const std::uint64_t count = number(mostFolders);
        if (count < snapshot.rootCount_ || count > rest_.size()) isGood_ = false;
        if (!isGood_) return std::nullopt;
        snapshot.folders_.reserve(count);
        snapshot.names_.reserve(rest_.size());
        std::uint64_t next = snapshot.rootCount_;
        for (std::uint64_t index = 0; index < count && isGood_; ++index) {
            const std::uint64_t children = folder(static_cast<GrowthSnapshot::Index>(next));
            if (next <= index || children > count - next) isGood_ = false;
            next += isGood_ ? children : 0;
        }
        if (!isGood_ || next != count || !rest_.empty()) return std::nullopt;
        if (!fitTogether()) return std::nullopt;
        snapshot.names_.shrink_to_fit();
        return std::move(snapshot);
    }

private:
    void facts() {
        GrowthFacts& facts = snapshot_.facts_;
        facts.moment = static_cast<std::int64_t>(number(mostBytes));
        facts.smallest = static_cast<std::int64_t>(number(mostSmallest));
        for (std::uint64_t left = number(mostLeftOut); left > 0 && isGood_; --left)
            facts.leftOut.emplace_back(text());
        snapshot_.rootCount_ = static_cast<std::uint32_t>(number(mostRoots));
        for (std::uint32_t left = snapshot_.rootCount_; left > 0 && isGood_; --left)
            facts.volumes.emplace_back(text());
        if (snapshot_.rootCount_ == 0) isGood_ = false;
    }

    /// Takes one folder in; how many it holds.
    std::uint64_t folder(GrowthSnapshot::Index firstChild) {
        snapshot_.names_ += text();
        GrowthSnapshot::Folder& folder = snapshot_.folders_.emplace_back();
        folder.bytes = static_cast<std::int64_t>(number(mostBytes));
        folder.inode = number(UINT64_MAX - 1);
        folder.state = static_cast<FolderState>(number(static_cast<std::uint64_t>(lastState)));
        folder.unreadable = static_cast<std::uint32_t>(number(UINT32_MAX));
        folder.firstChild = firstChild;
        folder.nameEnd = static_cast<std::uint32_t>(snapshot_.names_.size());
        return number(mostFolders);
    }

    /// Names and sizes are those of a tree. Sets the parents.
    bool fitTogether() {
        GrowthSnapshot& snapshot = snapshot_;
        for (std::uint32_t root = 0; root < snapshot.rootCount_; ++root) {
            const std::string_view path = snapshot.name(root);
            if (path.empty() || standardizedPath(path) != path) return false;
        }
        for (GrowthSnapshot::Index index = 0; index < snapshot.size(); ++index) {
            const auto [first, last] = snapshot.children(index);
            std::int64_t left = snapshot.folders_[index].bytes;
            for (GrowthSnapshot::Index child = first; child < last; ++child) {
                snapshot.folders_[child].parent = index;
                left -= snapshot.folders_[child].bytes;
                const std::string_view name = snapshot.name(child);
                if (left < 0 || !isComponent(name)) return false;
                if (child > first && snapshot.name(child - 1) >= name) return false;
            }
        }
        return true;
    }

    std::uint64_t number(std::uint64_t most) {
        std::uint64_t value = 0;
        for (unsigned shift = 0; isGood_ && !rest_.empty() && shift < 64; shift += 7) {
            const auto byte = static_cast<unsigned char>(rest_.front());
            rest_.remove_prefix(1);
            const std::uint64_t bits = byte & 0x7F;
            if (shift == 63 && bits > 1) break;
            value |= bits << shift;
            if ((byte & 0x80) != 0) continue;
            if (value == 0 || value - 1 > most) break;
            return value - 1;
        }
        isGood_ = false;
        return 0;
    }

    std::string_view text() {
        const std::uint64_t length = number(rest_.size());
        if (length > rest_.size()) isGood_ = false;
        if (!isGood_) return {};
        const std::string_view part = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return part;
    }

    std::string_view rest_;
    bool isGood_ = true;
    GrowthSnapshot snapshot_;
};

std::optional<GrowthSnapshot> GrowthSnapshot::decoded(std::string_view text) {
    if (!text.starts_with(start) || text.size() < headLength) return std::nullopt;
    if (static_cast<std::int64_t>(text.size()) > longest) return std::nullopt;
    const std::string_view body = text.substr(headLength);
    if (text[headLength - 1] != '\n') return std::nullopt;
    if (text.substr(start.size(), checksumLength) != checksum(body)) return std::nullopt;
    return SnapshotReader(body).read();
}

}  // namespace velto
