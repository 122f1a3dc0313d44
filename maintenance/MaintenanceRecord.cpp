#include "maintenance/MaintenanceRecord.h"

#include <nlohmann/json.hpp>

#include "platform/values/json_fields.h"
#include "platform/values/parse_json.h"
#include "platform/values/write_json.h"

namespace velto {
namespace {

constexpr ReadLimit limit = ownFile(64 << 10);  // four numbers

std::string pathIn(const HomeLayout& layout) { return layout.dataFolder + "/maintenance.json"; }

}  // namespace

std::optional<MaintenanceRecord> lastMaintenance(const FileManager& files,
                                                 const HomeLayout& layout) {
    try {
        const auto object = parseJson(files.read(pathIn(layout), limit));
        return MaintenanceRecord{.ts = field<double>(object, "ts"),
                                 .freed = field<double>(object, "freed"),
                                 .moved = field<std::int64_t>(object, "moved"),
                                 .movedGB = field<double>(object, "movedGB")};
    } catch (const FileError&) {
        return std::nullopt;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

void rememberMaintenance(FileManager& files, const HomeLayout& layout,
                         const MaintenanceRecord& record) {
    const nlohmann::ordered_json object{{"ts", record.ts},
                                        {"freed", record.freed},
                                        {"moved", record.moved},
                                        {"movedGB", record.movedGB}};
    try {
        files.createFolders(layout.dataFolder);
        files.writeAtomically(pathIn(layout), writeJson(object));
    } catch (const FileError&) {
        // See the declaration.
    }
}

}  // namespace velto
