#include "cleaning/DupSearch.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "platform/parallel.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr double longest = 12;             // seconds of hashing whole files
constexpr std::size_t quickLength = 4096;  // bytes at the start of a file
constexpr std::size_t sampleLength = 4096;
constexpr std::size_t chunkLength = 1024 * 1024;
constexpr std::size_t filesAtOnce = 64;  // hashed before their groups are settled

/// `sets` divided by `keyOf` each file; what ends up alone, or has no key, is dropped.
template <typename KeyOf>
std::vector<std::vector<std::size_t>> divided(const std::vector<std::vector<std::size_t>>& sets,
                                              const KeyOf& keyOf) {
    std::vector<std::vector<std::size_t>> result;
    for (const auto& set : sets) {
        std::map<decltype(keyOf(0)), std::vector<std::size_t>> parts;
        for (std::size_t file : set)
            parts[keyOf(file)].push_back(file);
        for (auto& [key, part] : parts) {
            if (key != decltype(keyOf(0))() && part.size() > 1) result.push_back(std::move(part));
        }
    }
    return result;
}

}  // namespace

DupSearch::DupSearch(const std::vector<FileRecord>& files, const Clock& clock,
                     FileContentReader& contents, std::size_t threads, DigestStore* known,
                     const std::function<bool()>& stopped, DupFinder::Budget budget,
                     const DupFinder::Progress& progress)
    : files_(files),
      clock_(clock),
      contents_(contents),
      known_(known),
      stopped_(stopped),
      budget_(budget),
      progress_(progress),
      tools_(threads == 0 ? processorCount() : threads),
      keys_(files.size()) {}

Digest& DupSearch::Tools::md5() {
    if (!md5_) md5_ = makeDigest(DigestKind::md5);
    return *md5_;
}

Digest& DupSearch::Tools::sha256() {
    if (!sha256_) sha256_ = makeDigest(DigestKind::sha256);
    return *sha256_;
}

std::span<std::byte> DupSearch::Tools::buffer(std::size_t length) {
    if (buffer_.size() < length) buffer_.resize(length);
    return std::span(buffer_).first(length);
}

DupFinder::Result DupSearch::run() {
    const std::vector<Set> sets = narrowed(sameLength(), &DupSearch::firstBytes);
    if (budget_ == DupFinder::Budget::twelveSeconds) deadline_ = clock_.monotonic() + longest;
    std::vector<Set> equal;
    std::vector<Set> batch;
    std::size_t batchFiles = 0;
    for (std::size_t index = 0; index < sets.size(); ++index) {
        if (stopping_) {
            leave(sets[index]);
            continue;
        }
        batch.push_back(sets[index]);
        batchFiles += sets[index].size();
        if (batchFiles < filesAtOnce && index + 1 < sets.size()) continue;
        std::ranges::move(narrowed(narrowed(batch, &DupSearch::samples), &DupSearch::wholeContent),
                          std::back_inserter(equal));
        batch.clear();
        batchFiles = 0;
    }
    std::ranges::sort(equal, {}, [](const Set& set) { return set.front(); });
    std::ranges::sort(left_);
    DupFinder::Result result;
    for (std::size_t file : left_)
        result.left.push_back(files_[file]);
    for (const Set& set : equal)
        result.groups.push_back(group(set));
    result.budgetExhausted = budgetExhausted_;
    return result;
}

/// Files large enough in sets of one length, the smallest first: one pair of huge files must not
/// use up the time that many others would have been settled in.
std::vector<DupSearch::Set> DupSearch::sameLength() const {
    Set all;
    for (std::size_t file = 0; file < files_.size(); ++file) {
        if (files_[file].size >= DupFinder::smallestSize) all.push_back(file);
    }
    return divided({all}, [&](std::size_t file) { return files_[file].lengthToCompare(); });
}

/// Applies the test to every file of the sets, several at once, and divides the sets by it. A set
/// that the search did not get through is left whole for another one.
std::vector<DupSearch::Set> DupSearch::narrowed(const std::vector<Set>& sets, Test test) {
    Set files;
    for (const Set& set : sets)
        files.insert(files.end(), set.begin(), set.end());
    forEachInParallel(files.size(), tools_.size(), [&](std::size_t index, std::size_t thread) {
        keys_[files[index]] = apply(test, files[index], tools_[thread]);
    });
    std::vector<Set> reached;
    for (const Set& set : sets) {
        if (wasReached(set)) {
            reached.push_back(set);
        } else {
            leave(set);
        }
    }
    return divided(reached, [&](std::size_t file) { return keys_[file].text; });
}

bool DupSearch::wasReached(const Set& set) const {
    return std::ranges::all_of(set, [&](std::size_t file) { return keys_[file].reached; });
}

void DupSearch::leave(const Set& set) { left_.insert(left_.end(), set.begin(), set.end()); }

/// Files whose last test was that of their whole content.
DupFinder::Group DupSearch::group(const Set& set) const {
    DupFinder::Group result;
    result.hash = keys_[set.front()].text;
    result.gb = gigabytes(files_[set.front()].size);
    for (std::size_t file : set)
        result.paths.push_back(files_[file].path);
    return result;
}

DupSearch::Key DupSearch::apply(Test test, std::size_t file, Tools& tools) {
    if (shouldStop()) return {};
    if (test == &DupSearch::firstBytes) ++filesSeen_;
    tell();
    if (auto key = remembered(test, file)) return *key;
    const auto content = contents_.open(files_[file].path);
    if (!content) return {true, {}};
    const std::int64_t size = content->size();
    if (size < 0) return {true, {}};
    const std::string digest = read(test, *content, size, tools);
    if (stopping_ && digest.empty()) return {};
    return {true, keyText(test, digest, size)};
}

/// Applies the test, and remembers what it says of a file that nobody has changed meanwhile.
std::string DupSearch::read(Test test, FileContent& content, std::int64_t size, Tools& tools) {
    const double begun = clock_.now();
    const auto before = known_ ? content.stamp() : std::nullopt;
    std::string digest = (this->*test)(content, size, tools);
    if (before && !digest.empty() && before->length == size && content.stamp() == before) {
        known_->put(*before, part(test), digest, begun);
    }
    return digest;
}

/// What an earlier search has read of the file, if it is unchanged since.
std::optional<DupSearch::Key> DupSearch::remembered(Test test, std::size_t file) {
    if (!known_) return std::nullopt;
    const auto stamp = contents_.stamp(files_[file].path);
    if (!stamp) return std::nullopt;
    const auto digest = known_->find(*stamp, part(test));
    if (!digest) return std::nullopt;
    return Key{true, keyText(test, *digest, stamp->length)};
}

DigestStore::Part DupSearch::part(Test test) {
    if (test == &DupSearch::firstBytes) return DigestStore::Part::firstBytes;
    return test == &DupSearch::samples ? DigestStore::Part::samples
                                       : DigestStore::Part::wholeContent;
}

/// The length is part of the first one: it may be another by now, and it may not have been known.
std::string DupSearch::keyText(Test test, const std::string& digest, std::int64_t size) {
    if (digest.empty() || test != &DupSearch::firstBytes) return digest;
    return fmt::format("{} {}", digest, size);
}

std::string DupSearch::firstBytes(FileContent& content, std::int64_t /*size*/, Tools& tools) {
    const auto bytes = readFrom(content, 0, tools.buffer(quickLength));
    if (!bytes) return {};
    tools.md5().update(*bytes);
    return tools.md5().finish();
}

/// Files of one format and length often begin alike and differ soon after: a look at the middle and
/// at the end spares most of them being read whole.
std::string DupSearch::samples(FileContent& content, std::int64_t size, Tools& tools) {
    const auto length = static_cast<std::int64_t>(sampleLength);
    std::string text;
    for (const std::int64_t offset : {size / 2, std::max<std::int64_t>(0, size - length)}) {
        const auto bytes = readFrom(content, offset, tools.buffer(sampleLength));
        if (!bytes) return {};
        tools.md5().update(*bytes);
        text += tools.md5().finish();
    }
    return text;
}

std::string DupSearch::wholeContent(FileContent& content, std::int64_t size, Tools& tools) {
    for (std::int64_t offset = 0; offset < size;) {
        if (offset > 0 && shouldStop()) return {};
        const auto bytes = readFrom(content, offset, tools.buffer(chunkLength));
        if (!bytes || bytes->empty()) {
            tools.sha256().finish();  // drops what a file that cannot be read on has left in it
            return {};
        }
        tools.sha256().update(*bytes);
        offset += static_cast<std::int64_t>(bytes->size());
    }
    std::string hash = tools.sha256().finish();
    return content.size() == size ? hash : std::string();
}

/// Reads until `buffer` is full or the file ends. Nothing on a read error.
std::optional<std::span<const std::byte>> DupSearch::readFrom(FileContent& content,
                                                              std::int64_t offset,
                                                              std::span<std::byte> buffer) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const std::ptrdiff_t count =
            content.read(offset + static_cast<std::int64_t>(filled), buffer.subspan(filled));
        if (count == 0) break;
        if (count > 0) {
            filled += static_cast<std::size_t>(count);
            bytesRead_ += count;
        } else if (errno != EINTR) {
            return std::nullopt;
        }
    }
    tell();
    return buffer.first(filled);
}

void DupSearch::tell() const {
    if (progress_) progress_(filesSeen_, bytesRead_);
}

/// True once the time is used up or the caller wants no more.
bool DupSearch::shouldStop() {
    if (stopping_) return true;
    if (stopped_ && stopped_()) {
        stopping_ = true;
    } else if (deadline_ && clock_.monotonic() > *deadline_) {
        budgetExhausted_ = true;
        stopping_ = true;
    }
    return stopping_;
}

}  // namespace velto
