#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/CloudFolder.h"
#include "cleaning/HistoryService.h"
#include "cleaning/VeltoTrashService.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/exhaustive.h"
#include "support/fakes.h"
#include "support/tree_text.h"
#include "support/volumes.h"

namespace velto {

/// A home with files of its user, the program's own folders in it, and a folder of somebody else
/// beside it that nothing may ever change.
struct AttackWorld {
    explicit AttackWorld(const std::string& volume = fastVolume())
        : root(volume), layout(HomeLayout::macOS(root.folder("home"))) {
        for (const char* name : {"outside/victim", "outside/e/victim", "outside/manifest.json"})
            root.text(name, std::string("of others: ") + name);
        root.folder(std::string(cloudDrive));
        lookOutside();
    }

    static std::string fastVolume() { return otherVolume(); }

    std::string home(const std::string& relative) const { return root.path("home/" + relative); }
    std::string data(const std::string& relative) const {
        return layout.dataFolder + "/" + relative;
    }

    /// A file of the user's; no two have the same content.
    std::string file(const std::string& relative) {
        const std::string content = "content of " + relative;
        root.text("home/" + relative, content);
        contents.push_back(content);
        return home(relative);
    }

    /// Puts a link to the folder of others, or to what `target` names in it, in the place of
    /// something; what was there stands beside it afterwards.
    void putLink(const std::string& place, const std::string& target = "") const {
        namespace fs = std::filesystem;
        if (fs::symlink_status(place).type() != fs::file_type::not_found) {
            fs::rename(place, place + " aside");
        }
        fs::create_directories(fs::path(place).parent_path());
        fs::create_symlink(root.path("outside") + (target.empty() ? "" : "/" + target), place);
    }

    void lookOutside() { outside = treeText(root.path("outside"), detail); }
    void expectOutsideUntouched() const {
        EXPECT_EQ(treeText(root.path("outside"), detail), outside);
    }

    /// The user's contents as they stand in regular files of the home, sorted.
    std::vector<std::string> found() const;

    static constexpr const char* cloudDrive = "home/Library/Mobile Documents/com~apple~CloudDocs";

    TempHome root;
    HomeLayout layout;
    /// With everything, not even reading goes unnoticed.
    TreeDetail detail = TreeDetail::everything;
    std::string outside;                // the folder of others as it was
    std::vector<std::string> contents;  // of the user's files
    FakeClock clock;
    FakeLog log;
    PosixFileManager files{systemFileCalls(), {.limit = std::chrono::milliseconds(200)}};
};

/// Runs something that may be refused, but in no other way than by these errors.
template <typename Action>
void tryTo(Action action) {
    try {
        action();
    } catch (const TrashError&) {
        // Refused by the trash,
    } catch (const FileError&) {
        // or by the file system.
    }
}

}  // namespace velto
