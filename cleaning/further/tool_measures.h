#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cleaning/further/FurtherRule.h"
#include "platform/Platform.h"

namespace velto {

/// A part of what a tool keeps, and what gives it back.
struct ToolPart {
    std::string name;  // as the tool calls it
    std::int64_t bytes = 0;
    std::string command;  // what a person would type

    bool operator==(const ToolPart&) const = default;
};

/// What a tool says that it could give back; nothing when it is not there or does not tell.
struct ToolMeasure {
    std::int64_t bytes = 0;
    std::vector<ToolPart> parts;  // largest first; may be empty

    bool operator==(const ToolMeasure&) const = default;
};

/// Folders in which tools are looked for, the first wins.
std::vector<std::string> toolFolders();

/// Asks the tool of a rule. Blocks as long as it takes, a minute at most; changes nothing. Safe
/// from every thread.
std::optional<ToolMeasure> measureByTool(const Platform& platform, FurtherRule::Measure measure,
                                         const std::vector<std::string>& folders);

// The answers of the tools. Pure.

/// "1.13GB", "834.8kB", "0B", "34.15GB (94%)": decimal units, as docker and podman write them.
std::optional<std::int64_t> decimalSize(std::string_view text);

/// "48.0M", "0B", "1.2G": binary units, as journalctl writes them.
std::optional<std::int64_t> binarySize(std::string_view text);

/// What `TOOL system df --format "{{.Type}}\t{{.Reclaimable}}"` answers.
std::optional<ToolMeasure> containerMeasure(std::string_view answer, std::string_view tool);

/// What `journalctl --user --disk-usage` answers.
std::optional<ToolMeasure> journalMeasure(std::string_view answer);

/// The revisions that are kept and not used, in what `snap list --all` answers.
struct SnapRevision {
    std::string name;
    std::string revision;
};
std::vector<SnapRevision> disabledRevisions(std::string_view answer);

}  // namespace velto
