#include "cleaning/HistoryService.h"

#include <nlohmann/json.hpp>

#include "platform/Platform.h"
#include "platform/json_fields.h"

namespace velto {
namespace {

constexpr const char* fileName = "/history.json";

}  // namespace

HistoryService::HistoryService(FileManager& files, Log& log, const HomeLayout& layout)
    : files_(files), log_(log), folder_(layout.dataFolder) {
    try {
        const auto json = nlohmann::json::parse(files_.read(folder_ + fileName));
        entries_ = listFrom(json, historyEntryFromJson);
    } catch (const FileError&) {
        // Nothing was cleaned yet, or the file cannot be read.
    } catch (const nlohmann::json::exception&) {
        // Damaged: the next save replaces it.
    }
}

HistoryService& HistoryService::shared() {
    Platform& platform = processPlatform();
    static HistoryService instance(*platform.files, *platform.log, platform.layout);
    return instance;
}

void HistoryService::record(const Operation& operation) {
    HistoryEntry entry{.id = operation.id,
                       .ts = operation.ts,
                       .gb = operation.gb,
                       .items = {},
                       .kind = operation.kind};
    for (const TrashItem& item : operation.items) {
        entry.items.push_back({.name = item.name, .gb = item.gb});
    }
    entries_.insert(entries_.begin(), std::move(entry));
    save();
}

void HistoryService::remove(const std::string& operationID) {
    std::erase_if(entries_, [&](const HistoryEntry& entry) { return entry.id == operationID; });
    save();
}

void HistoryService::clear() {
    if (entries_.empty()) return;
    entries_.clear();
    save();
    log_.line("Velto ▶ historial vaciado");
}

void HistoryService::save() const {
    auto list = nlohmann::json::array();
    for (const HistoryEntry& entry : entries_)
        list.push_back(toJson(entry));
    if (!isFinite(list)) return;  // the file would read as damaged
    try {
        files_.createFolders(folder_);
        files_.writeAtomically(folder_ + fileName, list.dump());
    } catch (const FileError&) {
        // The list in memory stays in force.
    } catch (const nlohmann::json::type_error&) {
        // A name that is not UTF-8 cannot be written as JSON.
    }
}

}  // namespace velto
