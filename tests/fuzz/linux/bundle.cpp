#include <exception>
#include <memory>
#include <string>

#include <nlohmann/json.hpp>

#include "fuzz/engine/Target.h"
#include "fuzz/engine/linux/ConfinedMachine.h"
#include "fuzz/engine/sections.h"
#include "platform/linux/LinuxIcons.h"
#include "platform/values/text.h"
#include "uninstall/InstalledApps.h"
#include "uninstall/Leftovers.h"

namespace velto::fuzz {
namespace {

constexpr const char* application = "Applications/Foobar.app/";
constexpr const char* noWorker = "";  // pictures have a target of their own

/// Where a leftover may be proposed: below a folder of applications' own things, or the bundle.
bool isInReach(const std::string& path, const HomeLayout& layout) {
    return isAtOrBelow(path, layout.userLibrary) || isAtOrBelow(path, layout.systemLibrary) ||
           isAtOrBelow(path, layout.userApplications);
}

void proveLeftovers(const nlohmann::json& analysis, const HomeLayout& layout) {
    for (const nlohmann::json& group : analysis.at("groups")) {
        for (const nlohmann::json& item : group.at("items")) {
            const std::string path = item.at("path");
            require(isInReach(path, layout), "a leftover lies where leftovers are: " + path);
            require(standardizedPath(path) == path, "its path is what it looks like");
            require(path != layout.userLibrary && parentFolder(path) != layout.userLibrary,
                    "no folder of all applications is one");
        }
    }
}

/// A bundle of whatever files: each section is one, "codesign" what the signing tool says of it.
void judge(std::string_view input) {
    ConfinedMachine world(HomeLayout::Kind::macOS);
    for (const char* path : {"Library/Application Support/Foobar/data", "Library/Caches/data",
                             "Library/Preferences/com.example.foobar.plist",
                             "Library/Group Containers/T.com.example.foobar/data",
                             "Library/LaunchAgents/com.example.foobar.plist"}) {
        world.keep(path, "content");
    }
    const auto sections = sectionsIn(input);
    for (const Section& section : sections) {
        const std::string path = application + section.name;
        if (section.name.empty() || section.name == "codesign" || !canBeMade(path)) continue;
        if (world.home.exists(path)) continue;
        try {
            world.home.text(path, section.content);
        } catch (const std::exception&) {
            return;  // a file in the place of a folder
        }
    }
    Platform& platform = world.platform;
    platform.icons = std::make_unique<LinuxIcons>(*platform.files, noWorker);
    world.machine.tools.result = {.started = true,
                                  .standardError = sectionOf(sections, "codesign")};
    AppUsage usage(platform);
    InstalledApps apps(platform, usage);
    for (AppEntry& entry : apps.listApps()) {
        require(!entry.bid.empty(), "a listed application has an identifier");
        entry.team = apps.teamID(entry.path).value_or("");
        require(!toJson(entry).dump().empty(), "it can be shown");
        const auto analysis = Leftovers::analyze(platform, apps, entry, true);
        require(!analysis.dump().empty(), "and so can what it leaves");
        proveLeftovers(analysis, platform.layout);
    }
    world.prove();
}

const Registration registered("bundle", judge);

}  // namespace
}  // namespace velto::fuzz
