#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "TrashWorld.h"
#include "cleaning/VeltoTrashService.h"

namespace velto {

/// A home of its own for each test, and its trash as one process sees it.
struct TrashTest : testing::Test {
    TempHome home{TrashWorld::fastVolume()};
    HomeLayout layout = HomeLayout::macOS(home.path());
    FakeClock clock;
    TrashProcess process{layout, clock};
    VeltoTrashService& service = process.service;

    std::string file(const std::string& relative, const std::string& content = "content") {
        home.text(relative, content);
        return home.path(relative);
    }

    std::string folder(const std::string& relative) {
        home.text(relative + "/inside", "inside");
        return home.path(relative);
    }

    /// A link of the home; `target` as the link spells it.
    std::string link(const std::string& relative, const std::string& target) {
        home.link(relative, target);
        return home.path(relative);
    }

    /// Puts a new file into the trash, as an operation of its own.
    TrashItem trashed(const std::string& relative, const std::string& content = "content") {
        return service.moveToTrash({file(relative, content)}, "wind").items.front();
    }

    std::string operationFolder(const std::string& operationID) const {
        return layout.trashFolder + "/" + operationID;
    }

    std::string stored(const TrashItem& item) const {
        return operationFolder(item.opID) + "/" + item.id + "-" + item.name;
    }

    std::string manifestPath() const { return layout.trashFolder + "/manifest.json"; }
    std::string manifest() const { return read(manifestPath()); }
    bool exists(const std::string& path) const { return process.files.exists(path); }
    std::string read(const std::string& path) const {
        return process.files.read(path, anyFile(1 << 20));
    }

    void write(const std::string& path, const std::string& content) {
        process.files.createFolders(std::filesystem::path(path).parent_path());
        process.files.writeAtomically(path, content);
    }

    /// What a process that starts now reads.
    Manifest readByOthers() const {
        TrashProcess other(layout, clock);
        return {.items = other.service.items(), .operations = other.service.operations()};
    }

    /// What this process has in memory.
    Manifest lists() { return {.items = service.items(), .operations = service.operations()}; }

    /// Why `action` was refused by the trash itself.
    static std::optional<TrashError::Reason> refusal(const std::function<void()>& action) {
        try {
            action();
        } catch (const TrashError& error) {
            return error.reason();
        }
        return std::nullopt;
    }

    std::optional<TrashError::Reason> refusal(const std::string& path,
                                              const std::vector<std::string>& extraRoots = {}) {
        return refusal([&] { service.validate(path, extraRoots); });
    }

    /// The file system's reason for refusing `action`; 0 when it did not.
    static int failure(const std::function<void()>& action) {
        try {
            action();
        } catch (const FileError& error) {
            return error.code();
        }
        return 0;
    }
};

/// A disk that does not let some items be moved or removed, by the end of their names, and that
/// counts sizes as the test likes.
class RefusingFiles final : public PosixFileManager {
public:
    bool moveAtOnce(const FolderHandle& from, const std::string& name, const FolderHandle& to,
                    const std::string& newName) override {
        if (!refused.empty() && (newName.ends_with(refused) || name.ends_with(refused))) {
            throw FileError("move", name, EBUSY);
        }
        return PosixFileManager::moveAtOnce(from, name, to, newName);
    }

    void removeAll(const FolderHandle& parent, const std::string& name) override {
        if (!resisting.empty() && name.ends_with(resisting)) {
            throw FileError("remove", name, EACCES);
        }
        PosixFileManager::removeAll(parent, name);
    }

    std::optional<FileAttributes> attributes(const FolderHandle& folder,
                                             const std::string& name) override {
        auto found = PosixFileManager::attributes(folder, name);
        if (found && bytes) found->allocatedSize = *bytes;
        return found;
    }
    void writeAtomically(const std::string& path, std::string_view content) override {
        if (!unwritable.empty() && path.ends_with(unwritable)) {
            throw FileError("write", path, ENOSPC);
        }
        PosixFileManager::writeAtomically(path, content);
    }

    void writeAtomically(const FolderHandle& folder, const std::string& name,
                         std::string_view content) override {
        if (!unwritable.empty() && name.ends_with(unwritable)) {
            throw FileError("write", name, ENOSPC);
        }
        PosixFileManager::writeAtomically(folder, name, content);
    }

    std::unique_ptr<FileVersion> openVersion(const std::string& path,
                                             const ReadLimit& limit) override {
        if (!unreadable.empty() && path.ends_with(unreadable)) throw FileError("read", path, EIO);
        return PosixFileManager::openVersion(path, limit);
    }

    using PosixFileManager::attributes;
    using PosixFileManager::removeAll;

    std::string refused;                // what cannot be moved; nothing when empty
    std::string resisting;              // what cannot be removed
    std::string unwritable;             // what cannot be written
    std::string unreadable;             // what cannot be read
    std::optional<std::int64_t> bytes;  // what everything takes up
};

/// The same trash on a disk that refuses some things.
struct RefusingTrashTest : TrashTest {
    RefusingFiles files;
    FakeLog log;
    VeltoTrashService refusing{files, files, clock, log, layout};
};

}  // namespace velto
