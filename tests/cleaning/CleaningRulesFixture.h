#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "cleaning/CleaningRules.h"
#include "support/TestPlatform.h"
#include "support/WatchedFiles.h"

namespace velto {

/// Cleaning rules over a made home; "now" is the fake clock's.
struct CleaningRulesTest : testing::Test {
    CleaningRulesTest() {
        auto watched = std::make_unique<WatchedFiles>(std::move(machine.platform.files));
        files = watched.get();
        machine.platform.files = std::move(watched);
        // Whether the machine that runs the tests has Xcode must not matter.
        layout().xcodeApplications = {home().path("Applications/Xcode.app"),
                                      home().path("system/Applications/Xcode.app")};
    }

    TempHome& home() { return machine.home; }
    HomeLayout& layout() { return machine.platform.layout; }
    std::int64_t now() const { return static_cast<std::int64_t>(machine.clock.time); }
    static constexpr std::int64_t day = 86400;

    /// A download of that size, opened and changed that many days ago.
    TempHome::File download(const std::string& name, std::int64_t bytes, std::int64_t days) {
        TempHome::File file = home().sparse("Downloads/" + name, bytes);
        file.dated(now() - days * day, now() - days * day);
        return file;
    }

    /// A folder that holds one file of that size, changed that many days ago.
    std::string folderOf(const std::string& path, std::int64_t bytes, std::int64_t days = 0) {
        home().sparse(path + "/data", bytes);
        TempHome::File(home().path(path)).dated(now(), now() - days * day);
        return home().path(path);
    }

    /// From now on the home is one of a freedesktop system.
    void useLinuxHome(const std::string& cacheHome = "") {
        layout() = HomeLayout::freedesktop(
            home().path(),
            [cacheHome](const std::string& name) -> std::optional<std::string> {
                if (name != "XDG_CACHE_HOME" || cacheHome.empty()) return std::nullopt;
                return cacheHome;
            },
            "");
    }

    /// False on a file system that refuses names that are no text.
    bool makeFolder(const std::string& path) {
        std::error_code refused;
        std::filesystem::create_directories(home().path(path), refused);
        return !refused;
    }

    std::vector<Candidate> discoverAll() { return rules.discoverAll(); }

    std::vector<Candidate> discover(const std::string& id) {
        for (const Rule& rule : rules.rules()) {
            if (rule.id == id) return rule.discover();
        }
        ADD_FAILURE() << "no rule " << id;
        return {};
    }

    static std::vector<std::string> paths(const std::vector<Candidate>& candidates) {
        std::vector<std::string> found;
        found.reserve(candidates.size());
        for (const Candidate& candidate : candidates)
            found.push_back(candidate.path);
        return found;
    }

    TestPlatform machine;
    WatchedFiles* files = nullptr;
    bool hasAccess = true;
    CleaningRules rules{machine.platform, [this] { return hasAccess; }};
};

}  // namespace velto
