#include "cleaning/DupSearch.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <numeric>
#include <utility>

#include <fmt/format.h>

#include "cleaning/LightReading.h"
#include "cleaning/divided.h"
#include "cleaning/read_order.h"
#include "platform/parallel.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr double longest = 12;             // seconds of hashing whole files
constexpr std::size_t quickLength = 4096;  // bytes at the start of a file
constexpr std::size_t sampleLength = 4096;
constexpr std::size_t filesAtOnce = 64;  // looked into before their contents are compared
// Sets that are read side by side hold so many bytes (or are one set): what the end of the budget
// finds half read is lost.
constexpr std::int64_t bytesAtOnce = 256 * 1024 * 1024;

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
      threads_(threads),
      tools_(threads == 0 ? std::max(processorCount(), smallReadsAtOnce) : threads),
      places_(files.size()),
      keys_(files.size()),
      lengths_(files.size()),
      readings_(files.size()),
      twins_(files.size()) {
    std::iota(twins_.begin(), twins_.end(), std::size_t{0});
}

Digest& DupSearch::Tools::md5() {
    if (!md5_) md5_ = makeDigest(DigestKind::md5);
    return *md5_;
}

std::span<std::byte> DupSearch::Tools::buffer(std::size_t length) {
    if (buffer_.size() < length) buffer_.resize(length);
    return std::span(buffer_).first(length);
}

DupFinder::Result DupSearch::run() {
    const std::vector<Set> candidates = sameLength();
    findPlaces(candidates);
    const std::vector<Set> sets = narrowed(candidates, &DupSearch::firstBytes);
    if (budget_ == DupFinder::Budget::twelveSeconds) deadline_ = clock_.monotonic() + longest;
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
        compare(narrowed(batch, &DupSearch::samples));
        batch.clear();
        batchFiles = 0;
    }
    std::ranges::sort(equal_, {}, [](const Set& set) { return set.front(); });
    std::ranges::sort(left_);
    DupFinder::Result result;
    for (std::size_t file : left_)
        result.left.push_back(files_[file]);
    for (const Set& set : equal_)
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

/// Which disk each file is on, and where on one that rotates.
void DupSearch::findPlaces(const std::vector<Set>& sets) {
    Set files;
    for (const Set& set : sets)
        files.insert(files.end(), set.begin(), set.end());
    forEachInParallel(files.size(), tools_.size(), [&](std::size_t index, std::size_t) {
        if (!shouldStop()) places_[files[index]] = contents_.place(files_[files[index]].path);
    });
}

/// Compares the whole contents of the sets, so many at a time as hold not too much.
void DupSearch::compare(const std::vector<Set>& sets) {
    std::vector<Set> together;
    std::int64_t bytes = 0;
    for (std::size_t index = 0; index < sets.size(); ++index) {
        together.push_back(sets[index]);
        bytes += static_cast<std::int64_t>(sets[index].size()) * lengths_[sets[index].front()];
        if (bytes < bytesAtOnce && index + 1 < sets.size()) continue;
        compareContents(std::exchange(together, {}));
        bytes = 0;
    }
}

/// Applies the test to every file of the sets, several at once, and divides the sets by it. A set
/// that the search did not get through is left whole for another one.
std::vector<DupSearch::Set> DupSearch::narrowed(const std::vector<Set>& sets, Test test) {
    Set files;
    for (const Set& set : sets)
        files.insert(files.end(), set.begin(), set.end());
    Set own;
    std::ranges::copy_if(files, std::back_inserter(own),
                         [&](std::size_t file) { return twins_[file] == file; });
    applyToAll(own, test);
    takeFromTwins(files, test);
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

void DupSearch::applyToAll(const Set& files, Test test) {
    const auto lanes = readLanes(
        files, [&](std::size_t file) -> const std::optional<FilePlace>& { return places_[file]; });
    forEachInParallel(lanes.size(), readsAtOnce(test), [&](std::size_t lane, std::size_t thread) {
        for (const std::size_t file : lanes[lane])
            keys_[file] = shouldStop() ? Key() : (this->*test)(file, tools_[thread]);
    });
}

std::size_t DupSearch::readsAtOnce(Test test) const {
    if (threads_ != 0) return threads_;
    // Digests of whole contents keep processors busy; what they need is on its way by then.
    return test == &DupSearch::nextPart ? processorCount() : tools_.size();
}

/// What was read of a file goes for all its names. What has become of one name says nothing of the
/// others: where it could not be read, each of them is read for itself.
void DupSearch::takeFromTwins(const Set& files, Test test) {
    Set alone;
    for (const std::size_t file : files) {
        const std::size_t twin = twins_[file];
        if (twin == file) continue;
        const bool isSame = contents_.stamp(files_[file].path) == readings_[twin]->stamp;
        if (!keys_[twin].reached || (isSame && !keys_[twin].text.empty())) {
            keys_[file] = keys_[twin];
            readings_[file]->compared = readings_[twin]->compared;
            readings_[file]->comparisons = readings_[twin]->comparisons;
        } else {
            alone.push_back(file);
        }
    }
    for (const std::size_t file : alone)
        twins_[file] = file;
    if (!alone.empty()) applyToAll(alone, test);
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

/// The length is part of the key: it may be another by now, and it may not have been known.
DupSearch::Key DupSearch::firstBytes(std::size_t file, Tools& tools) {
    ++filesSeen_;
    Key key = applyToPieces(DigestStore::Part::firstBytes, &DupSearch::firstPiece, file, tools);
    if (!key.text.empty()) key.text += fmt::format(" {}", lengths_[file]);
    return key;
}

DupSearch::Key DupSearch::samples(std::size_t file, Tools& tools) {
    return applyToPieces(DigestStore::Part::samples, &DupSearch::laterPieces, file, tools);
}

/// What an earlier search has read of the file if it is unchanged since, or what is read of it now.
DupSearch::Key DupSearch::applyToPieces(DigestStore::Part part, PieceTest test, std::size_t file,
                                        Tools& tools) {
    tell();
    const std::string& path = files_[file].path;
    if (const auto stamp = known_ ? contents_.stamp(path) : std::nullopt) {
        lengths_[file] = stamp->length;
        if (auto digest = known_->find(*stamp, part)) return {true, std::move(*digest)};
    }
    const auto content = contents_.open(path);
    if (!content) return {true, {}};
    lengths_[file] = content->size();
    if (lengths_[file] < 0) return {true, {}};
    content->readAsTold();
    std::string digest = digestOfPieces(part, test, *content, tools);
    if (stopping_ && digest.empty()) return {};
    return {true, std::move(digest)};
}

/// Applies the test, and remembers what it says of a file that nobody has changed meanwhile.
std::string DupSearch::digestOfPieces(DigestStore::Part part, PieceTest test, FileContent& content,
                                      Tools& tools) {
    const double begun = clock_.now();
    const auto before = known_ ? content.stamp() : std::nullopt;
    const std::int64_t size = content.size();
    std::string digest = (this->*test)(content, size, tools);
    if (before && !digest.empty() && before->length == size && content.stamp() == before) {
        known_->put(*before, part, digest, begun);
    }
    return digest;
}

std::string DupSearch::firstPiece(FileContent& content, std::int64_t size, Tools& tools) {
    LightReading light(content, {0, std::min<std::int64_t>(size, quickLength)});
    light.goTo(0);
    const auto bytes = readFrom(content, 0, tools.buffer(quickLength));
    if (!bytes) return {};
    tools.md5().update(*bytes);
    return tools.md5().finish();
}

/// Files of one format and length often begin alike and differ soon after: a look at the middle and
/// at the end spares most of them being read further.
std::string DupSearch::laterPieces(FileContent& content, std::int64_t size, Tools& tools) {
    const auto length = static_cast<std::int64_t>(sampleLength);
    const std::int64_t middle = size / 2;
    const std::int64_t last = std::max<std::int64_t>(0, size - length);
    LightReading lightMiddle(content, {middle, std::min(length, size - middle)});
    LightReading lightLast(content, {last, std::min(length, size)});
    lightMiddle.goTo(middle);
    lightLast.goTo(last);
    std::string text;
    for (const std::int64_t offset : {middle, last}) {
        const auto bytes = readFrom(content, offset, tools.buffer(sampleLength));
        if (!bytes) return {};
        tools.md5().update(*bytes);
        text += tools.md5().finish();
    }
    return text;
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
