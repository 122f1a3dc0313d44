#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"
#include "platform/Digest.h"

namespace velto {

/// One search for duplicates. It narrows sets of files that may be equal, from the cheapest test to
/// the dearest: length, first bytes, a few bytes from further in, whole content. Only the last one
/// makes files equal; the others just tell apart.
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
        Digest& sha256();
        std::span<std::byte> buffer(std::size_t length);

    private:
        std::unique_ptr<Digest> md5_, sha256_;
        std::vector<std::byte> buffer_;
    };
    using Test = std::string (DupSearch::*)(FileContent& content, std::int64_t size, Tools& tools);

    std::vector<Set> sameLength() const;
    std::vector<Set> narrowed(const std::vector<Set>& sets, Test test);
    bool wasReached(const Set& set) const;
    void leave(const Set& set);
    DupFinder::Group group(const Set& set) const;

    Key apply(Test test, std::size_t file, Tools& tools);
    std::string read(Test test, FileContent& content, std::int64_t size, Tools& tools);
    std::optional<Key> remembered(Test test, std::size_t file);
    static DigestStore::Part part(Test test);
    static std::string keyText(Test test, const std::string& digest, std::int64_t size);
    std::string firstBytes(FileContent& content, std::int64_t size, Tools& tools);
    std::string samples(FileContent& content, std::int64_t size, Tools& tools);
    std::string wholeContent(FileContent& content, std::int64_t size, Tools& tools);

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
    std::vector<Tools> tools_;        // by thread
    std::vector<Key> keys_;           // by file, of the test that was applied last
    Set left_;                        // what the search did not get through
    std::optional<double> deadline_;  // on the monotonic clock; none before the full-hash stage
    std::atomic<std::int64_t> filesSeen_{0};
    std::atomic<std::int64_t> bytesRead_{0};
    std::atomic<bool> stopping_{false};
    std::atomic<bool> budgetExhausted_{false};
};

}  // namespace velto
