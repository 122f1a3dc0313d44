#include "bridge/system_events.h"

#include <nlohmann/json.hpp>

#include "bridge/events.h"

namespace velto::events {

std::string systemActivity(const nlohmann::ordered_json& activity) {
    return call("onSystemActivity",
                activity.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

std::string applicationStopped(std::int64_t process, bool hasEnded) {
    return call("onApplicationStopped", literal({{"pid", process}, {"ended", hasEnded}}));
}

}  // namespace velto::events
