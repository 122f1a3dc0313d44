#pragma once

#include "platform/FileManager.h"
#include "platform/posix/FileCalls.h"

namespace velto {

/// Files through POSIX calls. New files are for the user alone (0600), new folders too (0700).
class PosixFileManager final : public FileManager {
public:
    /// `calls` outlives the manager.
    explicit PosixFileManager(FileCalls& calls = systemFileCalls()) : calls_(calls) {}

    bool exists(const std::string& path) const override;
    std::optional<FileAttributes> attributes(const std::string& path) const override;
    std::vector<std::string> list(const std::string& folder) const override;
    std::string resolved(const std::string& path) const override;
    /// Regular files only (EINVAL, EISDIR): a pipe in the place of a file is not waited for.
    std::string read(const std::string& path) const override;
    /// An existing file keeps its permission bits; a link at `path` is replaced itself.
    void writeAtomically(const std::string& path, std::string_view content) override;
    void createFolders(const std::string& path) override;
    /// Does not enter a volume that is mounted inside (EXDEV).
    void removeAll(const std::string& path) override;

private:
    FileCalls& calls_;
};

}  // namespace velto
