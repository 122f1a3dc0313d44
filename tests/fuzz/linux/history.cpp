#include "cleaning/HistoryService.h"
#include "fuzz/engine/Target.h"
#include "fuzz/engine/linux/ConfinedHome.h"
#include "support/fakes.h"

namespace velto::fuzz {
namespace {

/// Whatever the file held, a cleanup that is recorded is remembered, with all that could be read.
void judge(std::string_view input) {
    static ConfinedHome world;  // one for all inputs: each begins with a file of its own
    PosixFileManager& files = world.files;
    FakeLog log;
    const HomeLayout layout = HomeLayout::macOS(world.home.path());
    files.createFolders(layout.dataFolder);
    files.writeAtomically(layout.dataFolder + "/history.json", input);
    HistoryService history(files, files, log, layout);
    auto expected = history.entries();
    const Operation operation{
        .id = "op-new", .ts = 1'700'000'000, .gb = 0.5, .items = {}, .kind = "wind"};
    for (const HistoryEntry& entry : expected) {
        if (entry.id == operation.id) return;  // it is no new one
    }
    history.record(operation);
    expected.insert(expected.begin(), HistoryEntry{.id = operation.id,
                                                   .ts = operation.ts,
                                                   .gb = operation.gb,
                                                   .items = {},
                                                   .kind = operation.kind});
    require(history.entries() == expected, "the operation comes first, the others stay");
    require(HistoryService(files, files, log, layout).entries() == expected,
            "another process reads the same");
    history.clear();
    require(HistoryService(files, files, log, layout).entries().empty(), "cleared is cleared");
    world.prove();
}

const Registration registered("history", judge);

}  // namespace
}  // namespace velto::fuzz
