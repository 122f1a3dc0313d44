#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/FileManager.h"
#include "platform/FileStamp.h"
#include "platform/HomeLayout.h"

namespace velto {

/// What earlier searches for duplicates have read of files, by which file it is and what tells that
/// it is unchanged: such a file is not read again. Holds digests and numbers, no names. Safe from
/// every thread.
class DigestStore {
public:
    /// The tests of a search, each with a digest of its own. Of `beginnings` there is one for each
    /// length up to which a large file was compared, one after another: a file that differs soon
    /// has no digest of its whole content. Of each the first `beginningLength` characters, since
    /// they only tell files apart (two that are wrongly alike are read further, and no more).
    enum class Part { firstBytes, samples, wholeContent, beginnings };
    static constexpr std::size_t parts = 4;
    static constexpr std::size_t beginningLength = 8;
    static constexpr std::size_t mostBeginnings = 80;  // of a file

    /// So many characters of all beginnings are remembered; those of further files are not.
    static constexpr std::size_t mostOfBeginnings = 20'000'000;

    /// So many files are remembered at most: some 30 MB on disk, 50 with the beginnings.
    static constexpr std::size_t mostFiles = 100'000;

    /// A change within so many seconds after another one may leave the times as they are: clocks of
    /// file systems are coarse (FAT counts in steps of two seconds).
    static constexpr double coarsest = 2;

    /// The digest of an unchanged file, in lower-case hexadecimal.
    std::optional<std::string> find(const FileStamp& stamp, Part part);

    /// Remembers one that was read of a file that had this stamp before and after. `readAt` is when
    /// reading began (seconds since 1970): what was changed shortly before, or later, is not taken.
    void put(const FileStamp& stamp, Part part, std::string_view digest, double readAt);

    /// Forgets what neither `find` nor `put` has been asked about: those files are gone or have
    /// changed. For the end of a search that has looked at all of them.
    void dropUnused();

    bool hasChanged() const;  // since it was made
    std::size_t size() const;

    /// Lines of text: one that names form and version, one a file (the beginnings are left out
    /// where there are none), and the SHA-256 of all of them.
    std::string encoded() const;

    /// An empty one for what `encoded` has not written whole, or of any other version.
    static std::shared_ptr<DigestStore> decoded(std::string_view text);

private:
    struct Known {
        FileStamp stamp;
        std::array<std::string, parts> digests;  // empty: not known
        bool isUsed = false;
    };
    struct Hash {
        std::size_t operator()(const FileIdentity& identity) const;
    };

    void countBeginnings();

    mutable std::mutex lock_;
    std::unordered_map<FileIdentity, Known, Hash> files_;
    std::size_t ofBeginnings_ = 0;  // characters
    bool hasChanged_ = false;
};

/// Where it is kept: "digests" of the data folder, for the user alone. Blocking.
class DigestFile {
public:
    DigestFile(FileManager& files, const HomeLayout& layout)
        : files_(files), folder_(layout.dataFolder) {}

    /// What is stored; an empty one when it is missing, damaged or out of reach.
    std::shared_ptr<DigestStore> load() const;

    /// Replaces what is stored when there is something new. Silent when it cannot be saved: then
    /// files are read again.
    void save(const DigestStore& store) const;

private:
    FileManager& files_;
    std::string folder_;
};

}  // namespace velto
