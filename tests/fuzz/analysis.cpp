#include "analysis/ScanCache.h"
#include "bridge/events.h"
#include "fuzz/engine/MemoryFiles.h"
#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

/// A saved analysis that is accepted can be shown, and saved again without a change.
void judge(std::string_view input) {
    MemoryFiles files;
    const HomeLayout layout = HomeLayout::macOS("/Users/ana");
    const ScanCache cache(files, layout);
    files.put(cache.location(), input);
    const auto entry = cache.load();
    if (!entry) return;
    const auto script = events::setState(entry->state, entry->ts);
    require(script && script->find('\n') == std::string::npos, "it is shown, on one line");
    cache.save(entry->state, entry->ts);
    const auto again = cache.load();
    require(again && again->ts == entry->ts && again->state == entry->state,
            "what was saved reads as the same");
}

const Registration registered("analysis", judge);

}  // namespace
}  // namespace velto::fuzz
