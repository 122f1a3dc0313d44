#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/HistoryRecords.h"

namespace velto {

// The analysis as the page shows it. Every field travels under a JSON key equal to its name, all
// texts are UTF-8, gigabytes are decimal. See disk_state_json.h for the encoding.

/// One category of the disk's content.
struct Cat {
    std::string id;
    std::string name;
    double gb = 0;  // one decimal
    std::string icon;
    std::string col;                            // "#RRGGBB"
    std::string eq;                             // equivalence sentence
    std::vector<std::vector<std::string>> sub;  // always empty as the analysis makes it
    std::int64_t files = 0;

    bool operator==(const Cat&) const = default;
};

struct BigFile {
    std::string name;
    double gb = 0;     // one decimal
    std::string kind;  // "video", "descarga", "app" or "doc"
    std::string last;  // Spanish relative time
    double lastN = 0;  // whole days since last use
    std::string path;
    bool isProtected = false;

    bool operator==(const BigFile&) const = default;
};

struct DupGroup {
    using Pair = std::vector<std::string>;  // file name, size in GB with one decimal

    std::string id;  // content hash
    std::string name;
    std::vector<std::vector<Pair>> pairs;  // per path a list that holds one pair
    std::vector<std::string> paths;
    std::int64_t recommended = 0;  // index of the copy to keep

    bool operator==(const DupGroup&) const = default;
};

/// The user's settings as the page needs them.
struct Settings {
    std::int64_t retention = 0;  // days
    bool autoMaintenance = false;
    std::string frequency;
    std::string language;
    std::optional<std::map<std::string, bool>> rules;

    bool operator==(const Settings&) const = default;
};

struct DiskState {
    double total = 0;  // GB
    double free = 0;   // GB
    std::int64_t ser = 0;
    std::vector<Cat> cats;
    std::vector<BigFile> files;
    std::vector<DupGroup> dupGroups;
    std::vector<HistoryEntry> history;
    Settings settings;
    std::optional<std::vector<std::string>> protected_;  // JSON key "protected"

    bool operator==(const DiskState&) const = default;
};

/// The free-space score: the free share to the power 0.3 as a percentage, 5 to 99; a disk of no
/// size scores 5. 100 is never shown, on purpose.
std::int64_t freeSpaceScore(double free, double total);

}  // namespace velto
