#include "platform/linux/LinuxDirectoryReader.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <map>
#include <set>
#include <thread>
#include <tuple>

#include "support/TempHome.h"
#include "support/linux/private_mounts.h"

namespace velto {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

class LinuxDirectoryReaderTest : public testing::Test {
protected:
    /// Reads a folder of the home; the entries' names live in `list`.
    std::map<std::string, DirectoryEntry> read(const std::string& path,
                                               const ReadOptions& options = {}) {
        const auto folder = reader.open(path);
        EXPECT_NE(folder, nullptr) << path;
        EXPECT_TRUE(reader.read(*folder, options, list));
        std::map<std::string, DirectoryEntry> entries;
        for (const DirectoryEntry& entry : list.entries()) {
            entries.emplace(std::string(entry.name), entry);
        }
        EXPECT_EQ(entries.size(), list.entries().size()) << "a name was listed twice";
        return entries;
    }

    std::set<std::string> names(const std::string& path, const ReadOptions& options = {}) {
        std::set<std::string> result;
        for (const auto& [name, entry] : read(path, options))
            result.insert(name);
        return result;
    }

    LinuxDirectoryReader reader;
    EntryList list;
    TempHome home;
};

TEST_F(LinuxDirectoryReaderTest, AFileCountsWithItsSizeOnDiskItsLengthAndItsDates) {
    const auto file = home.file("film.mkv", 1'000'000);
    timespec times[2] = {{.tv_sec = 1'600'000'000, .tv_nsec = 500'000'000},
                         {.tv_sec = 1'500'000'000, .tv_nsec = 250'000'000}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.path().c_str(), times, 0), 0);
    struct stat status {};
    ASSERT_EQ(stat(file.path().c_str(), &status), 0);

    const DirectoryEntry entry = read(home.path()).at("film.mkv");
    EXPECT_EQ(entry.kind, EntryKind::regular);
    EXPECT_EQ(entry.logicalSize, 1'000'000);
    EXPECT_EQ(entry.allocatedSize, status.st_blocks * 512);
    EXPECT_GE(entry.allocatedSize, 1'000'000);
    EXPECT_DOUBLE_EQ(entry.accessed, 1'600'000'000.5);
    EXPECT_DOUBLE_EQ(entry.modified, 1'500'000'000.25);
    EXPECT_FALSE(entry.hiddenFlag);
}

TEST_F(LinuxDirectoryReaderTest, ASparseFileCountsWithWhatItTakesNotWithItsLength) {
    const auto file = home.file("disk.img", 0);
    ASSERT_EQ(truncate(file.path().c_str(), 1'000'000'000), 0);
    const DirectoryEntry entry = read(home.path()).at("disk.img");
    EXPECT_EQ(entry.logicalSize, 1'000'000'000);
    EXPECT_LT(entry.allocatedSize, 1'000'000);
}

TEST_F(LinuxDirectoryReaderTest, FoldersAndLinksHaveASizeOfTheirOwnWhenItIsAskedFor) {
    home.file("folder/inside", 1'000'000);
    home.link("link", "folder/inside");
    struct stat status {};
    ASSERT_EQ(lstat(home.path("folder").c_str(), &status), 0);

    auto entries = read(home.path(), {.sizeEveryEntry = true});
    EXPECT_EQ(entries.at("folder").kind, EntryKind::folder);
    EXPECT_EQ(entries.at("folder").logicalSize, status.st_size) << "not what is in it";
    EXPECT_EQ(entries.at("link").kind, EntryKind::symbolicLink);
    EXPECT_EQ(entries.at("link").logicalSize, 13) << "the text of the link";
    list.clear();
    entries = read(home.path());
    EXPECT_EQ(entries.at("folder").logicalSize, 0);
    EXPECT_EQ(entries.at("link").logicalSize, 0);
}

TEST_F(LinuxDirectoryReaderTest, AFileTellsWhichItIsAndHowManyNamesItHas) {
    home.file("one", 10);
    home.file("alone", 10);
    ASSERT_EQ(::link(home.path("one").c_str(), home.path("other").c_str()), 0);
    struct stat status {};
    ASSERT_EQ(stat(home.path("one").c_str(), &status), 0);
    const auto entries = read(home.path());
    EXPECT_EQ(entries.at("one").inode, status.st_ino);
    EXPECT_EQ(entries.at("other").inode, status.st_ino);
    EXPECT_EQ(entries.at("other").links, 2u);
    EXPECT_EQ(entries.at("alone").links, 1u);
}

TEST_F(LinuxDirectoryReaderTest, WhatALinkTakesUpIsReadWhenItIsAskedFor) {
    home.link("long", std::string(900, 'x'));
    home.folder("folder");
    struct stat status {};
    ASSERT_EQ(lstat(home.path("long").c_str(), &status), 0);
    EXPECT_EQ(read(home.path()).at("long").allocatedSize, -1);
    list.clear();
    const auto entries = read(home.path(), {.allocatedOfEveryFile = true});
    EXPECT_EQ(entries.at("long").kind, EntryKind::symbolicLink);
    EXPECT_EQ(entries.at("long").allocatedSize, status.st_blocks * 512);
    EXPECT_EQ(entries.at("long").inode, status.st_ino);
    EXPECT_EQ(entries.at("folder").allocatedSize, -1);
}

TEST_F(LinuxDirectoryReaderTest, AFolderIsKnownBeforeItIsOpened) {
    home.file("folder/inside", 10);
    home.file("file", 10);
    home.link("link", "folder");
    struct stat status {};
    ASSERT_EQ(lstat(home.path("folder").c_str(), &status), 0);
    const auto parent = reader.open(home.path());
    FolderStatus own, named, opened;
    ASSERT_TRUE(reader.status(*parent, "", own));
    ASSERT_TRUE(reader.status(*parent, "folder", named));
    ASSERT_TRUE(reader.status(*reader.openChild(*parent, "folder"), "", opened));
    EXPECT_EQ(named.inode, status.st_ino);
    EXPECT_EQ(named.allocatedSize, status.st_blocks * 512);
    EXPECT_DOUBLE_EQ(named.modified, static_cast<double>(status.st_mtim.tv_sec) +
                                         static_cast<double>(status.st_mtim.tv_nsec) / 1e9);
    EXPECT_EQ(opened.inode, named.inode);
    EXPECT_EQ(own.device, named.device);
    EXPECT_EQ(own.mount, named.mount);
    EXPECT_NE(own.inode, named.inode);
    for (const auto& [name, reason] : std::map<std::string, int>{
             {"file", ENOTDIR}, {"link", ENOTDIR}, {"missing", ENOENT}, {"a/b", EINVAL}}) {
        errno = 0;
        EXPECT_FALSE(reader.status(*parent, name, named)) << name;
        EXPECT_EQ(errno, reason) << name;
    }
}

TEST_F(LinuxDirectoryReaderTest, VolumesAndBindMountsAreToldApart) {
    for (const char* name : {"memory", "bound", "plain"})
        home.folder(name);
    const auto outcome = withPrivateMounts([&] {
        if (!mountMemory(home.path("memory"))) return false;
        if (!bindTo(home.path("plain"), home.path("bound"))) return false;
        const auto parent = reader.open(home.path());
        FolderStatus own, memory, bound, plain;
        EXPECT_TRUE(reader.status(*parent, "", own));
        EXPECT_TRUE(reader.status(*parent, "memory", memory));
        EXPECT_TRUE(reader.status(*parent, "bound", bound));
        EXPECT_TRUE(reader.status(*parent, "plain", plain));
        EXPECT_NE(memory.device, own.device);
        EXPECT_EQ(bound.device, own.device);
        EXPECT_EQ(bound.inode, plain.inode);
        EXPECT_EQ(plain.mount, own.mount);
        EXPECT_NE(bound.mount, own.mount);
        return true;
    });
    if (outcome == InPrivate::notAllowed) GTEST_SKIP() << "mounting is not allowed here";
    EXPECT_EQ(outcome, InPrivate::done);
}

TEST_F(LinuxDirectoryReaderTest, LinksPipesAndSocketsAreWhatTheyAreAndNeverFollowed) {
    home.file("target", 10);
    home.folder("folder");
    home.link("to file", "target");
    home.link("to folder", "folder");
    home.link("to nothing", "missing");
    ASSERT_EQ(mkfifo(home.path("pipe").c_str(), 0600), 0);
    const int socketFile = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    home.path("socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(socketFile, reinterpret_cast<sockaddr*>(&address), sizeof(address)), 0);
    close(socketFile);

    std::map<std::string, EntryKind> kinds;
    for (const auto& [name, entry] : read(home.path()))
        kinds[name] = entry.kind;
    EXPECT_EQ(kinds, (std::map<std::string, EntryKind>{{"target", EntryKind::regular},
                                                       {"folder", EntryKind::folder},
                                                       {"to file", EntryKind::symbolicLink},
                                                       {"to folder", EntryKind::symbolicLink},
                                                       {"to nothing", EntryKind::symbolicLink},
                                                       {"pipe", EntryKind::other},
                                                       {"socket", EntryKind::other}}));
}

TEST_F(LinuxDirectoryReaderTest, HiddenNamesAreListedOrLeftOutAsAsked) {
    home.file("seen", 1);
    home.file(".hidden", 1);
    home.file("..two stops", 1);
    home.folder(".config");
    EXPECT_THAT(names(home.path()),
                UnorderedElementsAre("seen", ".hidden", "..two stops", ".config"));
    list.clear();
    EXPECT_THAT(names(home.path(), {.skipHidden = true}), UnorderedElementsAre("seen"));
}

TEST_F(LinuxDirectoryReaderTest, AnEmptyFolderHasNoEntries) {
    EXPECT_THAT(names(home.folder("empty")), IsEmpty());
}

TEST_F(LinuxDirectoryReaderTest, ANameThatIsNotUtf8CountsByteForByte) {
    const std::string name = "caf\xE9 \xFF\xFE.txt";
    home.file(name, 5);
    const auto entries = read(home.path());
    ASSERT_TRUE(entries.contains(name));
    EXPECT_EQ(entries.at(name).logicalSize, 5);
}

TEST_F(LinuxDirectoryReaderTest, TheLongestNamesAreReadAndEntered) {
    const std::string name(255, 'n');
    home.file(name + "/inside", 7);
    const auto folder = reader.open(home.path());
    ASSERT_NE(folder, nullptr);
    const auto child = reader.openChild(*folder, name);
    ASSERT_NE(child, nullptr);
    ASSERT_TRUE(reader.read(*child, {}, list));
    ASSERT_EQ(list.entries().size(), 1u);
    EXPECT_EQ(list.entries()[0].logicalSize, 7);

    EXPECT_EQ(reader.openChild(*folder, std::string(256, 'n')), nullptr);
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST_F(LinuxDirectoryReaderTest, AFolderWithManyThousandFilesIsListedWhole) {
    const int folder = open(home.folder("many").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::set<std::string> expected;
    for (int number = 0; number < 5000; ++number) {
        // Long names, so that the listing takes more than one call.
        const std::string name = std::to_string(number) + std::string(100, 'x');
        close(openat(folder, name.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
        expected.insert(name);
    }
    close(folder);
    EXPECT_EQ(names(home.path("many")), expected);
}

TEST_F(LinuxDirectoryReaderTest, SeveralThreadsReadTheSameOfOneFolder) {
    home.folder("many/folder");
    for (int index = 0; index < 1'500; ++index)
        home.file(fmt::format("many/file {}", index), index % 7 * 1'000);
    home.link("many/link", "folder");
    home.file("many/.hidden", 5'000);
    const auto folder = reader.open(home.path("many"));
    ASSERT_NE(folder, nullptr);
    for (const bool skipHidden : {false, true}) {
        EntryList alone, together;
        together.add("of another folder");
        ReadOptions options{.skipHidden = skipHidden, .allocatedOfEveryFile = true};
        ASSERT_TRUE(reader.read(*folder, options, alone));
        options.threads = 4;
        ASSERT_TRUE(reader.read(*folder, options, together));
        ASSERT_EQ(together.entries().size(), alone.entries().size() + 1);
        EXPECT_EQ(together.entries().front().kind, EntryKind::other);
        for (std::size_t index = 0; index < alone.entries().size(); ++index) {
            const DirectoryEntry& one = alone.entries()[index];
            const DirectoryEntry& other = together.entries()[index + 1];
            const auto told = [](const DirectoryEntry& entry) {
                return std::tuple(entry.name, entry.kind, entry.allocatedSize, entry.logicalSize,
                                  entry.modified, entry.inode, entry.links);
            };
            EXPECT_EQ(told(one), told(other)) << one.name;
        }
    }
}

TEST_F(LinuxDirectoryReaderTest, WhatIsRemovedWhileItIsReadIsNoUnreadableEntry) {
    const std::string path = home.folder("busy");
    const auto folder = reader.open(path);
    ASSERT_NE(folder, nullptr);
    std::atomic<bool> isOver = false;
    std::thread others([&] {
        for (int index = 0; index < 2'000; ++index) {
            const std::string made = fmt::format("{}/{}", path, index % 64);
            ::close(::open(made.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
            ::unlink(fmt::format("{}/{}", path, (index + 32) % 64).c_str());
        }
        isOver = true;
    });
    for (int round = 0; !isOver; ++round) {
        EntryList entries;
        EXPECT_TRUE(reader.read(*folder, {.threads = round % 2 == 0 ? 1U : 2U}, entries));
        for (const DirectoryEntry& entry : entries.entries())
            EXPECT_EQ(entry.kind, EntryKind::regular) << entry.name;
    }
    others.join();
}

TEST_F(LinuxDirectoryReaderTest, AFolderReadTwiceIsListedTwice) {
    home.file("once", 1);
    const auto folder = reader.open(home.path());
    ASSERT_TRUE(reader.read(*folder, {}, list));
    home.file("later", 1);
    EntryList again;
    ASSERT_TRUE(reader.read(*folder, {}, again));
    EXPECT_EQ(list.entries().size(), 1u);
    EXPECT_EQ(again.entries().size(), 2u);
}

TEST_F(LinuxDirectoryReaderTest, AFolderThatHasBecomeALinkIsRefused) {
    home.file("elsewhere/private", 1);
    home.folder("folder/real");
    const auto parent = reader.open(home.path("folder"));
    ASSERT_NE(reader.openChild(*parent, "real"), nullptr);
    std::filesystem::remove(home.path("folder/real"));
    home.link("folder/real", home.path("elsewhere"));
    EXPECT_EQ(reader.openChild(*parent, "real"), nullptr);
    EXPECT_TRUE(errno == ELOOP || errno == ENOTDIR) << errno;
}

TEST_F(LinuxDirectoryReaderTest, AnythingButAFolderCannotBeOpened) {
    home.file("file", 1);
    ASSERT_EQ(mkfifo(home.path("pipe").c_str(), 0600), 0);
    home.link("loop", "loop");
    const std::map<std::string, int> reasons{
        {"file", ENOTDIR}, {"pipe", ENOTDIR}, {"missing", ENOENT}, {"loop", ELOOP}};
    for (const auto& [name, reason] : reasons) {
        errno = 0;
        EXPECT_EQ(reader.open(home.path(name)), nullptr) << name;
        EXPECT_EQ(errno, reason) << name;
    }
    const auto parent = reader.open(home.path());
    EXPECT_EQ(reader.openChild(*parent, "file"), nullptr);
    EXPECT_EQ(errno, ENOTDIR);
}

TEST_F(LinuxDirectoryReaderTest, TheTopFolderIsReachedThroughALink) {
    home.file("real/inside", 1);
    home.link("link", "real");
    EXPECT_THAT(names(home.path("link")), UnorderedElementsAre("inside"));
}

TEST_F(LinuxDirectoryReaderTest, AFolderRemovedWhileItIsOpenDoesNotStopTheWalk) {
    home.folder("gone");
    const auto folder = reader.open(home.path("gone"));
    std::filesystem::remove(home.path("gone"));
    errno = 0;
    const bool listed = reader.read(*folder, {}, list);
    EXPECT_TRUE(listed || errno == ENOENT);
    EXPECT_THAT(list.entries(), IsEmpty());
}

TEST_F(LinuxDirectoryReaderTest, SeveralThreadsReadThroughOneReader) {
    for (int number = 0; number < 4; ++number) {
        for (int file = 0; file < 200; ++file) {
            home.file(std::to_string(number) + "/f" + std::to_string(file), number);
        }
    }
    std::vector<std::thread> threads;
    std::array<std::int64_t, 4> totals{};
    for (std::size_t number = 0; number < totals.size(); ++number) {
        threads.emplace_back([&, number] {
            EntryList own;
            const auto folder = reader.open(home.path(std::to_string(number)));
            if (!folder || !reader.read(*folder, {}, own)) return;
            for (const auto& entry : own.entries())
                totals[number] += entry.logicalSize;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(totals, (std::array<std::int64_t, 4>{0, 200, 400, 600}));
}

TEST_F(LinuxDirectoryReaderTest, ReadingLeavesNoDescriptorOpenAndTheAccessTimeAsItWas) {
    const std::string path = home.folder("quiet");
    home.file("quiet/file", 1);
    const timespec times[2] = {{.tv_sec = 1'000'000'000, .tv_nsec = 0},
                               {.tv_sec = 1'000'000'000, .tv_nsec = 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const auto openDescriptors = [] {
        const std::filesystem::directory_iterator listing("/proc/self/fd");
        return std::distance(begin(listing), end(listing));
    };
    const auto before = openDescriptors();
    names(path);
    EXPECT_EQ(openDescriptors(), before);
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_atim.tv_sec, 1'000'000'000);
}

}  // namespace
}  // namespace velto
