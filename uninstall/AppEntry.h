#pragma once

#include <string>

#include <nlohmann/json_fwd.hpp>

namespace velto {

/// One installed application.
struct AppEntry {
    std::string bid;       // bundle identifier; never empty in a listed entry
    std::string name;      // display name
    std::string version;   // may be empty
    std::string exec;      // name of the executable
    std::string path;      // absolute path of the bundle; without bundles, of what removing removes
    double gb = 0;         // decimal gigabytes; 0 until measured
    double last = 0;       // last used, seconds since 1970; 0 when unknown
    bool running = false;  // an application with this identifier is running
    bool apple = false;    // belongs to the operating system or its maker
    bool store = false;    // came from a store
    std::string team;      // signing team; empty until looked up

    bool operator==(const AppEntry&) const = default;
};

/// Keys equal the field names.
nlohmann::json toJson(const AppEntry& entry);

}  // namespace velto
