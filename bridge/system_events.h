#pragma once

#include <cstdint>
#include <string>

#include <nlohmann/json_fwd.hpp>

/// The scripts of the live view's events beside `system`. Pure, like those of events.h.
namespace velto::events {

/// What there is to tell beside the sample that follows.
std::string systemActivity(const nlohmann::ordered_json& activity);

/// The groups by name with their single processes, and what cannot be seen, for the same sample.
std::string systemDetails(const nlohmann::ordered_json& details);

/// Whether what a group shows was stopped, which had been asked for: the group's process, and
/// whether all has ended.
std::string applicationStopped(std::int64_t process, bool hasEnded);

}  // namespace velto::events
