#include "bridge/AppsFixture.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A window on a Linux machine whose distribution has installed one application.
struct PackageIntentsTest : BridgeFixture {
    void SetUp() override {
        machine.platform.layout = HomeLayout::freedesktop(
            machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
        auto added = std::make_unique<FakePackageService>();
        service = added.get();
        machine.platform.packages.push_back(std::move(added));
        open();
    }
    void ask(const nlohmann::json& payload) {
        post("appPackage", payload);
        machine.dispatcher.runAll();
    }
    void remove(const std::vector<std::string>& others = {}) {
        post("removePackage", {{"path", service->entry}, {"others", others}});
        machine.dispatcher.runAll();
    }

    FakePackageService* service = nullptr;
};

TEST_F(PackageIntentsTest, ThePageIsToldWhatWouldGo) {
    service->others = {{"gnome", "gnome;1"}};
    ask({{"path", service->entry}});
    EXPECT_THAT(
        page->calls("onAppPackage"),
        ElementsAre(
            R"(window.velto && window.velto.onAppPackage && )"
            R"(window.velto.onAppPackage("/usr/share/applications/org.example.Maps.desktop", )"
            R"({"command":"","keeper":"distribution","kept":"","name":"example-maps","others":["gnome"]});)"));
    EXPECT_THAT(service->removed, IsEmpty());
}

TEST_F(PackageIntentsTest, EveryKeeperHasItsName) {
    for (const auto& [kind, name] :
         {std::pair(PackageKeeper::flatpak, "flatpak"), std::pair(PackageKeeper::snap, "snap")}) {
        service->kind = kind;
        ask({{"path", service->entry}});
        EXPECT_THAT(page->calls("onAppPackage").back(),
                    HasSubstr(std::string(R"("keeper":")") + name));
    }
}

TEST_F(PackageIntentsTest, WhatIsNoPackageOrCannotBeToldIsNone) {
    ask({{"path", "/usr/share/applications/other.desktop"}});
    EXPECT_THAT(page->calls("onAppPackage").back(), HasSubstr("other.desktop\", null)"));
    service->failure = PackageError::Reason::busy;
    ask({{"path", service->entry}});
    EXPECT_THAT(page->calls("onAppPackage").back(), HasSubstr("Maps.desktop\", null)"));
    EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: el sistema no ha quitado " +
                                  service->entry + ": in its own words"));
}

TEST_F(PackageIntentsTest, ARemovalThatIsAllowedIsTold) {
    remove();
    EXPECT_THAT(service->removed, ElementsAre("example-maps;1.0;amd64;installed"));
    EXPECT_THAT(page->calls("onPackageRemoval").back(),
                HasSubstr(R"({"detail":"","done":true,"reason":""})"));
}

TEST_F(PackageIntentsTest, EveryFailureIsToldByItsName) {
    using enum PackageError::Reason;
    for (const auto& [reason, name] :
         {std::pair(unavailable, "unavailable"), std::pair(refused, "refused"),
          std::pair(missing, "missing"), std::pair(busy, "busy"), std::pair(failed, "failed")}) {
        service->refusal = reason;
        remove();
        EXPECT_THAT(
            page->calls("onPackageRemoval").back(),
            HasSubstr(std::string(R"({"detail":"in its own words","done":false,"reason":")") +
                      name + "\"}"));
    }
}

TEST_F(PackageIntentsTest, WhatTheUserHasNotSeenDoesNotGo) {
    service->others = {{"gnome", "gnome;1"}};
    remove();
    EXPECT_THAT(page->calls("onPackageRemoval").back(), HasSubstr(R"("reason":"changed")"));
    service->others = {{"gnome-shell", "gnome-shell;1"}};
    remove({"gnome-shell"});
    EXPECT_THAT(page->calls("onPackageRemoval").back(), HasSubstr(R"("reason":"kept")"));
    EXPECT_THAT(service->removed, IsEmpty());
}

TEST_F(PackageIntentsTest, OneRemovalAtATime) {
    const auto other = uninstalls.enter();
    remove();
    EXPECT_THAT(service->removed, IsEmpty());
    EXPECT_THAT(page->calls("toast").back(), HasSubstr("An uninstall is already running"));
    other->end();
    remove();
    remove();
    EXPECT_EQ(service->removed.size(), 2U) << "the first one has left";
}

TEST_F(PackageIntentsTest, RuntimesThatNothingUsesGoWithFlatpak) {
    for (const auto& [ofAllUsers, whose] :
         {std::pair(true, "--system"), std::pair(false, "--user")}) {
        post("removeUnusedRuntimes", {{"ofAllUsers", ofAllUsers}});
        machine.dispatcher.runAll();
        EXPECT_THAT(machine.tools.commands.back(),
                    ElementsAre("/usr/bin/flatpak", "uninstall", "--unused", whose,
                                "--noninteractive", "--assumeyes"));
        EXPECT_THAT(page->calls("onUnusedRuntimes").back(),
                    HasSubstr(R"(onUnusedRuntimes({"detail":"","done":true,"reason":""}))"));
    }
    machine.tools.result = {.started = true,
                            .startError = "",
                            .exitStatus = 1,
                            .standardError = "error: Uninstall not allowed for user"};
    post("removeUnusedRuntimes", {{"ofAllUsers", true}});
    machine.dispatcher.runAll();
    EXPECT_THAT(page->calls("onUnusedRuntimes").back(), HasSubstr(R"("reason":"refused")"));
}

TEST_F(PackageIntentsTest, AMessageThatMakesNoSenseDoesNothing) {
    for (const char* type : {"appPackage", "removePackage", "removeUnusedRuntimes"}) {
        post(type);
        post(type, {{"path", 7}, {"others", {1}}});
    }
    post("removePackage", {{"path", service->entry}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onAppPackage") + count("onPackageRemoval"), 0U);
    EXPECT_THAT(service->removed, IsEmpty());
    EXPECT_THAT(machine.tools.commands, IsEmpty());
}

TEST_F(PackageIntentsTest, AWindowThatIsGoneIsToldNothing) {
    post("removePackage", {{"path", service->entry}, {"others", nlohmann::json::array()}});
    bridge.reset();
    machine.dispatcher.runAll();
    EXPECT_THAT(service->removed, IsEmpty()) << "nobody waits for it";
    EXPECT_EQ(count("onPackageRemoval"), 0U);
}

}  // namespace
}  // namespace velto
