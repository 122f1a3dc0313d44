// The comparison of whole contents, which are read side by side.

#include <algorithm>
#include <map>
#include <utility>

#include "cleaning/DupSearch.h"
#include "cleaning/LightReading.h"
#include "cleaning/read_order.h"

namespace velto {
namespace {

constexpr std::int64_t chunkLength = 1024 * 1024;

}  // namespace

/// Compares after each part what has been read of the files, from their start; what differs from
/// all others of its set is not read on.
void DupSearch::compareContents(std::vector<Set> sets) {
    for (const Set& set : sets)
        beginReading(set);
    const std::vector<Set> all = sets;
    while (!sets.empty()) {
        std::vector<Set> unfinished;
        for (Set& set : narrowed(sets, &DupSearch::nextPart)) {
            (isThrough(set) ? equal_ : unfinished).push_back(std::move(set));
        }
        sets = std::move(unfinished);
    }
    for (const Set& set : all) {
        for (const std::size_t file : set)
            readings_[file].reset();
    }
}

/// Finds out what is remembered of the files, and which of them are names of one and the same.
void DupSearch::beginReading(const Set& set) {
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::size_t> first;
    for (const std::size_t file : set) {
        auto reading = std::make_unique<ContentReading>();
        reading->length = lengths_[file];
        reading->stamp = contents_.stamp(files_[file].path);
        if (reading->stamp) {
            const FileIdentity& identity = reading->stamp->identity;
            twins_[file] =
                first.try_emplace({identity.device, identity.number}, file).first->second;
        }
        if (reading->stamp && known_) {
            using Part = DigestStore::Part;
            reading->whole = known_->find(*reading->stamp, Part::wholeContent);
            reading->beginnings = known_->find(*reading->stamp, Part::beginnings).value_or("");
        }
        readings_[file] = std::move(reading);
    }
    // Nothing has to be compared part by part where all is known.
    const bool allKnown = std::ranges::all_of(
        set, [&](std::size_t file) { return readings_[file]->whole.has_value(); });
    for (const std::size_t file : set) {
        if (allKnown) readings_[file]->compared = readings_[file]->length;
    }
}

/// All of one set have come equally far.
bool DupSearch::isThrough(const Set& set) const {
    const ContentReading& reading = *readings_[set.front()];
    return reading.compared >= reading.length;
}

DupSearch::Key DupSearch::nextPart(std::size_t file, Tools& tools) {
    tell();
    ContentReading& reading = *readings_[file];
    const std::int64_t end = nextComparison(reading.compared, reading.length);
    std::optional<std::string> known =
        end >= reading.length ? reading.whole : reading.nextBeginning();
    if (!known) return readPart(file, end, tools);
    reading.compared = end;
    ++reading.comparisons;
    return {true, std::move(*known)};
}

/// Opens the file for one part: what is open at a time does not depend on how many are compared.
/// One that is not as it was at its first part is left out.
DupSearch::Key DupSearch::readPart(std::size_t file, std::int64_t end, Tools& tools) {
    ContentReading& reading = *readings_[file];
    const auto content = contents_.open(files_[file].path);
    if (!content) return {true, {}};
    const auto stamp = content->stamp();
    if (!reading.digest) {
        reading.digest = makeDigest(DigestKind::sha256);
        reading.begun = clock_.now();
        // What is remembered goes for the file as it was then.
        if (reading.comparisons == 0 && reading.stamp != stamp) {
            reading.beginnings.clear();
            reading.whole.reset();
            reading.stamp = stamp;
        }
    }
    const bool isAsBefore = content->size() == reading.length && stamp == reading.stamp;
    const bool done = isAsBefore && readUpTo(*content, reading, end, tools);
    if (done) return {true, compared(reading, end, *content)};
    if (stopping_) return {};
    return {true, {}};
}

/// False when the search ended first, or the file cannot be read so far.
bool DupSearch::readUpTo(FileContent& content, ContentReading& reading, std::int64_t end,
                         Tools& tools) {
    content.readAsTold();
    LightReading light(content, {reading.read, end - reading.read});
    for (bool isFirst = true; reading.read < end; isFirst = false) {
        if (!isFirst && shouldStop()) return false;
        light.goTo(reading.read);
        const std::int64_t length = std::min(chunkLength, end - reading.read);
        const auto bytes =
            readFrom(content, reading.read, tools.buffer(static_cast<std::size_t>(length)));
        if (!bytes || bytes->empty()) return false;
        reading.digest->update(*bytes);
        reading.read += static_cast<std::int64_t>(bytes->size());
    }
    return true;
}

/// The key of what has been read up to `end`; empty when the file has changed its size. Remembers
/// it of a file that nobody has changed meanwhile.
std::string DupSearch::compared(ContentReading& reading, std::int64_t end,
                                const FileContent& content) {
    if (content.size() != reading.length) return {};
    const bool isUnchanged = known_ && reading.stamp && reading.stamp->length == reading.length &&
                             content.stamp() == reading.stamp;
    const bool isWhole = end >= reading.length;
    std::string key = isWhole ? reading.digest->finish() : reading.digest->soFar();
    if (isWhole) {
        if (isUnchanged) {
            known_->put(*reading.stamp, DigestStore::Part::wholeContent, key, reading.begun);
        }
    } else {
        key.resize(DigestStore::beginningLength);
        const std::size_t known = reading.comparisons * DigestStore::beginningLength;
        if (isUnchanged && reading.beginnings.size() == known) {
            reading.beginnings += key;
            known_->put(*reading.stamp, DigestStore::Part::beginnings, reading.beginnings,
                        reading.begun);
        }
    }
    reading.compared = end;
    ++reading.comparisons;
    return key;
}

}  // namespace velto
