#include "fuzz/engine/MemoryFiles.h"
#include "fuzz/engine/Target.h"
#include "maintenance/MaintenanceRecord.h"

namespace velto::fuzz {
namespace {

void judge(std::string_view input) {
    MemoryFiles files;
    const HomeLayout layout = HomeLayout::macOS("/Users/ana");
    files.put(layout.dataFolder + "/maintenance.json", input);
    const auto record = lastMaintenance(files, layout);
    if (!record) return;
    rememberMaintenance(files, layout, *record);
    require(lastMaintenance(files, layout) == record, "what was written reads as the same");
}

const Registration registered("maintenance_record", judge);

}  // namespace
}  // namespace velto::fuzz
