#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "bridge/BridgeFixture.h"

namespace velto {

/// A home whose folders the page asks about.
struct FolderFixture : BridgeFixture {
    TempHome& home = machine.home;

    void analyse() {
        machine.grantAccess();
        open();
        load();
        post("scan");
        machine.dispatcher.runAll();
    }

    nlohmann::json last(const char* event) const { return page->lastArgument(event); }

    nlohmann::json ask(const std::string& path, int request = 7) {
        post("folder", {{"path", path}, {"request", request}});
        machine.dispatcher.runAll();
        return last("onFolder");
    }

    nlohmann::json search(const std::string& text) {
        post("searchFolders", {{"text", text}, {"request", 3}});
        machine.dispatcher.runAll();
        return last("onFolderSearch");
    }

    static nlohmann::json named(const nlohmann::json& list, const std::string& name) {
        for (const nlohmann::json& item : list) {
            if (item["name"] == name) return item;
        }
        return {};
    }

    static std::vector<std::string> namesOf(const nlohmann::json& list) {
        std::vector<std::string> names;
        for (const nlohmann::json& item : list)
            names.push_back(item["name"]);
        return names;
    }

    struct stat status(std::string_view path) const {
        struct stat found {};
        EXPECT_EQ(lstat(home.path(path).c_str(), &found), 0);
        return found;
    }
    std::int64_t allocated(std::string_view path) const {
        return std::int64_t{status(path).st_blocks} * 512;
    }
    std::int64_t modified(std::string_view path) const { return status(path).st_mtime; }
};

}  // namespace velto
