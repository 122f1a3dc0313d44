// Two at work in one trash at the same time: the window and the maintenance pass.

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <thread>

#include "TrashWorld.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

constexpr int files = 12;

/// A home with files that two work on, each file of a content of its own.
struct SharedTrash {
    TempHome home{TrashWorld::fastVolume()};
    std::optional<TempHome> trashVolume;
    HomeLayout layout = HomeLayout::macOS(home.path());
    FakeClock clock;

    /// With the trash on a volume of its own when one is named.
    explicit SharedTrash(const std::string& volume = "") {
        if (!volume.empty()) {
            trashVolume.emplace(volume);
            layout.applicationSupport = trashVolume->path();
            layout.dataFolder = trashVolume->path("Velto");
            layout.trashFolder = trashVolume->path("Velto/Trash");
        }
        for (int number = 0; number < files; ++number)
            home.text("d/" + nameOf(number), nameOf(number));
    }

    static std::string nameOf(int number) { return std::to_string(number) + ".txt"; }
    std::string deletedList(int worker) const {
        return home.path("deleted by " + std::to_string(worker));
    }

    /// Random changes of files that the other one is changing too, `tell` called after each. False
    /// when anything but a refusal comes back.
    bool work(
        int worker, unsigned seed, int changes, bool mayDelete = true,
        const std::function<void()>& tell = [] {}) const {
        try {
            std::mt19937 random(seed);
            TrashProcess process(layout, clock);
            std::ofstream deleted(deletedList(worker));
            for (int change = 0; change < changes; ++change) {
                tell();
                try {
                    act(process.service, random, mayDelete ? &deleted : nullptr);
                } catch (const TrashError& error) {
                    // The other one was faster.
                    if (error.reason() != TrashError::Reason::notFound) return false;
                } catch (const FileError& error) {
                    // The lock was the other one's for as long as is waited for it: nothing was
                    // done.
                    if (error.code() != EWOULDBLOCK) return false;
                }
            }
            return true;
        } catch (const std::exception& error) {
            std::fprintf(stderr, "worker %d: %s\n", worker, error.what());
            return false;
        }
    }

    void act(VeltoTrashService& service, std::mt19937& random, std::ofstream* deleted) const {
        const auto below = [&](std::size_t end) {
            return std::uniform_int_distribution<std::size_t>(0, end - 1)(random);
        };
        const std::size_t choice = below(20);
        if (choice < 9) {
            std::vector<std::string> paths;
            for (std::size_t count = 1 + below(3); paths.size() < count;)
                paths.push_back(home.path("d/" + nameOf(static_cast<int>(below(files)))));
            service.moveToTrash(paths, "wind");
            return;
        }
        const std::vector<TrashItem> items = service.items();
        if (items.empty()) return;
        const TrashItem& item = items[below(items.size())];
        if (choice < 14) return service.restore(item.id);
        if (choice < 19) return service.undoOperation(item.opID);
        if (deleted == nullptr) return;
        service.deletePermanently(item.id);
        *deleted << item.name << std::endl;
    }

    /// Every file that nobody deleted is in one place, with its content; all of the trash is
    /// listed.
    void prove() const {
        // The last one at work may have been the one that was killed: settled before it is counted.
        TrashProcess fresh(layout, clock);
        fresh.service.items();
        std::map<std::string, int> seen;
        const PosixFileManager disk;
        const auto count = [&](const std::string& path) {
            const std::string content = disk.read(path, anyFile(1 << 20));
            if (++seen[content] > 1 || !content.ends_with(".txt")) {
                ADD_FAILURE() << path << " holds " << testing::PrintToString(content);
            }
        };
        for (const auto& entry : fs::directory_iterator(home.path("d")))
            count(entry.path());
        for (const TrashItem& item : fresh.service.items())
            count(layout.trashFolder + "/" + item.opID + "/" + item.id + "-" + item.name);
        for (int worker = 0; worker < 2; ++worker) {
            std::ifstream list(deletedList(worker));
            for (std::string name; std::getline(list, name);)
                ++seen[name];
        }
        for (int number = 0; number < files; ++number) {
            EXPECT_EQ(seen[nameOf(number)], 1) << nameOf(number) << " is lost or doubled";
        }
        EXPECT_EQ(seen.size(), static_cast<std::size_t>(files));
        std::size_t stored = 0;
        for (const auto& entry : fs::recursive_directory_iterator(layout.trashFolder)) {
            // Beside the manifest may lie what a killed process was about to put in its place.
            const bool isInOperation = entry.path().parent_path() != layout.trashFolder;
            stored += entry.is_regular_file() && isInOperation;
        }
        EXPECT_EQ(stored, fresh.service.items().size()) << "files that nobody lists";
        EXPECT_FALSE(fs::exists(layout.trashFolder + ".journal"));
    }
};

int rounds() { return isExhaustive() ? 100 : 4; }

TEST(TrashTogetherTest, TwoProcessesLoseAndDoubleNothing) {
    for (int round = 0; round < rounds() && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const SharedTrash trash;
        pid_t children[2];
        for (int worker = 0; worker < 2; ++worker) {
            children[worker] = fork();
            if (children[worker] == 0) {
                const auto seed = static_cast<unsigned>(round * 2 + worker);
                _exit(trash.work(worker, seed, 150) ? 0 : 1);
            }
        }
        for (const pid_t child : children) {
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
        }
        trash.prove();
    }
}

/// The end of a pipe into which a worker writes a byte for each change that it begins.
struct Steps {
    Steps() { EXPECT_EQ(::pipe(ends), 0); }
    ~Steps() {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    void tell() const {
        const char step = '.';
        if (::write(ends[1], &step, 1) != 1) _exit(2);
    }
    void waitFor(int count) const {
        char step = 0;
        while (count-- > 0)
            ASSERT_EQ(::read(ends[0], &step, 1), 1);
    }
    int ends[2] = {-1, -1};
};

TEST(TrashTogetherTest, TwoProcessesOnTwoVolumesLoseNothingWhenOneIsKilled) {
    if (!TrashWorld::hasTwoVolumes()) GTEST_SKIP() << "memory and build folder are one volume here";
    for (int round = 0; round < 4 * rounds() && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const SharedTrash trash(buildVolume());
        const Steps steps;
        pid_t children[2];
        for (int worker = 0; worker < 2; ++worker) {
            children[worker] = fork();
            if (children[worker] == 0) {
                const bool isVictim = worker == 0;
                const auto seed = static_cast<unsigned>(2'000 + round * 2 + worker);
                const bool isFine = trash.work(worker, seed, isVictim ? 100'000 : 60, !isVictim,
                                               [&] { isVictim ? steps.tell() : void(); });
                _exit(isFine ? 0 : 1);
            }
        }
        steps.waitFor(1 + round * 7 % 40);
        ASSERT_EQ(kill(children[0], SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(waitpid(children[0], &status, 0), children[0]);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself, status " << status;
        ASSERT_EQ(waitpid(children[1], &status, 0), children[1]);
        EXPECT_EQ(status, 0);
        trash.prove();
    }
}

TEST(TrashTogetherTest, TwoThreadsWithATrashEachLoseAndDoubleNothing) {
    for (int round = 0; round < rounds() && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE(round);
        const SharedTrash trash;
        bool isFine[2] = {false, false};
        std::vector<std::thread> threads;
        for (int worker = 0; worker < 2; ++worker) {
            threads.emplace_back([&, worker] {
                const auto seed = static_cast<unsigned>(1000 + round * 2 + worker);
                isFine[worker] = trash.work(worker, seed, 100);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_TRUE(isFine[0] && isFine[1]);
        trash.prove();
    }
}

}  // namespace
}  // namespace velto
