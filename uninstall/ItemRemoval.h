#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"
#include "platform/Platform.h"
#include "uninstall/InstalledApps.h"

namespace velto {

/// An item that left its place but could not be deleted to the end.
class UnfinishedRemoval : public FileError {
public:
    UnfinishedRemoval(const FileError& reason, std::string rest)
        : FileError(reason.attempt(), reason.path(), reason.code()), rest_(std::move(rest)) {}

    const std::string& rest() const { return rest_; }  // where what is left of it lies

private:
    std::string rest_;
};

/// Deletes items for good, each as a whole: it leaves its place in one step, and only then is what
/// it holds deleted. Whatever happens in between, nobody finds half of it where it was; what a
/// process that died has left is deleted by `sweep`. Nothing outside the home is deleted, nothing
/// in a protected place, and nothing behind a link below the chosen path. Blocking; one thread at a
/// time.
class ItemRemoval {
public:
    /// Both outlive the object.
    ItemRemoval(const Platform& platform, const InstalledApps& apps)
        : platform_(platform), apps_(apps) {}

    /// Deletes what the path leads to, its own links resolved first, and returns how many bytes
    /// that has freed. Throws TrashError for what the rules refuse or what is not there, FileError
    /// for what the system refuses, UnfinishedRemoval when something is left of it.
    std::int64_t remove(const std::string& path) const;

    /// Finishes deletions that were cut off. What resists stays for the next time.
    void sweep() const;

private:
    struct Target {
        std::unique_ptr<FolderHandle> folder;
        std::string name;
        FileAttributes attributes;
    };

    std::string resolved(const std::string& path) const;
    Target admit(const std::string& path) const;
    bool isProtected(const std::string& path, const FileAttributes& attributes) const;
    void removeWhole(const Target& target, const std::string& path) const;
    void removeAside(const FolderHandle& folder, const std::string& name, const Target& target,
                     const std::string& rest) const;
    void forget(const std::string& record) const;
    void sweepRecord(const std::string& name) const;

    const Platform& platform_;
    const InstalledApps& apps_;
};

}  // namespace velto
