#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"
#include "platform/Platform.h"
#include "uninstall/InstalledApps.h"
#include "uninstall/removal_folder.h"
#include "uninstall/removal_rules.h"

namespace velto {

/// An item that left its place but could not be deleted to the end, or something else that left it
/// and could not be put back.
class UnfinishedRemoval : public FileError {
public:
    UnfinishedRemoval(const FileError& reason, std::string rest)
        : FileError(reason.attempt(), reason.path(), reason.code()), rest_(std::move(rest)) {}

    const std::string& rest() const { return rest_; }  // where what is left of it lies

private:
    std::string rest_;
};

/// Where a chosen path leads through links: what the user has to be shown beside it.
struct LinkTarget {
    std::string path;    // resolved
    bool isKept = true;  // only the link goes; else what it leads to does

    bool operator==(const LinkTarget&) const = default;
};

/// Deletes items for good, each as a whole: it leaves its place in one step, and only then is what
/// it holds deleted. Whatever happens in between, nobody finds half of it where it was; what a
/// process that died has left is deleted by `sweep`. Nothing outside the home is deleted, nothing
/// in a protected place, nothing behind a link below the chosen path, nothing behind one on the way
/// that the user was not shown, and nothing that took an item's place meanwhile: that goes back, or
/// is kept for good. Blocking; one thread at a time.
class ItemRemoval {
public:
    /// Both outlive the object.
    ItemRemoval(const Platform& platform, const InstalledApps& apps)
        : platform_(platform), apps_(apps) {}

    /// Deletes what the path leads to and returns how many bytes that has freed. The path is judged
    /// by what its links lead to. On a Mac's home that is also what is deleted; on another one a
    /// link goes by itself and what it leads to stays. What lies behind a link is deleted only
    /// where `shown`, which the user has seen beside the path, says so. Throws TrashError for what
    /// the rules refuse or what is not there, FileError for what the system refuses (ELOOP for what
    /// was not shown), UnfinishedRemoval when something is left of it. Of the hidden places of a
    /// Linux home that no rule names only those go that `claims` names.
    std::int64_t remove(const std::string& path,
                        const std::optional<std::string>& shown = std::nullopt,
                        const Claims& claims = {}) const;

    /// Where the path leads when it is not its own place; nothing when it is, or leads nowhere.
    std::optional<LinkTarget> linkTarget(const std::string& path) const;

    /// What `remove` would delete once it was shown; nothing when the rules refuse it or nothing is
    /// there.
    std::optional<std::string> placeOf(const std::string& path, const Claims& claims = {}) const;

    /// Throws what `remove` would, as far as that can be told without changing anything.
    void requireRemovable(const std::string& path) const;

    /// True for what belongs to this program (its data, its maintenance agent or timer) or holds
    /// some of it, by whatever path.
    bool isOwn(const std::string& path) const;

    /// Finishes deletions that were cut off. What resists stays for the next time.
    void sweep() const;

private:
    struct Target {
        std::string place;    // what is deleted
        std::string reached;  // what the path leads to
        std::unique_ptr<FolderHandle> folder;
        std::string name;
        FileAttributes attributes;
    };

    /// An item that has left its place and waits to be deleted.
    struct Aside {
        const FolderHandle& folder;
        std::string folderPath;
        std::string name;
        std::string identifier;
        std::string record;  // the file that tells of it; empty when it needs none

        std::string path() const { return folderPath + "/" + name; }
    };

    Target judged(const std::string& path, const Claims& claims) const;
    std::string resolved(const std::string& path) const;
    std::string placeOf(const std::string& standard, const std::string& reached) const;
    bool isBehindLink(const std::string& standard, const std::string& place) const;
    Target admit(const std::string& path, const Claims& claims) const;
    bool isSame(const std::string& place, const FileAttributes& attributes) const;
    bool isOwn(const std::string& path, const FileAttributes& attributes) const;
    bool isProtected(const std::string& path, const FileAttributes& attributes,
                     const Claims& claims) const;
    void removeWhole(const Target& target) const;
    bool isJudged(const Aside& aside, const Target& target) const;
    void removeAside(const Aside& aside, const Target& target) const;
    [[noreturn]] void giveBack(const Aside& aside, const Target& target) const;
    void forget(const std::string& record) const;
    void reachDisk(const FolderHandle& folder) const;
    void sweepRecord(const RemovalFolder& staging, const std::string& name) const;

    const Platform& platform_;
    const InstalledApps& apps_;
};

}  // namespace velto
