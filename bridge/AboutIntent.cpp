#include "bridge/AboutIntent.h"

#include <string>

#include <nlohmann/json.hpp>

#include "bridge/events.h"
#include "platform/values/path_text.h"

namespace velto {
namespace {

constexpr const char* license = "MIT";

/// A system that keeps settings for its programs has a file for each of them.
std::string settingsPlace(const Platform& platform) {
    if (!platform.settingsFolder.empty()) return platform.settingsFolder;
    return platform.layout.userLibrary + "/Preferences/" + platform.bundleIdentifier + ".plist";
}

}  // namespace

std::vector<OwnPlace> ownPlaces(const Platform& platform) {
    const HomeLayout& layout = platform.layout;
    return {{"data", layout.dataFolder},
            {"trash", layout.trashFolder},
            {"settings", settingsPlace(platform)},
            {"schedule", layout.agentFile}};
}

void AboutIntent::onAbout(const Payload&) {
    auto places = nlohmann::json::array();
    for (const OwnPlace& place : ownPlaces(context_.platform)) {
        places.push_back({{"role", place.role},
                          {"path", pathText(place.path)},
                          {"there", context_.platform.files->exists(place.path)}});
    }
    context_.link.evaluate(events::call(
        "onAbout", events::literal(
                       {{"version", context_.version}, {"license", license}, {"places", places}})));
}

}  // namespace velto
