#include "bridge/sharing_events.h"

#include <string_view>

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"

namespace velto::events {
namespace {

std::string_view sharingWord(SpaceSharing::Reason reason) {
    using Reason = SpaceSharing::Reason;
    switch (reason) {
        case Reason::one:
            return "one";
        case Reason::linked:
            return "linked";
        case Reason::changed:
            return "changed";
        case Reason::gone:
            return "gone";
        case Reason::refused:
            return "refused";
        case Reason::otherDisk:
            return "otherDisk";
        case Reason::cannot:
            return "cannot";
        case Reason::closed:
            return "closed";
        case Reason::inUse:
            return "inUse";
        case Reason::keptFile:
            return "keptFile";
        case Reason::stopped:
            return "stopped";
        case Reason::other:
            break;
    }
    return "other";
}

nlohmann::json copyRecord(const SpaceSharing::Copy& copy) {
    nlohmann::json record{
        {"path", pathText(copy.path)}, {"bytes", copy.space.bytes}, {"exact", copy.space.isExact}};
    if (copy.stays) record["reason"] = sharingWord(*copy.stays);
    return record;
}

nlohmann::json copyRecords(const std::vector<SpaceSharing::Copy>& copies) {
    auto records = nlohmann::json::array();
    for (const SpaceSharing::Copy& copy : copies)
        records.push_back(copyRecord(copy));
    return records;
}

}  // namespace

std::string sharable(std::int64_t request, const std::map<std::string, Sharable>& groups) {
    auto records = nlohmann::json::object();
    for (const auto& [id, group] : groups) {
        records[id] = {{"kept", pathText(group.kept)}, {"copies", copyRecords(group.copies)}};
    }
    return call("onSharable", literal({{"request", request}, {"groups", records}}));
}

std::string sharing(std::size_t done, std::size_t of, std::int64_t bytes) {
    return call("onSharing", literal({{"done", done}, {"of", of}, {"bytes", bytes}}));
}

std::string shared(const Shared& result) {
    return call("onShared", literal({{"files", result.files},
                                     {"bytes", result.bytes},
                                     {"exact", result.isExact},
                                     {"stopped", result.isStopped},
                                     {"stays", copyRecords(result.stays)}}));
}

}  // namespace velto::events
