// The trash and the history as they grow: `bench_records ACTION FOLDER COUNT`. Each action is a
// process of its own, that its peak of memory is its own: `make-trash` puts so many empty files
// into the trash of the home at FOLDER, as operations of 1,000 items, and `make-history` writes so
// many entries of ten items. The others print milliseconds, the peak of resident memory in KiB and
// the bytes of what the page is told: `load-trash`, `undo-trash` (the newest operation),
// `tell-trash` (all that follows from a piece of work without effect), `load-history`,
// `record-history`, `tell-history` (the state that holds it).
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "bridge/CleanupOutcome.h"
#include "bridge/events.h"
#include "bridge/measurement_events.h"
#include "cleaning/CloudFolder.h"
#include "cleaning/HistoryService.h"
#include "cleaning/VeltoTrashService.h"
#include "linux/BenchPlatform.h"
#include "stopwatch.h"

namespace {

namespace fs = std::filesystem;
using namespace velto;

constexpr int itemsTogether = 1000;
constexpr double begun = 1'700'000'000.25;  // seconds since 1970

struct Home {
    explicit Home(const std::string& folder) : platform(benchPlatform(folder)) {}

    std::unique_ptr<Platform> platform;
    HomeLayout& layout = platform->layout;
};

struct Trash : Home {
    using Home::Home;
    VeltoTrashService service{*platform->files, *platform->mover, *platform->clock, *platform->log,
                              layout};
};

struct History : Home {
    using Home::Home;
    HistoryService service{*platform->files, *platform->mover, *platform->log, layout};
};

void makeTrash(const std::string& folder, int count) {
    Home home(folder);
    Manifest manifest;
    for (int number = 0; number < count; ++number) {
        if (number % itemsTogether == 0) {
            manifest.operations.insert(
                manifest.operations.begin(),
                {.id = fmt::format("op{:08X}-0000-4000-8000-000000000000", number),
                 .ts = begun + number,
                 .gb = 1.5,
                 .items = {},
                 .kind = "wind"});
            fs::create_directories(home.layout.trashFolder + "/" + manifest.operations[0].id);
        }
        Operation& operation = manifest.operations.front();
        const std::string name = fmt::format("file {}.txt", number);
        operation.items.push_back(
            {.id = fmt::format("it{:08X}", number),
             .opID = operation.id,
             .originalPath = fmt::format("{}/Downloads/some folder/{}", home.layout.home, name),
             .name = name,
             .gb = 0.1,
             .taken = operation.ts});
        const TrashItem& item = operation.items.back();
        manifest.items.push_back(item);
        std::fclose(std::fopen(
            fmt::format("{}/{}/{}-{}", home.layout.trashFolder, operation.id, item.id, name)
                .c_str(),
            "w"));
    }
    fs::create_directories(folder + "/Downloads/some folder");
    home.platform->files->writeAtomically(home.layout.trashFolder + "/manifest.json",
                                          encodeManifest(manifest));
}

Operation cleanup(int number) {
    Operation operation{.id = fmt::format("op{:08X}-0000-4000-8000-000000000000", number),
                        .ts = begun + number,
                        .gb = 1.5,
                        .items = {},
                        .kind = "wind"};
    for (int item = 0; item < 10; ++item) {
        operation.items.push_back({.id = "",
                                   .opID = "",
                                   .originalPath = "",
                                   .name = fmt::format("file {} of {}.txt", item, number),
                                   .gb = 0.1,
                                   .taken = 0});
    }
    return operation;
}

void makeHistory(const std::string& folder, int count) {
    Home home(folder);
    std::string text = "[";
    for (int number = count; number-- > 0;) {
        const Operation operation = cleanup(number);
        text +=
            fmt::format(R"({{"id":"{}","ts":{},"gb":1.5,"items":[)", operation.id, operation.ts);
        for (const TrashItem& item : operation.items)
            text += fmt::format(R"({}{{"name":"{}","gb":0.1}})",
                                &item == operation.items.data() ? "" : ",", item.name);
        text += fmt::format(R"(],"kind":"wind"}}{})", number == 0 ? "]" : ",");
    }
    fs::create_directories(home.layout.dataFolder);
    home.platform->files->writeAtomically(home.layout.dataFolder + "/history.json", text);
}

void requireCount(std::size_t found, int expected) {
    if (found != static_cast<std::size_t>(expected))
        throw std::runtime_error(fmt::format("{} records", found));
}

/// Measures `work`, which answers with the bytes that the page is told.
void print(const std::function<std::size_t()>& work) {
    std::size_t told = 0;
    const double time = milliseconds([&] { told = work(); });
    fmt::print("{:.1f} {} {}\n", time, peakMemory(), told);
}

void loadTrash(const std::string& folder, int count) {
    Trash trash(folder);
    print([&] {
        requireCount(trash.service.items().size(), count);
        return 0;
    });
}

void undoTrash(const std::string& folder, int count) {
    Trash trash(folder);
    requireCount(trash.service.items().size(), count);
    print([&] {
        trash.service.undoOperation(std::string(trash.service.operations().front().id));
        requireCount(trash.service.items().size(), count - itemsTogether);
        return 0;
    });
}

void tellTrash(const std::string& folder, int count) {
    Trash trash(folder);
    HistoryService history(*trash.platform->files, *trash.platform->mover, *trash.platform->log,
                           trash.layout);
    CloudFolder cloud(*trash.platform->files, *trash.platform->mover, *trash.platform->log,
                      trash.layout);
    CleanupServices services{trash.service, history, cloud};
    print([&] {
        const auto outcome =
            carryOut(*trash.platform, services, [](CleanupServices&, CleanupOutcome&) {});
        requireCount(outcome->trash->items.size(), count);
        return events::trashState(outcome->trash->items).size() +
               events::exactTrashSizes(outcome->trash->bytes).size();
    });
}

void loadHistory(const std::string& folder, int count) {
    print([&] {
        requireCount(History(folder).service.entries().size(), count);
        return 0;
    });
}

void recordHistory(const std::string& folder, int count) {
    History history(folder);
    print([&] {
        history.service.record(cleanup(count));
        requireCount(history.service.entries().size(), count + 1);
        return 0;
    });
}

void tellHistory(const std::string& folder, int count) {
    History history(folder);
    requireCount(history.service.entries().size(), count);
    print([&] {
        DiskState state;
        state.history = history.service.entries();
        return events::setState(state, begun)->size();
    });
}

struct Action {
    std::string_view name;
    void (*run)(const std::string& folder, int count);
};
constexpr Action actions[]{{"make-trash", makeTrash},         {"make-history", makeHistory},
                           {"load-trash", loadTrash},         {"undo-trash", undoTrash},
                           {"tell-trash", tellTrash},         {"load-history", loadHistory},
                           {"record-history", recordHistory}, {"tell-history", tellHistory}};

}  // namespace

int main(int count, char** arguments) try {
    if (count == 4) fs::create_directories(arguments[2]);
    for (const Action& action : actions) {
        if (count == 4 && action.name == arguments[1]) {
            action.run(arguments[2], std::atoi(arguments[3]));
            return 0;
        }
    }
    fmt::print(stderr, "usage: bench_records ACTION FOLDER COUNT\n");
    return 2;
} catch (const std::exception& error) {
    fmt::print(stderr, "bench_records: {}\n", error.what());
    return 1;
}
