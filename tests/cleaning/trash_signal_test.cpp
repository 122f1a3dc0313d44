// Signals that come in the middle are no failure.

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>

#include "TrashWorld.h"

namespace velto {
namespace {

std::atomic<int> handled = 0;

/// While it lives, SIGUSR1 interrupts system calls and does nothing else.
class InterruptingSignal {
public:
    InterruptingSignal() {
        struct sigaction action {};
        action.sa_handler = [](int) { ++handled; };  // without SA_RESTART
        sigaction(SIGUSR1, &action, &before_);
    }
    ~InterruptingSignal() { sigaction(SIGUSR1, &before_, nullptr); }
    InterruptingSignal(const InterruptingSignal&) = delete;
    InterruptingSignal& operator=(const InterruptingSignal&) = delete;

    /// Returns once the thread has handled it, or has come to its end.
    static void sendTo(std::thread& thread, const std::atomic<bool>& isDone) {
        const int before = handled;
        pthread_kill(thread.native_handle(), SIGUSR1);
        while (handled == before && !isDone)
            std::this_thread::yield();
    }

private:
    struct sigaction before_ {};
};

/// Tells when somebody is about to wait for the lock.
class TellingCalls final : public FileCalls {
public:
    int lock(int file, int operation) override {
        isLocking = true;
        return FileCalls::lock(file, operation);
    }
    std::atomic<bool> isLocking = false;
};

struct TrashSignalTest : testing::Test {
    TempHome home{TrashWorld::fastVolume()};
    HomeLayout layout = HomeLayout::macOS(home.path());
    FakeClock clock;
    FakeLog log;
    InterruptingSignal signals;
    TellingCalls calls;
    PosixFileManager files{calls};
    VeltoTrashService service{files, files, clock, log, layout};
    std::atomic<bool> isDone = false;
    std::string failure;

    std::thread inBackground(std::function<void()> action) {
        return std::thread([this, action = std::move(action)] {
            try {
                action();
            } catch (const std::exception& error) {
                failure = error.what();
            }
            isDone = true;
            // Stays to be signalled until nobody does any more.
            while (!mayEnd)
                std::this_thread::yield();
        });
    }

    std::atomic<bool> mayEnd = false;
};

TEST_F(TrashSignalTest, WaitingForAnotherProcessGoesOn) {
    home.text("a", "content");
    PosixFileManager other;
    other.createFolders(layout.dataFolder);
    auto held = other.lock(layout.trashFolder + ".lock", true);
    std::thread mover = inBackground([&] { service.moveToTrash({home.path("a")}, "wind"); });
    while (!calls.isLocking)
        std::this_thread::yield();
    for (int number = 0; number < 200 && !isDone; ++number)
        InterruptingSignal::sendTo(mover, isDone);
    EXPECT_FALSE(isDone) << "it did not wait: " << failure;
    held.reset();
    mayEnd = true;
    mover.join();
    EXPECT_EQ(failure, "");
    EXPECT_FALSE(home.exists("a"));
    EXPECT_EQ(service.items().size(), 1u);
}

TEST_F(TrashSignalTest, ChangesGoOn) {
    home.text("a/b", std::string(100'000, 'x'));
    std::thread worker = inBackground([&] {
        for (int round = 0; round < 30; ++round) {
            service.undoOperation(service.moveToTrash({home.path("a")}, "wind").id);
        }
        service.moveToTrash({home.path("a")}, "wind");
        service.emptyTrash();
    });
    while (!isDone)
        InterruptingSignal::sendTo(worker, isDone);
    mayEnd = true;
    worker.join();
    EXPECT_EQ(failure, "");
    EXPECT_FALSE(home.exists("a"));
    EXPECT_TRUE(service.items().empty());
}

}  // namespace
}  // namespace velto
