#pragma once

#include <cerrno>
#include <map>
#include <string>

#include "platform/FileManager.h"

namespace velto::fuzz {

/// Files in memory, for what reads and replaces single files: much quicker than any disk, and out
/// of reach of everything real. There are no folders.
class MemoryFiles final : public FileManager {
public:
    void put(const std::string& path, std::string_view content) {
        files_[path] = content;
        ++changes_;
    }

    bool exists(const std::string& path) const override { return files_.contains(path); }
    std::optional<FileAttributes> attributes(const std::string& path) const override {
        const auto found = files_.find(path);
        if (found == files_.end()) return std::nullopt;
        const auto size = static_cast<std::int64_t>(found->second.size());
        return FileAttributes{.kind = FileKind::regular,
                              .allocatedSize = size,
                              .logicalSize = size,
                              .modified = static_cast<double>(changes_)};
    }
    std::vector<std::string> list(const std::string& folder) const override {
        throw FileError("list", folder, ENOTSUP);
    }
    std::string resolved(const std::string& path) const override {
        if (!exists(path)) throw FileError("resolve", path, ENOENT);
        return path;
    }
    std::string read(const std::string& path, const ReadLimit& limit) const override {
        const auto found = files_.find(path);
        if (found == files_.end()) throw FileError("read", path, ENOENT);
        if (static_cast<std::int64_t>(found->second.size()) > limit.bytes) {
            throw RefusedFile("read", path, EFBIG);
        }
        return found->second;
    }
    void writeAtomically(const std::string& path, std::string_view content) override {
        put(path, content);
    }
    void createFolders(const std::string&) override {}
    void removeAll(const std::string& path) override {
        files_.erase(path);
        ++changes_;
    }

private:
    std::map<std::string, std::string> files_;
    std::int64_t changes_ = 0;  // so that each version of a file has a date of its own
};

}  // namespace velto::fuzz
