#include "uninstall/AppEntry.h"

#include <nlohmann/json.hpp>

#include "platform/values/path_text.h"

namespace velto {

nlohmann::json toJson(const AppEntry& entry) {
    return {{"bid", entry.bid},
            {"name", pathText(entry.name)},
            {"version", entry.version},
            {"exec", entry.exec},
            {"path", pathText(entry.path)},
            {"gb", entry.gb},
            {"last", entry.last},
            {"running", entry.running},
            {"apple", entry.apple},
            {"store", entry.store},
            {"team", entry.team}};
}

}  // namespace velto
