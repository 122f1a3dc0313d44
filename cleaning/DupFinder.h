#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/FileContent.h"

namespace velto {

class DigestStore;

/// A file to compare.
struct FileRecord {
    std::string path;         // absolute, bytes as stored
    std::int64_t size = 0;    // bytes that it takes up
    std::int64_t length = 0;  // bytes that it holds; 0: as many as it takes up

    /// Only files that hold as much as each other can be equal. What they take up may differ: a
    /// file system compresses, and free space comes in pieces.
    std::int64_t lengthToCompare() const { return length > 0 ? length : size; }

    bool operator==(const FileRecord&) const = default;
};

/// Finds files of identical content. Stateless.
class DupFinder {
public:
    struct Group {
        std::string hash;                // lower-case hexadecimal SHA-256 of the content
        double gb = 0;                   // size of one copy, not rounded
        std::vector<std::string> paths;  // two or more, in input order
    };
    struct Result {
        std::vector<Group> groups;  // in the input order of their first path
        bool budgetExhausted = false;
        /// What the search did not get through, in input order: a search among these finds what
        /// this one has not.
        std::vector<FileRecord> left;
    };

    /// How long whole files are read.
    enum class Budget { twelveSeconds, unlimited };

    /// Told from several threads, after each file and each part of one: how many files of equal
    /// size have been looked into so far, and the bytes read of all of them.
    using Progress = std::function<void(std::int64_t files, std::int64_t bytes)>;

    /// Smaller files are not compared: more than a million bytes, on purpose.
    static constexpr std::int64_t smallestSize = 1'000'001;

    /// All outlive the finder. `threads` 0: as many as the disks and processors can use. `known`,
    /// which may be null, holds what earlier searches have read, and gets what this one reads.
    DupFinder(const Clock& clock, FileContentReader& contents, std::size_t threads = 0,
              DigestStore* known = nullptr)
        : clock_(clock), contents_(contents), threads_(threads), known_(known) {}

    /// Blocks; hashing stops at the end of the budget and what was compared until then is returned.
    /// Files that cannot be read, whose size changes meanwhile, or that change in any way between
    /// two parts of a large one, are left out. `stopped`, asked
    /// from several threads before each file and between its chunks, ends the search early, as the
    /// end of the budget does.
    Result find(const std::vector<FileRecord>& files, const std::function<bool()>& stopped = {},
                Budget budget = Budget::twelveSeconds, const Progress& progress = {}) const;

private:
    const Clock& clock_;
    FileContentReader& contents_;
    std::size_t threads_;
    DigestStore* known_;
};

}  // namespace velto
