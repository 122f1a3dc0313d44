#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json_fwd.hpp>

/// The scripts of the live view's events beside `system`. Pure, like those of events.h.
namespace velto::events {

/// What there is to tell beside the sample that follows.
std::string systemActivity(const nlohmann::ordered_json& activity);

/// Whether what a group shows was stopped, which had been asked for: the group's process, and
/// whether all has ended.
std::string applicationStopped(std::int64_t process, bool hasEnded);

}  // namespace velto::events
