#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Clock.h"

namespace velto {

/// A file to compare: absolute path as stored bytes, size in bytes.
struct FileRecord {
    std::string path;
    std::int64_t size = 0;

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
        std::vector<Group> groups;       // in the input order of their first path
        bool budgetExhausted = false;
    };

    explicit DupFinder(const Clock& clock) : clock_(clock) {}

    /// Blocks; hashing stops after 12 seconds and what was compared until then is returned.
    Result find(const std::vector<FileRecord>& files) const;

private:
    const Clock& clock_;
};

}  // namespace velto
