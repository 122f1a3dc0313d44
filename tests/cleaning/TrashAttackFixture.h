#pragma once

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "TrashWorld.h"
#include "support/tree_text.h"

namespace velto {

/// Acts in the middle: just before the n-th look at or change of a name.
class InterruptedCalls final : public FileCalls {
public:
    int open(int folder, const char* name, int flags, mode_t mode) override {
        interrupt();
        return FileCalls::open(folder, name, flags, mode);
    }
    int stat(int folder, const char* name, struct stat& status) override {
        interrupt();
        return FileCalls::stat(folder, name, status);
    }
    int rename(int fromFolder, const char* from, int toFolder, const char* to) override {
        interrupt();
        return FileCalls::rename(fromFolder, from, toFolder, to);
    }
    int remove(int folder, const char* name, int flags) override {
        interrupt();
        return FileCalls::remove(folder, name, flags);
    }
    int sync(int) override { return 0; }

    int at = -1;
    int count = 0;
    std::function<void()> action;

private:
    void interrupt() {
        if (count++ == at) action();
    }
};

/// A home beside folders that are none of the trash's business.
struct TrashAttackTest : testing::Test {
    void SetUp() override { build(); }

    void build() {
        root.emplace(TrashWorld::fastVolume());
        layout = HomeLayout::macOS(root->path("home"));
        root->text("home/d/victim", "of the home");
        root->text("home/d/e/victim", "of the home, deeper");
        root->text("home/other", "other");
        root->text("outside/victim", "of others");
        root->text("outside/e/victim", "of others, deeper");
        outside = treeText(root->path("outside"));
        service.emplace(files, files, clock, log, layout);
    }

    std::string home(const std::string& relative) const { return root->path("home/" + relative); }

    /// All contents of files in the home (the trash in it), sorted.
    std::vector<std::string> contents() const {
        std::vector<std::string> all;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(root->path("home"))) {
            const std::string name = entry.path().filename();
            if (!entry.is_regular_file() || entry.is_symlink()) continue;
            if (name.starts_with("manifest") || name.starts_with("Trash.")) continue;
            all.push_back(files.read(entry.path(), anyFile(1 << 20)));
        }
        std::ranges::sort(all);
        return all;
    }

    std::optional<TempHome> root;
    std::string outside;  // the folder of others as it was
    HomeLayout layout;
    FakeClock clock;
    FakeLog log;
    InterruptedCalls calls;
    PosixFileManager files{calls};
    std::optional<VeltoTrashService> service;
};

}  // namespace velto
