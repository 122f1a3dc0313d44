#include "cleaning/further/tool_measures.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include <fmt/format.h>

#include "cleaning/further/tool_answers.h"
#include "cleaning/further/unused_flatpaks.h"

namespace velto {
namespace {

// Where snapd keeps each revision: NAME_REVISION.snap.
constexpr std::string_view snapFiles = "/var/lib/snapd/snaps/";

struct Unit {
    std::string_view word;
    double bytes;
};
constexpr auto decimalUnits = std::to_array<Unit>(
    {{"B", 1}, {"kB", 1e3}, {"KB", 1e3}, {"MB", 1e6}, {"GB", 1e9}, {"TB", 1e12}});
constexpr auto binaryUnits = std::to_array<Unit>({{"B", 1},
                                                  {"K", 1024.0},
                                                  {"M", 1024.0 * 1024},
                                                  {"G", 1024.0 * 1024 * 1024},
                                                  {"T", 1024.0 * 1024 * 1024 * 1024}});

struct Prune {
    std::string_view type;
    std::string_view command;
};
constexpr auto prunes = std::to_array<Prune>({{"Images", "image prune --all"},
                                              {"Containers", "container prune"},
                                              {"Local Volumes", "volume prune --all"},
                                              {"Build Cache", "builder prune"}});

/// Digits with at most one point; not the locale's.
std::optional<double> plainNumber(std::string_view text) {
    const std::size_t point = std::min(text.find('.'), text.size());
    std::int64_t whole = 0;
    const std::string_view head = text.substr(0, point);
    const auto read = std::from_chars(head.data(), head.data() + head.size(), whole);
    if (read.ec != std::errc() || read.ptr != head.data() + head.size() || whole < 0)
        return std::nullopt;
    double value = static_cast<double>(whole);
    double place = 0.1;
    for (const char digit : text.substr(std::min(point + 1, text.size()))) {
        if (digit < '0' || digit > '9') return std::nullopt;
        value += place * (digit - '0');
        place /= 10;
    }
    return value;
}

template <typename Units>
std::optional<std::int64_t> sizeIn(std::string_view text, const Units& units) {
    text = trimmedAnswer(text.substr(0, text.find('(')));
    const std::size_t end = std::min(text.find_first_not_of("0123456789."), text.size());
    const auto value = plainNumber(text.substr(0, end));
    const auto unit = std::ranges::find(units, trimmedAnswer(text.substr(end)), &Unit::word);
    if (!value || unit == units.end()) return std::nullopt;
    const double bytes = std::round(*value * unit->bytes);
    return bytes < 9e18 ? std::optional(static_cast<std::int64_t>(bytes)) : std::nullopt;
}

void sortBySize(std::vector<ToolPart>& parts) {
    std::ranges::stable_sort(parts, [](const ToolPart& left, const ToolPart& right) {
        return left.bytes > right.bytes;
    });
}

std::optional<ToolMeasure> measureContainers(const Platform& platform, std::string_view tool,
                                             const std::vector<std::string>& folders) {
    const auto answer = toolAnswer(
        platform, tool, {"system", "df", "--format", "{{.Type}}\t{{.Reclaimable}}"}, folders);
    return answer ? containerMeasure(*answer, tool) : std::nullopt;
}

std::optional<ToolMeasure> measureSnaps(const Platform& platform,
                                        const std::vector<std::string>& folders) {
    const auto answer = toolAnswer(platform, "snap", {"list", "--all"}, folders);
    if (!answer) return std::nullopt;
    ToolMeasure measure;
    for (const SnapRevision& snap : disabledRevisions(*answer)) {
        const auto file = platform.files->attributes(
            fmt::format("{}{}_{}.snap", snapFiles, snap.name, snap.revision));
        const std::int64_t bytes = file ? file->allocatedSize : 0;
        measure.bytes += bytes;
        measure.parts.push_back({.name = fmt::format("{} ({})", snap.name, snap.revision),
                                 .bytes = bytes,
                                 .command = fmt::format("sudo snap remove {} --revision={}",
                                                        snap.name, snap.revision)});
    }
    sortBySize(measure.parts);
    return measure;
}

/// Letters, digits and hyphens: a name that goes into a command that a person may run.
bool isPlainWord(std::string_view text) {
    return !text.empty() && text.front() != '-' && std::ranges::all_of(text, [](char letter) {
        return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') ||
               letter == '-' || letter == '_';
    });
}

}  // namespace

std::vector<std::string> toolFolders() {
    return {"/usr/bin", "/usr/local/bin", "/opt/homebrew/bin", "/snap/bin"};
}

std::optional<ToolMeasure> measureByTool(const Platform& platform, FurtherRule::Measure measure,
                                         const std::vector<std::string>& folders) {
    switch (measure) {
        case FurtherRule::Measure::docker:
            return measureContainers(platform, "docker", folders);
        case FurtherRule::Measure::podman:
            return measureContainers(platform, "podman", folders);
        case FurtherRule::Measure::snap:
            return measureSnaps(platform, folders);
        case FurtherRule::Measure::journal: {
            const auto answer =
                toolAnswer(platform, "journalctl", {"--user", "--disk-usage"}, folders);
            return answer ? journalMeasure(*answer) : std::nullopt;
        }
        case FurtherRule::Measure::flatpak:
            return measureUnusedFlatpaks(platform, folders,
                                         {.user = platform.layout.applicationSupport + "/flatpak"});
        case FurtherRule::Measure::files:
        case FurtherRule::Measure::none:
            break;
    }
    return std::nullopt;
}

std::optional<std::int64_t> decimalSize(std::string_view text) {
    return sizeIn(text, decimalUnits);
}

std::optional<std::int64_t> binarySize(std::string_view text) { return sizeIn(text, binaryUnits); }

std::optional<ToolMeasure> containerMeasure(std::string_view answer, std::string_view tool) {
    ToolMeasure measure;
    bool isTold = false;
    while (!answer.empty()) {
        std::string_view line = nextPart(answer, '\n');
        const std::string_view type = trimmedAnswer(nextPart(line, '\t'));
        const auto bytes = decimalSize(line);
        const auto prune = std::ranges::find(prunes, type, &Prune::type);
        if (!bytes || prune == prunes.end()) continue;
        isTold = true;
        if (*bytes == 0) continue;
        if (*bytes > std::numeric_limits<std::int64_t>::max() - measure.bytes) return std::nullopt;
        measure.bytes += *bytes;
        measure.parts.push_back({.name = std::string(type),
                                 .bytes = *bytes,
                                 .command = fmt::format("{} {}", tool, prune->command)});
    }
    if (!isTold) return std::nullopt;
    sortBySize(measure.parts);
    return measure;
}

std::optional<ToolMeasure> journalMeasure(std::string_view answer) {
    constexpr std::string_view before = "take up ";
    const std::size_t begin = answer.find(before);
    if (begin == std::string_view::npos) return std::nullopt;
    std::string_view rest = answer.substr(begin + before.size());
    const auto bytes = binarySize(nextPart(rest, ' '));
    if (!bytes) return std::nullopt;
    return ToolMeasure{.bytes = *bytes, .parts = {}};
}

std::vector<SnapRevision> disabledRevisions(std::string_view answer) {
    std::vector<SnapRevision> revisions;
    while (!answer.empty()) {
        std::string_view line = nextPart(answer, '\n');
        std::vector<std::string_view> columns;
        while (!line.empty()) {
            const std::string_view column = nextPart(line, ' ');
            if (!column.empty()) columns.push_back(column);
        }
        // Name, version, revision, channel, publisher, notes separated by commas.
        if (columns.size() < 6) continue;
        bool isDisabled = false;
        for (std::string_view notes = columns.back(); !notes.empty();)
            isDisabled = nextPart(notes, ',') == "disabled" || isDisabled;
        if (isDisabled && isPlainWord(columns[0]) && isPlainWord(columns[2]))
            revisions.push_back({std::string(columns[0]), std::string(columns[2])});
    }
    return revisions;
}

}  // namespace velto
