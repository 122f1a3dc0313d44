// The model against the system's own file system: the same calls, chosen at random, have the same
// results, and leave the same behind.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <ostream>
#include <random>

#include "support/ModelFileCalls.h"
#include "support/TempHome.h"
#include "support/exhaustive.h"
#include "support/tree_text.h"

namespace velto {
namespace {

/// One of two sides on which the same is done.
struct Side {
    FileCalls& calls;
    int folder;  // everything happens in it
};

/// What a call has answered, as far as two systems must agree.
struct Answer {
    int result = 0;
    int reason = 0;
    std::string text;

    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* stream) {
    *stream << answer.result << " " << std::strerror(answer.reason) << " \"" << answer.text << "\"";
}

Answer answer(int result) {
    return {.result = result, .reason = result < 0 ? errno : 0, .text = {}};
}

Answer statusText(int result, const struct stat& status) {
    Answer all = answer(result);
    if (result != 0) return all;
    all.text = std::to_string(status.st_mode);
    if (!S_ISDIR(status.st_mode)) {  // file systems count those of folders as they like
        all.text += " " + std::to_string(status.st_nlink) + " " + std::to_string(status.st_size);
    }
    return all;
}

class Twins : public testing::Test {
protected:
    Twins() { ModelFileCalls(disk_).makeFolder(AT_FDCWD, "/top", 0755); }

    static constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

    std::string name() {
        static constexpr const char* names[] = {"a",   "b",      "c",    "a/b",    "a/c",  "b/a",
                                                "c/a", "a/../b", "gone", "gone/a", "a/b/c"};
        return names[random_() % std::size(names)];
    }

    /// The same random call on one side, whose every choice comes from `one`, drawn before.
    static Answer call(const Side& side, unsigned kind, const std::string& one,
                       const std::string& other, unsigned number) {
        FileCalls& calls = side.calls;
        const int folder = side.folder;
        switch (kind) {
            case 0: {
                const Descriptor file(
                    calls.open(folder, one.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, 0640));
                const Answer opened = answer(file.isOpen() ? 0 : -1);
                const std::string text(number % 50, 'x');
                if (file.isOpen()) calls.write(file.number(), text.data(), text.size());
                return opened;
            }
            case 1:
                return answer(calls.makeFolder(folder, one.c_str(), 0750));
            case 2:
                return answer(calls.makeLink(other.c_str(), folder, one.c_str()));
            case 3:
                return answer(calls.remove(folder, one.c_str(), 0));
            case 4:
                return answer(calls.remove(folder, one.c_str(), AT_REMOVEDIR));
            case 5:
                return answer(calls.replace(folder, one.c_str(), folder, other.c_str()));
            case 6:
                return answer(calls.rename(folder, one.c_str(), folder, other.c_str()));
            case 7:
                return answer(calls.addName(folder, one.c_str(), folder, other.c_str()));
            case 8: {
                struct stat status {};
                const int result = calls.stat(folder, one.c_str(), status);
                return statusText(result, status);
            }
            case 9: {
                std::string target;
                Answer read = answer(calls.readLink(folder, one.c_str(), target));
                if (read.result == 0) read.text = target;
                return read;
            }
            case 10: {
                Descriptor opened(calls.open(folder, one.c_str(), folderFlags, 0));
                Answer listed = answer(opened.isOpen() ? 0 : -1);
                std::vector<std::string> names;
                if (listed.result == 0) calls.names(std::move(opened), names);
                std::ranges::sort(names);
                for (const std::string& each : names)
                    listed.text += each + " ";
                return listed;
            }
            default: {
                const Descriptor file(
                    calls.open(folder, one.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK, 0));
                Answer changed = answer(file.isOpen() ? 0 : -1);
                if (!file.isOpen()) return changed;
                calls.writeAt(file.number(), "word", 4, static_cast<off_t>(number % 9));
                calls.changeMode(file.number(), number % 2 == 0 ? 0600 : 0644);
                char buffer[100];
                const ssize_t length = calls.readAt(file.number(), buffer, sizeof buffer, 0);
                changed.text.assign(buffer, static_cast<std::size_t>(length));
                return changed;
            }
        }
    }

    ModelDisk disk_;
    std::mt19937 random_;
};

TEST_F(Twins, TheModelAnswersLikeTheSystem) {
    const unsigned rounds = isExhaustive() ? 2'000 : 40;
    const mode_t mask = ::umask(0);
    for (unsigned seed = 0; seed < rounds && !HasFailure(); ++seed) {
        random_.seed(seed);
        const TempHome home;
        FileCalls& system = systemFileCalls();
        const Descriptor real(system.open(AT_FDCWD, home.path().c_str(), folderFlags, 0));
        disk_ = ModelDisk();
        ModelFileCalls model(disk_);
        ASSERT_EQ(model.makeFolder(AT_FDCWD, "/top", 0755), 0);
        const Descriptor made(model.open(AT_FDCWD, "/top", folderFlags, 0));
        for (int step = 0; step < 120 && !HasFailure(); ++step) {
            const unsigned kind = static_cast<unsigned>(random_() % 12);
            const std::string one = name();
            const std::string other = name();
            const unsigned number = static_cast<unsigned>(random_());
            const Answer expected = call({system, real.number()}, kind, one, other, number);
            EXPECT_EQ(call({model, made.number()}, kind, one, other, number), expected)
                << "seed " << seed << ", step " << step << ": call " << kind << " of " << one
                << " and " << other;
        }
        std::vector<std::string> names;
        for (const std::string& leaf : leavesBelow(home.path()))
            EXPECT_NE(disk_.live().find("/top/" + leaf), 0U) << leaf;
    }
    ::umask(mask);
}

}  // namespace
}  // namespace velto
