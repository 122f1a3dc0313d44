#include "bridge/system_events.h"

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/write_json.h"

namespace velto::events {

std::string systemActivity(const nlohmann::ordered_json& activity) {
    return call("onSystemActivity", writeJson(activity, BadText::replaced));
}

std::string systemDetails(const nlohmann::ordered_json& details) {
    return call("onSystemDetails", writeJson(details, BadText::replaced));
}

std::string applicationStopped(std::int64_t process, bool hasEnded) {
    return call("onApplicationStopped", literal({{"pid", process}, {"ended", hasEnded}}));
}

}  // namespace velto::events
