#include "cleaning/DigestStore.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "platform/Digest.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr std::string_view heading = "velto-digests 1";
constexpr std::string_view unknown = "-";
constexpr const char* digestFileName = "/digests";
constexpr ReadLimit digestFileLimit = ownFile(64 << 20);
constexpr std::array<std::size_t, 3> digestLengths{32, 64, 64};
constexpr auto beginnings = static_cast<std::size_t>(DigestStore::Part::beginnings);

bool hasLength(std::size_t part, std::size_t length) {
    if (part != beginnings) return length == digestLengths[part];
    return length > 0 && length % DigestStore::beginningLength == 0 &&
           length <= DigestStore::mostBeginnings * DigestStore::beginningLength;
}

bool isDigest(std::size_t part, std::string_view text) {
    return hasLength(part, text.size()) && std::ranges::all_of(text, [](char letter) {
               return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f');
           });
}

std::string checksum(std::string_view text) {
    const auto digest = makeDigest(DigestKind::sha256);
    digest->update(std::as_bytes(std::span(text)));
    return digest->finish();
}

/// The next piece up to a separator, taken off `text`; nothing when there is no separator.
std::optional<std::string_view> piece(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view found = text.substr(0, end);
    text.remove_prefix(end + 1);
    return found;
}

template <typename Number>
bool readNumber(std::string_view& line, Number& number) {
    const auto text = piece(line, ' ');
    if (!text) return false;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
    return error == std::errc() && end == text->data() + text->size();
}

}  // namespace

std::size_t DigestStore::Hash::operator()(const FileIdentity& identity) const {
    return std::hash<std::uint64_t>()(identity.number * 0x9e3779b97f4a7c15 ^ identity.device);
}

std::optional<std::string> DigestStore::find(const FileStamp& stamp, Part part) {
    const std::lock_guard guard(lock_);
    const auto found = files_.find(stamp.identity);
    if (found == files_.end() || found->second.stamp != stamp) return std::nullopt;
    found->second.isUsed = true;
    const std::string& digest = found->second.digests[static_cast<std::size_t>(part)];
    return digest.empty() ? std::nullopt : std::optional(digest);
}

void DigestStore::put(const FileStamp& stamp, Part part, std::string_view digest, double readAt) {
    const auto index = static_cast<std::size_t>(part);
    const double changed = momentOf(0, std::max(stamp.modified, stamp.changed));
    if (readAt - changed <= coarsest || !isDigest(index, digest)) return;
    const std::lock_guard guard(lock_);
    const auto known = files_.find(stamp.identity);
    if (known == files_.end() && files_.size() >= mostFiles) return;
    if (part == Part::beginnings && ofBeginnings_ + digest.size() > mostOfBeginnings) return;
    Known& file = files_[stamp.identity];
    const std::size_t before = file.digests[beginnings].size();
    if (file.stamp != stamp) file = {.stamp = stamp, .digests = {}};
    file.isUsed = true;
    file.digests[index] = digest;
    ofBeginnings_ = ofBeginnings_ - before + file.digests[beginnings].size();
    hasChanged_ = true;
}

void DigestStore::dropUnused() {
    const std::lock_guard guard(lock_);
    const auto dropped =
        std::erase_if(files_, [](const auto& entry) { return !entry.second.isUsed; });
    if (dropped > 0) hasChanged_ = true;
    countBeginnings();
}

void DigestStore::countBeginnings() {
    ofBeginnings_ = 0;
    for (const auto& [identity, file] : files_)
        ofBeginnings_ += file.digests[beginnings].size();
}

bool DigestStore::hasChanged() const {
    const std::lock_guard guard(lock_);
    return hasChanged_;
}

std::size_t DigestStore::size() const {
    const std::lock_guard guard(lock_);
    return files_.size();
}

std::string DigestStore::encoded() const {
    std::string text(heading);
    text += '\n';
    {
        const std::lock_guard guard(lock_);
        for (const auto& [identity, file] : files_) {
            fmt::format_to(std::back_inserter(text), "{} {} {} {} {} ", identity.device,
                           identity.number, file.stamp.length, file.stamp.modified,
                           file.stamp.changed);
            for (std::size_t index = 0; index < parts; ++index) {
                const std::string& digest = file.digests[index];
                if (index == beginnings && digest.empty()) continue;
                text += digest.empty() ? unknown : std::string_view(digest);
                text += ' ';
            }
            text += '\n';
        }
    }
    text += checksum(text);
    text += '\n';
    return text;
}

std::shared_ptr<DigestStore> DigestStore::decoded(std::string_view text) {
    auto store = std::make_shared<DigestStore>();
    const auto nothing = [] { return std::make_shared<DigestStore>(); };
    constexpr std::size_t lastLine = 65;  // a SHA-256 and the end of its line
    if (text.size() < lastLine || text.back() != '\n') return nothing();
    std::string_view lines = text.substr(0, text.size() - lastLine);
    const std::string_view sum = text.substr(lines.size(), lastLine - 1);
    if (checksum(lines) != sum || piece(lines, '\n') != heading) return nothing();
    while (!lines.empty()) {
        auto line = piece(lines, '\n');
        Known file;
        FileStamp& stamp = file.stamp;
        if (!line || !readNumber(*line, stamp.identity.device) ||
            !readNumber(*line, stamp.identity.number) || !readNumber(*line, stamp.length) ||
            !readNumber(*line, stamp.modified) || !readNumber(*line, stamp.changed)) {
            return nothing();
        }
        for (std::size_t index = 0; index < parts; ++index) {
            if (index == beginnings && line->empty()) break;
            const auto digest = piece(*line, ' ');
            if (!digest) return nothing();
            if (*digest == unknown && index != beginnings) continue;
            if (!isDigest(index, *digest)) return nothing();
            file.digests[index] = *digest;
        }
        if (!line->empty() || store->files_.size() >= mostFiles) return nothing();
        store->files_[stamp.identity] = std::move(file);
    }
    store->countBeginnings();
    return store;
}

std::shared_ptr<DigestStore> DigestFile::load() const {
    try {
        return DigestStore::decoded(files_.read(folder_ + digestFileName, digestFileLimit));
    } catch (const FileError&) {
        return std::make_shared<DigestStore>();  // never saved, or out of reach
    }
}

void DigestFile::save(const DigestStore& store) const {
    if (!store.hasChanged()) return;
    try {
        files_.createFolders(folder_);
        files_.writeAtomically(folder_ + digestFileName, store.encoded());
    } catch (const FileError&) {
        // Not remembered.
    }
}

}  // namespace velto
