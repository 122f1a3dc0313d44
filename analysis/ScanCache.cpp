#include "analysis/ScanCache.h"

#include <nlohmann/json.hpp>

#include "analysis/disk_state_json.h"
#include "platform/values/parse_json.h"
#include "platform/values/units.h"

namespace velto {
namespace {

constexpr ReadLimit stateLimit = ownFile(256 << 20);  // lists of files, and a history of any length

}  // namespace

ScanCache::ScanCache(FileManager& files, const HomeLayout& layout)
    : files_(files), folder_(layout.dataFolder) {}

std::string ScanCache::location() const {
    try {
        files_.createFolders(folder_);
    } catch (const FileError&) {
        // Reading then finds nothing and saving fails in its own silence.
    }
    return folder_ + "/lastScan.json";
}

void ScanCache::save(const DiskState& state, double ts) const {
    const auto text = encode(state);
    if (!text) return;
    try {
        files_.writeAtomically(location(),
                               R"({"state":)" + *text + R"(,"ts":)" + shortest(ts) + "}");
    } catch (const FileError&) {
        // Not remembered; the analysis is shown all the same.
    }
}

std::optional<ScanCache::Entry> ScanCache::load() const {
    try {
        const auto json = parseJson(files_.read(location(), stateLimit));
        const nlohmann::json& ts = json.at("ts");
        if (!ts.is_number()) return std::nullopt;
        return Entry{ts.get<double>(), diskStateFromJson(json.at("state"))};
    } catch (const FileError&) {
        return std::nullopt;  // never saved, or out of reach
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;  // damaged: the next save replaces it
    }
}

}  // namespace velto
