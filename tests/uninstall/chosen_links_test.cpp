// Leftovers that are links, or lie behind one: what is told of them beforehand, and what goes. On a
// Linux home a link goes by itself; on a Mac's what it leads to does, once the user has seen where.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "UninstallWorld.h"
#include "support/tree_text.h"
#include "support/volumes.h"
#include "uninstall/Leftovers.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Failure = AppRemover::Failure;

class ChosenLink : public testing::Test, protected UninstallWorld {
protected:
    std::map<std::string, LinkTarget> targets() {
        analysis = Leftovers::analyze(machine.platform, apps, entry, true);
        return Leftovers::linkTargets(machine.platform, apps, analysis);
    }
    nlohmann::json itemAt(const std::string& path) const {
        for (const auto& group : analysis["groups"]) {
            for (const auto& item : group["items"]) {
                if (item["path"] == path) return item;
            }
        }
        return nullptr;
    }
    AppRemover::Result remove(const std::vector<std::string>& paths,
                              const AppRemover::ShownTargets& shown = {}) {
        return remover.uninstall(entry, paths, {}, shown);
    }
    bool isLink(const std::string& path) const { return fs::is_symlink(path); }

    AppEntry entry;
    nlohmann::json analysis;
};

/// A Linux home with an AppImage that keeps its settings in a folder of projects.
class LinkOnALinuxHome : public ChosenLink {
protected:
    void SetUp() override {
        if (!tellsCaseApart(home.path())) GTEST_SKIP() << "two spellings lead to the one link here";
        fs::remove_all(home.path("Library"));
        machine.platform.layout = HomeLayout::freedesktop(
            home.path(), [](const std::string&) { return std::nullopt; }, "");
        home.file("Projects/thesis", 2'000'000);
        home.link(".config/foobar", home.path("Projects"));
        entry = {.bid = "foobar",
                 .name = "Foobar",
                 .path = home.text("Applications/Foobar.AppImage", "program").path()};
        projects = treeText(home.path("Projects"));
    }

    std::string projects;
};

class LinkOnAMac : public ChosenLink {
protected:
    void SetUp() override {
        entry = *apps.readApp(application("Foobar"));
        home.file("Projects/data", 2'000'000);
        home.link("Library/Caches/com.example.foobar", home.path("Projects"));
        link = home.path("Library/Caches/com.example.foobar");
    }

    std::string link;
};

// What is told

TEST_F(LinkOnALinuxHome, ItIsListedWithItsTargetAndItsOwnSize) {
    home.folder(".cache/foobar");
    EXPECT_THAT(targets(),
                ElementsAre(Pair(home.path(".config/foobar"),
                                 LinkTarget{.path = home.path("Projects"), .isKept = true})));
    EXPECT_EQ(itemAt(home.path(".config/foobar"))["gb"], 0.0);
}

TEST_F(LinkOnALinuxHome, WhatLiesBehindALinkOnTheWayIsToldToo) {
    home.file("dotfiles/share/foobar/data", 2'000'000);
    home.folder(".local");
    home.link(".local/share", home.path("dotfiles/share"));
    EXPECT_THAT(
        targets(),
        ElementsAre(Pair(home.path(".config/foobar"), testing::_),
                    Pair(home.path(".local/share/foobar"),
                         LinkTarget{.path = home.path("dotfiles/share/foobar"), .isKept = false})));
    EXPECT_EQ(itemAt(home.path(".local/share/foobar"))["gb"], 0.002);
}

TEST_F(LinkOnALinuxHome, AnApplicationThatIsALinkIsToldAsOne) {
    home.link("Applications/Other.AppImage", entry.path);
    entry.path = home.path("Applications/Other.AppImage");
    fs::remove(home.path(".config/foobar"));
    EXPECT_THAT(
        targets(),
        ElementsAre(Pair(entry.path, LinkTarget{.path = home.path("Applications/Foobar.AppImage"),
                                                .isKept = true})));
}

TEST_F(LinkOnAMac, WhatItLeadsToIsToldAsWhatGoes) {
    EXPECT_THAT(targets(), ElementsAre(Pair(
                               link, LinkTarget{.path = home.path("Projects"), .isKept = false})));
    EXPECT_EQ(itemAt(link)["gb"], 0.002);
}

// What goes

TEST_F(LinkOnALinuxHome, TheLinkGoesAndItsTargetStays) {
    const auto result = remove({home.path(".config/foobar")});
    EXPECT_EQ(result.removed, 1);
    EXPECT_EQ(result.freed, 0.0);
    EXPECT_FALSE(isLink(home.path(".config/foobar")));
    EXPECT_EQ(treeText(home.path("Projects")), projects);
}

TEST_F(LinkOnALinuxHome, ALinkInThePlaceOfTheApplicationGoesAlone) {
    home.link("Applications/foobar", home.path("Projects"));
    entry.path = home.path("Applications/foobar");
    EXPECT_EQ(remove({entry.path}).removed, 1);
    EXPECT_FALSE(isLink(entry.path));
    EXPECT_EQ(treeText(home.path("Projects")), projects);
}

TEST_F(LinkOnALinuxHome, ALinkInThePlaceOfAFlatpakGoesAloneToo) {
    home.link(".local/share/flatpak/app/org.acme.Mine", home.path("Projects"));
    entry = {.bid = "org.acme.Mine",
             .name = "Mine",
             .path = home.path(".local/share/flatpak/app/org.acme.Mine")};
    EXPECT_EQ(remove({entry.path}).removed, 1);
    EXPECT_THAT(machine.tools.commands, IsEmpty());
    EXPECT_EQ(treeText(home.path("Projects")), projects);
}

TEST_F(LinkOnALinuxHome, ItIsJudgedByWhatItLeadsTo) {
    home.folder("Documents");
    home.link(".cache/out", disk.path());
    home.link(".cache/documents", home.path("Documents"));
    home.link(".cache/keys", home.folder(".ssh"));
    home.link(".cache/mail", home.folder("Mail"));
    home.link(".cache/nowhere", home.path("nothing"));
    std::vector<std::string> paths, reasons;
    for (const char* name : {"out", "documents", "keys", "mail", "nowhere"})
        paths.push_back(home.path(".cache/") + name);
    for (const Failure& failure : remove(paths).failures)
        reasons.push_back(failure.reason);
    EXPECT_THAT(reasons, ElementsAre("admin", "protected", "protected", "protected"));
    EXPECT_FALSE(isLink(paths.back())) << "what leads nowhere leads nowhere else";
    paths.pop_back();
    for (const std::string& path : paths)
        EXPECT_TRUE(isLink(path)) << path;
}

TEST_F(LinkOnALinuxHome, BehindALinkOnTheWayOnlyWhatWasShownGoes) {
    home.text("dotfiles/share/foobar/data", "x");
    home.folder(".local");
    home.link(".local/share", home.path("dotfiles/share"));
    const std::string path = home.path(".local/share/foobar");
    const std::string target = home.path("dotfiles/share/foobar");
    EXPECT_THAT(remove({path}).failures, ElementsAre(Failure{"foobar", path, "other"}));
    EXPECT_TRUE(isThere(target));
    EXPECT_EQ(remove({path}, {{path, target}}).removed, 1);
    EXPECT_FALSE(isThere(target));
}

TEST_F(LinkOnAMac, WhatItLeadsToGoesWhenTheUserHasSeenIt) {
    EXPECT_EQ(remove({link}, {{link, home.path("Projects")}}).removed, 1);
    EXPECT_FALSE(isThere(home.path("Projects")));
}

TEST_F(LinkOnAMac, NothingGoesThatTheUserHasNotSeen) {
    EXPECT_THAT(remove({link}).failures, ElementsAre(Failure{"com.example.foobar", link, "other"}));
    home.text("Other/x", "x");
    fs::remove(link);
    home.link("Library/Caches/com.example.foobar", home.path("Other"));
    EXPECT_THAT(remove({link}, {{link, home.path("Projects")}}).failures,
                ElementsAre(Failure{"com.example.foobar", link, "other"}));
    // Nor what took the place of a folder that was listed as one.
    EXPECT_EQ(remove({link}, {{home.path("x"), home.path("Other")}}).removed, 0);
    EXPECT_TRUE(isThere(home.path("Projects/data")));
    EXPECT_TRUE(isThere(home.path("Other/x")));
    EXPECT_TRUE(isLink(link));
}

}  // namespace
}  // namespace velto
