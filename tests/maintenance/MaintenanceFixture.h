#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "maintenance/MaintenanceRules.h"
#include "support/TestPlatform.h"

namespace velto {

/// The rules of the unattended pass over a made home. What they move goes to a list.
struct MaintenanceRulesTest : testing::Test {
    static constexpr std::int64_t day = 86400;
    static constexpr std::int64_t megabyte = 1'000'000;

    TempHome& home() { return machine.home; }
    std::int64_t now() const { return static_cast<std::int64_t>(machine.clock.time); }

    /// An item of the Mac's trash, put there (as far as Linux can tell) that many days ago.
    TempHome::File thrownAway(const std::string& name, std::int64_t bytes, std::int64_t days) {
        TempHome::File file = home().sparse(".Trash/" + name, bytes);
        file.dated(now() - days * day, now() - days * day);
        return file;
    }

    /// A file that really takes up its size, so that it can have a duplicate.
    std::string filled(const std::string& path, char content, std::size_t bytes = 1'200'000) {
        home().text(path, std::string(bytes, content));
        return home().path(path);
    }

    MaintenanceRules rules() {
        return MaintenanceRules(
            machine.platform,
            [this](const std::vector<std::string>& paths, const MaintenanceRules::Sizes& sizes) {
                return move(paths, sizes);
            },
            cleaning, limits);
    }

    std::vector<std::string> run(const MaintenanceRules::Switches& switches) {
        std::vector<std::string> paths;
        for (const auto& candidate : rules().run(switches))
            paths.push_back(candidate.path);
        return paths;
    }

    double move(const std::vector<std::string>& paths, const MaintenanceRules::Sizes& sizes) {
        calls.push_back(paths);
        EXPECT_EQ(sizes.size(), paths.size());
        double gb = 0;
        for (const std::string& path : paths) {
            if (path == locked) throw FileError("move", path, EBUSY);
            gb += sizes.at(path);
        }
        for (const std::string& path : paths)
            std::filesystem::remove_all(path);
        return gb;
    }

    TestPlatform machine;
    MaintenanceRules::Limits limits;
    CleaningRules cleaning{machine.platform, [] { return true; }};
    std::string locked;                           // moving it fails
    std::vector<std::vector<std::string>> calls;  // of the mover
};

}  // namespace velto
