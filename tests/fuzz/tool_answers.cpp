#include <algorithm>
#include <numeric>

#include "cleaning/further/tool_measures.h"
#include "cleaning/further/unused_flatpaks.h"
#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

/// Letters that no shell takes for anything else, in words that are no options.
bool isHarmless(std::string_view text, std::string_view others) {
    return !text.empty() && text.front() != '-' && std::ranges::all_of(text, [&](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
               (letter >= '0' && letter <= '9') || others.contains(letter);
    });
}

void judgeContainers(std::string_view input) {
    const auto measure = containerMeasure(input, "podman");
    if (!measure) return;
    require(measure->bytes >= 0, "a size is no debt");
    require(std::ranges::is_sorted(measure->parts, std::greater(), &ToolPart::bytes),
            "the largest first");
    for (const ToolPart& part : measure->parts) {
        require(part.bytes > 0 && part.bytes <= measure->bytes, "a part of it");
        require(part.command.starts_with("podman ") && isHarmless(part.command, " -"),
                "a command of its own");
    }
}

void judgeFlatpaks(std::string_view input) {
    for (const auto& list : {installedRuntimes(input), installedApplications(input)}) {
        if (!list) continue;
        for (const InstalledFlatpak& one : *list) {
            require(isHarmless(one.ref, "._-+/"), "it may stand in a command");
            require(std::ranges::count(one.ref, '/') == 2, "three parts");
            require(!one.ref.contains("/.") && !one.ref.contains("//"), "it leads down");
        }
    }
    const auto patterns = pinnedPatterns(input);
    for (std::size_t at = 0; at < std::min<std::size_t>(patterns.size(), 20); ++at) {
        const std::string& pattern = patterns[at];
        require(fitsPattern(pattern, pattern) || pattern.contains('*') || pattern.contains('/'),
                "a name fits itself");
    }
    for (const auto& extension : flatpakMetadata(input, "1").extensions)
        require(!extension.branches.empty() || input.contains("version"), "of some branch");
}

void judge(std::string_view input) {
    for (const auto size : {decimalSize(input), binarySize(input)})
        require(size.value_or(0) >= 0, "a size is no debt");
    judgeContainers(input);
    if (const auto journal = journalMeasure(input))
        require(journal->bytes >= 0, "a size is no debt");
    for (const SnapRevision& snap : disabledRevisions(input)) {
        require(isHarmless(snap.name, "-_") && isHarmless(snap.revision, "-_"),
                "they may stand in a command");
    }
    judgeFlatpaks(input);
}

const Registration registered("tool_answers", judge);

}  // namespace
}  // namespace velto::fuzz
