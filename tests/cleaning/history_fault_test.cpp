// Every call that changes the disk fails once while the history is changed, done or not: the file
// holds the old list or the new one, and the process goes on with the new one.

#include <gmock/gmock.h>

#include <cerrno>
#include <functional>

#include "TrashWorld.h"
#include "cleaning/HistoryService.h"

namespace velto {
namespace {

using Action = WatchedFileCalls::Action;
using Ids = std::vector<std::string>;

Ids idsOf(const HistoryService& history) {
    Ids ids;
    for (const HistoryEntry& entry : history.entries())
        ids.push_back(entry.id);
    return ids;
}

Operation operation(const std::string& id) {
    return {.id = id, .ts = 1'700'000'000, .gb = 1, .items = {}, .kind = "wind"};
}

struct Change {
    const char* name;
    std::function<void(HistoryService& history)> act;
    Ids after;
};

void failEverywhere(const Change& change, Action action, int reason) {
    const Ids before{"op2", "op1"};
    for (int at = 0;; ++at) {
        SCOPED_TRACE(testing::Message() << change.name << ", call " << at << ", action "
                                        << static_cast<int>(action) << ", reason " << reason);
        const TempHome home{TrashWorld::fastVolume()};
        const HomeLayout layout = HomeLayout::macOS(home.path());
        WatchedFileCalls calls;
        calls.waitsForDisk = false;
        PosixFileManager files(calls);
        FakeLog log;
        HistoryService history(files, files, log, layout);
        history.record(operation("op1"));
        history.record(operation("op2"));
        calls.count = 0;
        calls.at = at;
        calls.error = reason;
        calls.action = action;
        change.act(history);
        const bool wasReached = calls.count > at;
        calls.action = Action::none;
        EXPECT_EQ(idsOf(history), change.after) << "what this process goes on with";
        EXPECT_THAT(idsOf({files, files, log, layout}), testing::AnyOf(before, change.after));
        // The next change writes what this one could not.
        history.record(operation("op3"));
        Ids next = change.after;
        next.insert(next.begin(), "op3");
        EXPECT_EQ(idsOf({files, files, log, layout}), next);
        if (!wasReached || testing::Test::HasFailure()) {
            EXPECT_GT(at, 3) << "the calls are not counted";
            return;
        }
    }
}

TEST(HistoryFault, TheFileHoldsTheOldListOrTheNewOne) {
    const Change changes[] = {
        {"record",
         [](HistoryService& history) { history.record(operation("new")); },
         {"new", "op2", "op1"}},
        {"remove", [](HistoryService& history) { history.remove("op1"); }, {"op2"}},
        {"clear", [](HistoryService& history) { history.clear(); }, {}},
    };
    for (const Change& change : changes) {
        for (const int reason : {ENOSPC, EACCES})
            failEverywhere(change, Action::fail, reason);
        for (const int reason : {EIO, ENOENT, EEXIST})
            failEverywhere(change, Action::doThenFail, reason);
    }
}

}  // namespace
}  // namespace velto
