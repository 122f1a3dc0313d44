#pragma once

#include <chrono>

#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/posix/FileCalls.h"

namespace velto {

/// How long `lock` waits for another holder. What holds one works on the trash: a move within a
/// volume takes far less, and whoever waits for a move between volumes is better told.
struct LockPatience {
    std::chrono::milliseconds limit{10'000};
};

/// Files through POSIX calls. New files are for the user alone (0600), new folders too (0700).
class PosixFileManager : public FileManager, public FileMover {
public:
    /// `calls` outlives the manager.
    explicit PosixFileManager(FileCalls& calls = systemFileCalls(), LockPatience patience = {})
        : calls_(calls), patience_(patience) {}

    bool exists(const std::string& path) const override;
    std::optional<FileAttributes> attributes(const std::string& path) const override;
    std::vector<std::string> list(const std::string& folder) const override;
    std::string resolved(const std::string& path) const override;
    std::string read(const std::string& path, const ReadLimit& limit) const override;
    /// An existing file keeps its permission bits, but nobody else may write the new one; a link at
    /// `path` is replaced itself.
    void writeAtomically(const std::string& path, std::string_view content) override;
    void createFolders(const std::string& path) override;
    /// Does not enter a volume that is mounted inside (EXDEV).
    void removeAll(const std::string& path) override;

    std::unique_ptr<FolderHandle> openFolder(const std::string& path, FolderPath how) override;
    std::unique_ptr<FolderHandle> openFolder(const FolderHandle& parent,
                                             const std::string& name) override;
    bool isOwnFolder(const FolderHandle& folder, const FolderHandle& other) override;
    std::string volumeOf(const FolderHandle& folder) override;
    bool areOnOneMount(const FolderHandle& one, const FolderHandle& other) override;
    std::size_t longestName(const FolderHandle& folder) override;
    bool isAtOrBelow(const FolderHandle& folder, const FolderHandle& ancestor) override;
    std::optional<FileAttributes> attributes(const FolderHandle& folder,
                                             const std::string& name) override;
    std::vector<std::string> list(const FolderHandle& folder) override;
    void writeAtomically(const FolderHandle& folder, const std::string& name,
                         std::string_view content) override;
    void makeFolder(const FolderHandle& parent, const std::string& name) override;
    bool moveAtOnce(const FolderHandle& from, const std::string& name, const FolderHandle& to,
                    const std::string& newName) override;
    void moveInSteps(const FolderHandle& from, const std::string& name, const FolderHandle& to,
                     const std::string& newName, const std::string& scratch) override;
    MoveState settleMove(const FolderHandle& from, const std::string& name, const FolderHandle& to,
                         const std::string& newName, const std::string& scratch) override;
    void removeAll(const FolderHandle& parent, const std::string& name) override;
    bool removeEmptyFolder(const FolderHandle& parent, const std::string& name) override;
    void sync(const FolderHandle& folder) override;
    std::unique_ptr<FileLock> lock(const std::string& path, bool wait) override;
    std::unique_ptr<FileVersion> openVersion(const std::string& path,
                                             const ReadLimit& limit) override;

private:
    void writeIn(int folder, const std::string& name, std::string_view content,
                 const std::string& path);
    bool waitForLock(int file, const std::string& path);

    FileCalls& calls_;
    LockPatience patience_;
};

FileAttributes attributesFrom(const struct stat& status);

}  // namespace velto
