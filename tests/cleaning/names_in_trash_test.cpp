// Volumes that encrypt names take shorter ones than others, and the trash adds something to each.

#include "TrashFixture.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

/// Names of more bytes than that are refused, as on a volume with that limit.
class ShortNames final : public PosixFileManager {
public:
    ShortNames(WatchedFileCalls& calls, std::size_t longest)
        : PosixFileManager(calls), longest_(longest) {
        calls.waitsForDisk = false;
        calls.refuses = [this](const char*, const char* name) {
            const std::string_view path = name;
            const std::size_t length = path.size() - (path.rfind('/') + 1);
            return length > longest_ ? ENAMETOOLONG : 0;
        };
    }

    std::size_t longestName(const FolderHandle&) override { return longest_; }

private:
    std::size_t longest_;
};

struct NamesInTrash : TrashTest {
    struct Process {
        Process(const HomeLayout& layout, const Clock& clock, std::size_t longest)
            : files(calls, longest), service(files, files, clock, log, layout) {}

        WatchedFileCalls calls;
        ShortNames files;
        FakeLog log;
        VeltoTrashService service;
    };

    static constexpr std::size_t encrypted = 143;

    static std::vector<std::string> names() {
        return {std::string(139, 'n') + ".pdf", std::string(143, 'x'), std::string(133, 'x'),
                std::string(132, 'x'), std::string(129, 'a') + "ñññññññ"};
    }

    std::vector<std::string> paths() {
        std::vector<std::string> all;
        for (const std::string& name : names())
            all.push_back(folder("Documents/" + name));
        return all;
    }

    std::vector<std::string> storedIn(const Operation& operation) {
        return process.files.list(
            *process.files.openFolder(operationFolder(operation.id), FolderPath::withoutLinks));
    }
};

TEST_F(NamesInTrash, WhatAnEncryptedVolumeHoldsFitsIntoItsTrashAndComesBack) {
    const std::vector<std::string> all = paths();
    Process here(layout, clock, encrypted);
    const Operation operation = here.service.moveToTrash(all, "wind");
    const std::vector<std::string> stored = storedIn(operation);
    EXPECT_THAT(stored, SizeIs(all.size()));
    for (const std::string& name : stored) {
        EXPECT_LE(name.size(), encrypted);
        EXPECT_TRUE(isValidUtf8(name)) << "a character is cut in two";
    }
    Process next(layout, clock, encrypted);
    next.service.deletePermanently(next.service.items().back().id);
    next.service.undoOperation(operation.id);
    for (std::size_t index = 0; index + 1 < all.size(); ++index)
        EXPECT_EQ(read(all[index] + "/inside"), "inside");
    EXPECT_THAT(next.service.items(), IsEmpty());
    EXPECT_FALSE(exists(operationFolder(operation.id)));
}

TEST_F(NamesInTrash, ATrashThatMovesToAVolumeWithAnotherLimitIsKnownAgain) {
    const std::vector<std::string> all = paths();
    const Operation operation = Process(layout, clock, encrypted).service.moveToTrash(all, "wind");
    Process next(layout, clock, 255);
    next.service.undoOperation(operation.id);
    for (const std::string& path : all)
        EXPECT_EQ(read(path + "/inside"), "inside");
    EXPECT_THAT(next.service.items(), IsEmpty());
}

}  // namespace
}  // namespace velto
