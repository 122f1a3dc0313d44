#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "cleaning/further/FurtherDiscovery.h"
#include "support/TestPlatform.h"

namespace velto {

/// The discovery of the further rules over a made home, everything in it as old as a test says.
struct FurtherFixture : testing::Test {
    static constexpr std::int64_t day = 86'400;

    /// What a rule looks for outside the home lies below SYSTEM in the made one: what the machine
    /// that runs the tests has there must not matter.
    FurtherFixture() {
        useLinuxHome();
        for (FurtherRule& rule : rules) {
            for (std::string& place : rule.where) {
                if (place.starts_with('/')) place = "~/SYSTEM" + place;
            }
        }
    }

    TempHome& home() { return machine.home; }
    std::int64_t now() const { return static_cast<std::int64_t>(machine.clock.time); }

    void useLinuxHome() {
        machine.platform.layout = HomeLayout::freedesktop(
            home().path(), [](const std::string&) { return std::nullopt; }, "");
    }
    void useMacHome() { machine.platform.layout = HomeLayout::macOS(home().path()); }

    /// A file of 4 KB.
    void file(const std::string& path) { home().file(path, 4096); }

    /// Everything in the home was changed that many days ago.
    void age(std::int64_t days) {
        const auto date = now() - days * day;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home().path())) {
            if (!entry.is_symlink()) TempHome::File(entry.path().string()).dated(date, date);
        }
    }
    /// Only what stands at `path`.
    void age(const std::string& path, std::int64_t days) {
        TempHome::File(home().path(path)).dated(now() - days * day, now() - days * day);
    }

    FurtherDiscovery discovery() {
        return FurtherDiscovery({.platform = machine.platform,
                                 .rules = rules,
                                 .excluded = excluded,
                                 .hasAccess = hasAccess,
                                 .smallest = smallest,
                                 .tools = {home().path("tools")}});
    }
    std::vector<FurtherGroup> groups() { return discovery().discover(); }

    /// All items of all rules, by path.
    std::vector<FurtherItem> items() {
        std::vector<FurtherItem> all;
        for (const FurtherGroup& group : groups())
            all.insert(all.end(), group.items.begin(), group.items.end());
        std::ranges::sort(all, {}, &FurtherItem::path);
        return all;
    }
    /// Their paths, below the home.
    std::vector<std::string> taken() {
        std::vector<std::string> paths;
        for (const FurtherItem& item : items())
            paths.push_back(item.path.substr(home().path().size() + 1));
        return paths;
    }

    TestPlatform machine;
    std::vector<FurtherRule> rules = furtherRules();
    std::vector<std::string> excluded;
    bool hasAccess = true;
    std::int64_t smallest = 1;
};

}  // namespace velto
