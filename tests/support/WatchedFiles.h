#pragma once

#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/FileManager.h"

namespace velto {

/// Another file manager whose answers a test can replace, and which remembers where it was asked
/// to look.
class WatchedFiles final : public FileManager {
public:
    explicit WatchedFiles(std::unique_ptr<FileManager> files) : files_(std::move(files)) {}

    bool exists(const std::string& path) const override {
        look(path);
        return files_->exists(path);
    }
    std::optional<FileAttributes> attributes(const std::string& path) const override {
        look(path);
        const auto replaced = attributesAt.find(path);
        return replaced == attributesAt.end() ? files_->attributes(path) : replaced->second;
    }
    std::vector<std::string> list(const std::string& folder) const override {
        look(folder);
        {
            const std::lock_guard guard(lock_);
            listed_.insert(folder);
        }
        if (unlistable.contains(folder)) throw FileError("list", folder, EACCES);
        const auto replaced = listingOf.find(folder);
        return replaced == listingOf.end() ? files_->list(folder) : replaced->second;
    }
    std::string resolved(const std::string& path) const override { return files_->resolved(path); }
    std::string read(const std::string& path, const ReadLimit& limit) const override {
        look(path);
        return files_->read(path, limit);
    }
    void writeAtomically(const std::string& path, std::string_view content) override {
        if (unwritable.contains(path)) throw FileError("write", path, ENOSPC);
        files_->writeAtomically(path, content);
    }
    void createFolders(const std::string& path) override { files_->createFolders(path); }
    void removeAll(const std::string& path) override {
        if (unremovable.contains(path)) throw FileError("remove", path, EBUSY);
        files_->removeAll(path);
    }

    std::map<std::string, std::optional<FileAttributes>> attributesAt;
    std::map<std::string, std::vector<std::string>> listingOf;
    std::set<std::string> unlistable;
    std::set<std::string> unwritable;
    std::set<std::string> unremovable;

    /// Every folder that was listed, or would have been.
    std::set<std::string> listed() const {
        const std::lock_guard guard(lock_);
        return listed_;
    }

    /// Every path that was looked at.
    std::set<std::string> looked() const {
        const std::lock_guard guard(lock_);
        return looked_;
    }

private:
    void look(const std::string& path) const {
        const std::lock_guard guard(lock_);
        looked_.insert(path);
    }

    std::unique_ptr<FileManager> files_;
    mutable std::mutex lock_;
    mutable std::set<std::string> looked_;
    mutable std::set<std::string> listed_;
};

}  // namespace velto
