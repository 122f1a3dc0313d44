#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "analysis/folders/FolderTree.h"
#include "analysis/folders/saturated.h"
#include "platform/walk/TreeWalk.h"

namespace velto {

/// The folders that earlier parts of a walk have been in, whatever their paths.
class WalkedFolders {
public:
    struct Identity {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;

        auto operator<=>(const Identity&) const = default;  // NOLINT(modernize-use-nullptr)
    };

    void add(const std::vector<Identity>& folders);
    bool contains(const Identity& folder) const;

private:
    std::vector<Identity> folders_;  // sorted
};

/// What the recorders of one walk share.
struct FolderRecording {
    using Number = FolderTreeBuilder::Number;

    /// A root of the walk, and what its record says.
    struct Root {
        Number number = 0;
        Number parent = FolderTreeBuilder::noParent;
        std::string name;
        // Noted by the one worker that begins the root, before anybody meets what lies below.
        std::uint64_t device = 0;
        std::uint64_t mount = 0;
    };

    std::vector<Root> roots;                // in the order of the walk's
    const WalkedFolders* walked = nullptr;  // folders that are not walked again, null for none
    // Number of the next folder; recorders take several at once, so some stay without a folder.
    std::atomic<Number> next{0};
};

/// A folder at which another mount of the same volume begins. Whether it is known under another
/// name shows when everything else has been walked.
struct BoundFolder {
    std::string path;
    std::string name;
    FolderTreeBuilder::Number number = 0;
    FolderTreeBuilder::Number parent = 0;
    std::uint32_t mark = 0;
    WalkedFolders::Identity identity;
};

/// One worker's record of the folders that it walks: no path, no lock and, but for files with
/// several names, no memory for a file.
class FolderRecorder {
public:
    using Number = FolderTreeBuilder::Number;

    explicit FolderRecorder(FolderRecording& recording) : recording_(recording) {}

    /// Gives a folder its number. Roots have one: see FolderRecording.
    void number(WalkedFolder& folder);

    /// Folders that are named and not walked: one that has its number, and one that never gets as
    /// far.
    void leaveOut(const WalkedFolder& folder, FolderState state);
    void leaveOut(const WalkedFolder& parent, std::string_view name, FolderState state);
    void leaveOut(const BoundFolder& folder, FolderState state);

    // The turn of a folder, as TreeVisitor has it.
    bool begin(const WalkedFolder& folder, const FolderStatus& status);
    /// `isCounted`: it is part of a category.
    void file(const WalkedFolder& folder, const DirectoryEntry& entry, bool isCounted) {
        const bool isKnown = entry.allocatedSize >= 0;
        count(folder, entry, isKnown ? entry.allocatedSize : entry.logicalSize, isCounted);
    }
    void other(const WalkedFolder& folder, const DirectoryEntry& entry) {
        count(folder, entry, entry.allocatedSize, true);
    }
    void unreadable() { ++facts_.unreadable; }
    void unopened(const WalkedFolder& folder);
    /// The folder whose turn it is was removed before it could be opened: it leaves no record.
    void vanished();
    void end(const WalkedFolder& folder, bool isComplete);

    /// A file with several names, of which one is to count.
    struct Linked {
        WalkedFolders::Identity identity;
        std::int64_t bytes = 0;
        Number folder = 0;
        bool isRegular = true;
        bool isCounted = false;
        std::uint16_t links = 0;  // names of the file; the most that fits in
        std::string_view name;
    };

    // Between two turns of a walk.
    const std::vector<Linked>& linked() const { return linked_; }
    /// Of the folder whose turn has ended.
    const FolderFacts& lastFacts() const {
        return chunks_.back()[(count_ - 1) % chunkLength].facts;
    }
    /// True for a folder that is seen through the same mount as its root.
    bool isOfTheSameMount(const WalkedFolder& folder, const FolderStatus& status) const {
        const FolderRecording::Root& root = recording_.roots[folder.root()];
        return status.device == root.device && status.mount == root.mount;
    }

    // After the walk.
    std::vector<Linked> takeLinked() { return std::exchange(linked_, {}); }
    std::vector<BoundFolder> takeBound() { return std::exchange(bound_, {}); }
    std::int64_t hiddenBytes() const { return hiddenBytes_; }
    /// Calls `visit(entry)` for each record from one on.
    template <typename Visit>
    void forEach(std::size_t first, const Visit& visit) const {
        for (std::size_t index = first; index < count_; ++index)
            visit(chunks_[index / chunkLength][index % chunkLength]);
    }
    std::size_t count() const { return count_; }
    /// Puts the records at their numbers and gives their memory back on the way; the names stay as
    /// long as the recorder.
    void moveTo(std::vector<FolderTreeBuilder::Entry>& byNumber);

private:
    // Large enough for the system to take each back by itself.
    static constexpr std::size_t chunkLength = 4096;
    static constexpr std::size_t nameChunk = 256 * 1024;

    std::string_view kept(std::string_view name);
    void add(Number number, Number parent, std::string_view name, const FolderFacts& facts);
    void record(const WalkedFolder& folder);
    Number nextNumber();
    void countLinked(const WalkedFolder& folder, const DirectoryEntry& entry, std::int64_t bytes,
                     bool isCounted);
    // Here, as every file of a home comes by.
    void count(const WalkedFolder& folder, const DirectoryEntry& entry, std::int64_t bytes,
               bool isCounted) {
        bytes = std::max<std::int64_t>(bytes, 0);
        latest_ = std::max(latest_, entry.modified);
        if (entry.links > 1 && entry.inode != 0) {
            countLinked(folder, entry, bytes, isCounted);
            return;
        }
        facts_.ownBytes = saturatedSum(facts_.ownBytes, bytes);
        if (entry.kind == EntryKind::regular) ++facts_.ownFiles;
        if (!isCounted) hiddenBytes_ = saturatedSum(hiddenBytes_, bytes);
    }

    FolderRecording& recording_;
    Number next_ = 0;  // of the numbers that this recorder has taken
    Number end_ = 0;
    FolderFacts facts_;  // of the folder whose turn it is
    double latest_ = 0;  // the same, seconds since 1970
    std::vector<std::unique_ptr<FolderTreeBuilder::Entry[]>> chunks_;
    std::size_t count_ = 0;
    std::vector<std::unique_ptr<char[]>> names_;
    std::size_t nameEnd_ = nameChunk;
    std::vector<Linked> linked_;
    std::vector<BoundFolder> bound_;
    std::int64_t hiddenBytes_ = 0;
};

}  // namespace velto
