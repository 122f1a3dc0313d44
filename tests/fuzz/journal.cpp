#include "cleaning/TrashJournal.h"
#include "fuzz/engine/MemoryFiles.h"
#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

/// An entry that was read can be written, and reads as the same entry again.
void judge(std::string_view input) {
    MemoryFiles files;
    const HomeLayout layout = HomeLayout::macOS("/Users/ana");
    files.put(layout.trashFolder + ".journal", input);
    TrashJournal journal(files, layout);
    const auto entry = journal.read();
    if (!entry) return;
    journal.write(*entry);
    require(journal.read() == entry, "what was written reads as the same");
    journal.clear();
    require(!journal.exists(), "a cleared journal is gone");
}

const Registration registered("journal", judge);

}  // namespace
}  // namespace velto::fuzz
