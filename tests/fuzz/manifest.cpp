#include <nlohmann/json.hpp>

#include "cleaning/TrashRecords.h"
#include "fuzz/engine/Target.h"

namespace velto::fuzz {
namespace {

/// What was read can be written, and reads as the same lists again.
void judge(std::string_view input) {
    Manifest lists;
    try {
        lists = decodeManifest(std::string(input));
    } catch (const nlohmann::json::exception&) {
        return;  // damaged
    }
    require(decodeManifest(encodeManifest(lists)) == lists, "what was written reads as the same");
}

const Registration registered("manifest", judge);

}  // namespace
}  // namespace velto::fuzz
