#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cleaning/ContentReading.h"
#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"
#include "platform/Digest.h"

namespace velto {

/// One search for duplicates. It narrows sets of files that may be equal, from the cheapest test to
/// the dearest: length, first bytes, a few bytes from further in, whole content. Only the last one
/// makes files equal; the others just tell apart. Whole contents are read side by side, part by
/// part, and what differs from all others so far is not read on.
class DupSearch {
public:
    DupSearch(const std::vector<FileRecord>& files, const Clock& clock, FileContentReader& contents,
              std::size_t threads, DigestStore* known, const std::function<bool()>& stopped,
              DupFinder::Budget budget, const DupFinder::Progress& progress);

    DupFinder::Result run();

private:
    using Set = std::vector<std::size_t>;  // indices of files, in input order

    /// What a test said about a file. Files with different texts differ.
    struct Key {
        bool reached = false;  // false: the search ended before the test did
        std::string text;      // empty: the file is left out
    };
    /// What one thread works with, each made when it is first needed: most searches end before.
    class Tools {
    public:
        Digest& md5();
        std::span<std::byte> buffer(std::size_t length);

    private:
        std::unique_ptr<Digest> md5_;
        std::vector<std::byte> buffer_;
    };
    using Test = Key (DupSearch::*)(std::size_t file, Tools& tools);
    using PieceTest = std::string (DupSearch::*)(FileContent& content, std::int64_t size,
                                                 Tools& tools);

    std::vector<Set> sameLength() const;
    void findPlaces(const std::vector<Set>& sets);
    void compare(const std::vector<Set>& sets);
    std::vector<Set> narrowed(const std::vector<Set>& sets, Test test);
    void applyToAll(const Set& files, Test test);
    std::size_t readsAtOnce(Test test) const;
    void takeFromTwins(const Set& files, Test test);
    bool wasReached(const Set& set) const;
    void leave(const Set& set);
    DupFinder::Group group(const Set& set) const;

    Key firstBytes(std::size_t file, Tools& tools);
    Key samples(std::size_t file, Tools& tools);
    Key applyToPieces(DigestStore::Part part, PieceTest test, std::size_t file, Tools& tools);
    std::string digestOfPieces(DigestStore::Part part, PieceTest test, FileContent& content,
                               Tools& tools);
    std::string firstPiece(FileContent& content, std::int64_t size, Tools& tools);
    std::string laterPieces(FileContent& content, std::int64_t size, Tools& tools);

    // Whole contents: DupSearch_contents.cpp.
    void compareContents(std::vector<Set> sets);
    void beginReading(const Set& set);
    bool isThrough(const Set& set) const;
    Key nextPart(std::size_t file, Tools& tools);
    Key readPart(std::size_t file, std::int64_t end, Tools& tools);
    bool readUpTo(FileContent& content, ContentReading& reading, std::int64_t end, Tools& tools);
    std::string compared(ContentReading& reading, std::int64_t end, const FileContent& content);

    std::optional<std::span<const std::byte>> readFrom(FileContent& content, std::int64_t offset,
                                                       std::span<std::byte> buffer);
    void tell() const;
    bool shouldStop();

    const std::vector<FileRecord>& files_;
    const Clock& clock_;
    FileContentReader& contents_;
    DigestStore* const known_;  // null: nothing is remembered
    const std::function<bool()>& stopped_;
    const DupFinder::Budget budget_;
    const DupFinder::Progress& progress_;
    const std::size_t threads_;                     // 0: as many as it takes
    std::vector<Tools> tools_;                      // by thread
    std::vector<std::optional<FilePlace>> places_;  // by file
    std::vector<Key> keys_;                         // by file, of the test that was applied last
    std::vector<std::int64_t> lengths_;             // by file, when its first bytes were read
    std::vector<std::unique_ptr<ContentReading>> readings_;  // by file; null: not being read
    std::vector<std::size_t>
        twins_;  // by file: the one of its set that is the same file, or itself
    std::vector<Set> equal_;
    Set left_;                        // what the search did not get through
    std::optional<double> deadline_;  // on the monotonic clock; none before the full-hash stage
    std::atomic<std::int64_t> filesSeen_{0};
    std::atomic<std::int64_t> bytesRead_{0};
    std::atomic<bool> stopping_{false};
    std::atomic<bool> budgetExhausted_{false};
};

}  // namespace velto
