#pragma once

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "TrashWorld.h"
#include "platform/posix/PosixFolder.h"
#include "support/tree_text.h"

namespace velto {

/// Where the cut-off process was: at which call that changes something, about which name.
struct Cut {
    const char* name;
    bool isRestore;
    std::function<bool(const std::string& call, const std::string& name)> isReached;
};

/// What the next start finds in the disk's place.
struct Absence {
    const char* name;
    enum class Kind { missing, emptyMountPoint, anotherDisk, link, refused } kind;
    int reason = 0;
};

struct Case {
    Cut cut;
    Absence absence;
};
inline void PrintTo(const Case& one, std::ostream* stream) {
    *stream << one.cut.name << " " << one.absence.name;
}

/// Names volumes as the test says: the folder "disk" of the home is one of its own.
class DiskFiles final : public PosixFileManager {
public:
    DiskFiles(FileCalls& calls, std::string disk, const std::string& inserted)
        : PosixFileManager(calls), disk_(std::move(disk)), inserted_(inserted) {}

    std::string volumeOf(const FolderHandle& folder) override {
        return isAtOrBelow(posix(folder).path, disk_) ? inserted_
                                                      : PosixFileManager::volumeOf(folder);
    }

private:
    static bool isAtOrBelow(const std::string& path, const std::string& top) {
        return path == top || path.starts_with(top + "/");
    }
    std::string disk_;
    const std::string& inserted_;
};

/// A home with a disk in it that is another volume than the trash's, a move between the two that a
/// process has died in, and a start that does not find the disk.
class AbsentDisk : public testing::TestWithParam<Case> {
protected:
    static constexpr const char* thing = "disk/things/thing";

    struct Process {
        explicit Process(AbsentDisk& test) : files(calls, test.disk, test.inserted) {
            calls.waitsForDisk = false;
        }
        void open(AbsentDisk& test) {
            service.emplace(files, files, test.world.clock, log, test.world.layout);
        }
        WatchedFileCalls calls;
        DiskFiles files;
        FakeLog log;
        std::optional<VeltoTrashService> service;
    };

    std::unique_ptr<Process> process() {
        auto made = std::make_unique<Process>(*this);
        made->open(*this);
        return made;
    }

    void SetUp() override {
        if (!TrashWorld::hasTwoVolumes())
            GTEST_SKIP() << "memory and build folder are one volume here";
        for (const char* name : {"a", "b", "c"})
            world.home.text(std::string(thing) + "/" + name, std::string(50, *name));
        world.home.text("disk/things/other", "of the disk");
        world.home.text("Documents/bystander", "bystander");
        whole = treeText(world.path(thing));
        const auto before = process();
        bystander = before->service->moveToTrash({world.path("Documents/bystander")}, "wind")
                        .items.front()
                        .id;
    }

    /// Moves the thing into the trash, or out of it, in a process that dies on the way.
    void cutOff() {
        const Cut& cut = GetParam().cut;
        std::string item;
        if (cut.isRestore) {
            item = process()->service->moveToTrash({world.path(thing)}, "wind").items.front().id;
        }
        const pid_t child = fork();
        if (child == 0) {
            const auto dying = process();
            dying->calls.before = [&](const char* call, const char* name) {
                if (cut.isReached(call, name)) _exit(WatchedFileCalls::died);
            };
            if (cut.isRestore)
                dying->service->restore(item);
            else
                dying->service->moveToTrash({world.path(thing)}, "wind");
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == WatchedFileCalls::died)
            << "it was not cut off";
    }

    void takeOut() {
        using Kind = Absence::Kind;
        const Absence& absence = GetParam().absence;
        if (absence.kind == Kind::refused) return;
        std::filesystem::rename(disk, drawer);
        inserted = absence.kind == Kind::anotherDisk ? "another disk" : "no disk";
        if (absence.kind == Kind::emptyMountPoint) std::filesystem::create_directory(disk);
        if (absence.kind == Kind::anotherDisk) world.home.text(thing, "of another");
        if (absence.kind == Kind::link) std::filesystem::create_directory_symlink(drawer, disk);
    }

    void putBack() {
        if (GetParam().absence.kind == Absence::Kind::refused) return;
        std::filesystem::remove_all(disk);
        std::filesystem::rename(drawer, disk);
        inserted = "the disk";
    }

    void refuse(Process& refused) {
        if (GetParam().absence.kind != Absence::Kind::refused) return;
        refused.calls.refuses = [reason = GetParam().absence.reason](const char* call,
                                                                     const char* name) {
            const bool isDisk = std::strcmp(name, "disk") == 0 || std::strcmp(name, "things") == 0;
            return isDisk && std::strcmp(call, "open") == 0 ? reason : 0;
        };
    }

    /// What is listed of the thing is whole: as often as that.
    int listedWhole(Process& seen) {
        int count = 0;
        for (const TrashItem& item : seen.service->items()) {
            if (item.originalPath != world.path(thing)) continue;
            const std::string stored =
                world.trashPath() + "/" + item.opID + "/" + item.id + "-" + item.name;
            const std::string text = treeText(stored);
            EXPECT_TRUE(text == whole || text.empty()) << "a part is listed as the whole";
            if (text == whole) ++count;
        }
        return count;
    }

    void expectTrashWorks(Process& seen) {
        VeltoTrashService& service = *seen.service;
        EXPECT_NO_THROW(service.restore(bystander));
        EXPECT_EQ(world.home.read("Documents/bystander"), "bystander");
        world.home.text("Documents/more", "more");
        const Operation operation = service.moveToTrash({world.path("Documents/more")}, "wind");
        EXPECT_NO_THROW(service.undoOperation(operation.id));
        EXPECT_EQ(world.home.read("Documents/more"), "more");
        const TrashItem item =
            service.moveToTrash({world.path("Documents/more")}, "wind").items.front();
        EXPECT_NO_THROW(service.deletePermanently(item.id));
        EXPECT_FALSE(world.home.exists("Documents/more"));
    }

    /// Names that only the program knows, anywhere below a folder.
    static std::vector<std::string> scratchNames(const std::string& folder) {
        std::vector<std::string> found;
        for (const std::string& leaf : leavesBelow(folder)) {
            if (leaf.find(".velto-") != std::string::npos) found.push_back(leaf);
        }
        return found;
    }

    TrashWorld world{TrashWorld::fastVolume(), buildVolume()};
    std::string disk = world.path("disk");
    std::string drawer = world.path("drawer");
    std::string inserted = "the disk";
    std::string whole;
    std::string bystander;
};

inline bool isCopying(const std::string& call, const std::string& name) {
    return call == "open" && name == "b";  // the second of three files
}
/// Of a process that dies there.
inline bool isPutAside(const std::string& call, const std::string& name) {
    static bool hasScratchName = false;
    if (call != "rename") return false;
    hasScratchName = hasScratchName || name.starts_with(".velto-");
    return hasScratchName && name.ends_with("thing");
}
inline bool isRemoving(const std::string& call, const std::string& name) {
    return call == "remove" && name == "b";
}

inline std::vector<Case> casesOfAbsence() {
    using Kind = Absence::Kind;
    const std::vector<Cut> cuts{
        {"CopyingIn", false, isCopying},        {"PutAsideOutside", false, isPutAside},
        {"RemovingOutside", false, isRemoving}, {"CopyingOut", true, isCopying},
        {"PutAsideInTrash", true, isPutAside},  {"RemovingInTrash", true, isRemoving}};
    const std::vector<Absence> absences{{"Missing", Kind::missing},
                                        {"EmptyMountPoint", Kind::emptyMountPoint},
                                        {"AnotherDisk", Kind::anotherDisk},
                                        {"Link", Kind::link},
                                        {"NotConnected", Kind::refused, ENOTCONN},
                                        {"Stale", Kind::refused, ESTALE},
                                        {"Refused", Kind::refused, EACCES},
                                        {"Broken", Kind::refused, EIO}};
    std::vector<Case> all;
    for (const Cut& cut : cuts) {
        for (const Absence& absence : absences)
            all.push_back({cut, absence});
    }
    return all;
}

}  // namespace velto
