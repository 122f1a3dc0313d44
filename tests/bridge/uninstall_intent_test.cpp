#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "bridge/AppsFixture.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/values/text.h"
#include "support/WatchedFileCalls.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct UninstallIntent : AppsFixture {
    /// Asks for the removal of an application, which goes on until `meanwhile` has been called
    /// once: one of its processes does not quit when it is asked to.
    void removeWhile(const std::string& path, const std::vector<std::string>& paths,
                     std::function<void()> meanwhile) {
        machine.running.add({.bundlePath = path}).ignoresTerminate = true;
        machine.sleeper.onSleep = [meanwhile = std::move(meanwhile), isOver = false]() mutable {
            if (!std::exchange(isOver, true)) meanwhile();
        };
        post("uninstall", {{"path", path}, {"paths", paths}});
    }

    void closeWindow() { bridge.reset(); }

    static nlohmann::json removalOf(const std::string& path) {
        return {{"path", path}, {"paths", {path}}};
    }
    static nlohmann::json failureOf(const std::string& path, const std::string& reason) {
        return {{"name", lastPathComponent(path)}, {"path", path}, {"reason", reason}};
    }
    nlohmann::json result() const {
        return nlohmann::json::parse(calls("onUninstallResult").back());
    }
    std::size_t refusals() const {
        return static_cast<std::size_t>(
            std::ranges::count_if(page->calls("toast"), [](const std::string& script) {
                return script.find("An uninstall is already running") != std::string::npos;
            }));
    }
    /// No removal is under way: the next one is not refused.
    void expectTheNextOneRuns(const std::string& path, std::size_t refusedBefore = 0) {
        post("uninstall", removalOf(path));
        machine.dispatcher.runAll();
        EXPECT_EQ(refusals(), refusedBefore);
        EXPECT_FALSE(machine.platform.files->exists(path));
    }
    /// An analysis that lists one large file.
    void showLargeFile(const std::string& path) {
        DiskState state;
        state.total = 500;
        state.files = {{.name = "large.bin", .gb = 1.2, .kind = "doc", .path = path}};
        ScanCache(*machine.platform.files, machine.platform.layout).save(state, 1'600'000'000);
        open();
        load();
        ASSERT_THAT(page->calls("setState").back(), HasSubstr("large.bin"));
    }
};

TEST_F(UninstallIntent, AnUninstallReportsItsStagesAndItsResult) {
    const std::string foo = application("Foo", "com.example.foo");
    post("uninstall", {{"path", foo}, {"paths", {foo}}, {"sizes", {{foo, 0.002}}}});
    EXPECT_TRUE(bridge->uninstallRunning);
    machine.dispatcher.runAll();
    EXPECT_THAT(calls("onUninstallProgress"),
                ElementsAre("\"stop\", 3.0", "\"stop\", 16.0", "\"stop\", 20.0", "\"files\", 40.0",
                            "\"files\", 40.0, \"Foo.app\"", "\"clean\", 92.0", "\"done\", 100.0"));
    EXPECT_EQ(nlohmann::json::parse(calls("onUninstallResult").front()),
              nlohmann::json({{"name", "Foo"},
                              {"removed", 1},
                              {"freed", 0.002},
                              {"closed", 0},
                              {"failures", nlohmann::json::array()}}));
    EXPECT_FALSE(bridge->uninstallRunning);
    EXPECT_FALSE(machine.home.exists("Applications/Foo.app"));
    ASSERT_EQ(history.entries().size(), 1u);
    EXPECT_EQ(history.entries().front().kind, "uninstall");
    EXPECT_EQ(history.entries().front().gb, 0.002);
    EXPECT_EQ(history.entries().front().items,
              (std::vector<HistoryItem>{{.name = "Foo.app", .gb = 0.002}}));
}

TEST_F(UninstallIntent, AnUninstallThatRemovedNothingIsNoHistory) {
    const std::string foo = application("Foo", "com.example.foo");
    post("uninstall", {{"path", foo}, {"paths", {machine.home.path("Library/Caches/nothing")}}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onUninstallResult"), 1u);
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST_F(UninstallIntent, TheHistoryHoldsWhatWasDeletedAndNotItsNamesakeThatStayed) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string cache = machine.home.folder("Library/Caches/com.example.foo");
    const std::string agent = machine.home.path("Library/LaunchAgents/com.example.foo");
    machine.home.link("Library/LaunchAgents/com.example.foo", "/usr");
    const std::string before = machine.home.path("Library/Logs/com.example.foo");
    post("uninstall",
         {{"path", foo}, {"paths", {agent, before, cache}}, {"sizes", {{cache, 0.5}}}});
    machine.dispatcher.runAll();
    ASSERT_EQ(history.entries().size(), 1u);
    EXPECT_EQ(history.entries().front().items,
              (std::vector<HistoryItem>{{.name = "com.example.foo", .gb = 0.5}}));
    EXPECT_TRUE(std::filesystem::is_symlink(agent));
}

TEST_F(UninstallIntent, ASecondUninstallOnlyShowsThatOneIsRunning) {
    const std::string foo = application("Foo", "com.example.foo");
    const nlohmann::json payload{{"path", foo}, {"paths", {foo}}};
    post("uninstall", payload);
    const std::size_t waiting = machine.dispatcher.waitingGlobal();
    post("uninstall", payload);
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), waiting);
    EXPECT_THAT(page->scripts.back(),
                HasSubstr("\"An uninstall is already running\", \"Wait for it to finish.\""));
    language.setCode("es");
    post("uninstall", payload);
    EXPECT_THAT(page->scripts.back(),
                HasSubstr("\"Ya hay una desinstalación en marcha\", \"Espera a que termine.\""));
    machine.dispatcher.runAll();
    post("uninstall", payload);
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onUninstallResult"), 2u);
}

TEST_F(UninstallIntent, WithNothingChosenTheApplicationIsOnlyQuit) {
    const std::string foo = application("Foo", "com.example.foo");
    auto& process = machine.running.add({.bundlePath = foo});
    post("uninstall", {{"path", foo}, {"paths", nlohmann::json::array()}});
    machine.dispatcher.runAll();
    EXPECT_TRUE(process.terminated);
    EXPECT_EQ(result(), nlohmann::json({{"name", "Foo"},
                                        {"removed", 0},
                                        {"freed", 0.0},
                                        {"closed", 1},
                                        {"failures", nlohmann::json::array()}}));
    EXPECT_FALSE(bridge->uninstallRunning);
    EXPECT_TRUE(machine.home.exists("Applications/Foo.app"));
    EXPECT_THAT(history.entries(), IsEmpty());
}

TEST_F(UninstallIntent, AWindowOpenedAgainDoesNotStartASecondOneBesideTheFirst) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string bar = application("Bar", "com.example.bar");
    removeWhile(foo, {foo}, [&] {
        closeWindow();
        openAnother();
        const std::size_t waiting = machine.dispatcher.waitingGlobal();
        post("uninstall", removalOf(bar));
        EXPECT_EQ(machine.dispatcher.waitingGlobal(), waiting);
        EXPECT_EQ(refusals(), 1u);
        EXPECT_FALSE(bridge->uninstallRunning);
    });
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.home.exists("Applications/Foo.app"));
    EXPECT_TRUE(machine.home.exists("Applications/Bar.app"));
    EXPECT_EQ(count("onUninstallResult"), 0u) << "another window's";

    expectTheNextOneRuns(bar, 1);
    EXPECT_EQ(history.entries().size(), 2u);
}

TEST_F(UninstallIntent, WhatIsDeletedAfterTheWindowHasClosedHasItsEntryInTheHistory) {
    const std::string foo = application("Foo", "com.example.foo");
    removeWhile(foo, {foo}, [&] { closeWindow(); });
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.home.exists("Applications/Foo.app"));
    ASSERT_EQ(history.entries().size(), 1u);
    EXPECT_EQ(history.entries().front().kind, "uninstall");
    EXPECT_EQ(history.entries().front().items.front().name, "Foo.app");
}

TEST_F(UninstallIntent, AWindowOpenedMeanwhileShowsWhatIsGoneAndTheEntry) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string large = machine.home.text("Library/Caches/com.example.foo", "x").path();
    showLargeFile(large);
    removeWhile(foo, {foo, large}, [&] {
        closeWindow();
        openAnother();
    });
    machine.dispatcher.runAll();
    const std::string state = page->calls("setState").back();
    EXPECT_THAT(state, Not(HasSubstr("large.bin")));
    EXPECT_THAT(state, HasSubstr("\"kind\":\"uninstall\""));
}

TEST_F(UninstallIntent, TheResultComesBeforeTheStateThatFollowsFromIt) {
    const std::string foo = application("Foo", "com.example.foo");
    page->scripts.clear();
    post("uninstall", removalOf(foo));
    machine.dispatcher.runAll();
    const auto place = [&](const char* callback) {
        return std::ranges::find_if(page->scripts, [&](const std::string& script) {
            return script.find(std::string("window.velto.") + callback + "(") != std::string::npos;
        });
    };
    ASSERT_NE(place("setState"), page->scripts.end());
    EXPECT_LT(place("onUninstallResult"), place("setState"));
}

TEST_F(UninstallIntent, NothingIsQuitOrDeletedWhenTheWindowHasClosedBeforeItBegins) {
    const std::string foo = application("Foo", "com.example.foo");
    const auto& process = machine.running.add({.bundlePath = foo});
    post("uninstall", removalOf(foo));
    closeWindow();
    openAnother();
    machine.dispatcher.runAll();
    EXPECT_FALSE(process.terminated);
    EXPECT_TRUE(machine.home.exists("Applications/Foo.app"));
    expectTheNextOneRuns(foo);
}

TEST_F(UninstallIntent, AnErrorInTheMiddleEndsItWithAResultAndTheNextOneRuns) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string cache = machine.home.text("Library/Caches/com.example.foo", "x").path();
    const std::string never = machine.home.path("Library/Caches/never");
    removeWhile(foo, {foo, cache, never}, [&] {
        std::filesystem::remove(cache);
        throw std::runtime_error("out of everything");
    });
    machine.dispatcher.runAll();
    EXPECT_EQ(result(),
              nlohmann::json({{"name", "Foo"},
                              {"removed", 1},
                              {"freed", 0.0},
                              {"closed", 0},
                              {"failures", {failureOf(foo, "other"), failureOf(never, "gone")}}}));
    EXPECT_TRUE(machine.log.holds("Velto ▶ desinstalador: interrumpida: out of everything"));
    EXPECT_FALSE(bridge->uninstallRunning);
    ASSERT_EQ(history.entries().size(), 1u);
    EXPECT_EQ(history.entries().front().items.front().name, "com.example.foo");

    expectTheNextOneRuns(foo);
}

TEST_F(UninstallIntent, WhatIsGoneOnlyInPartIsNotOfferedAnyMore) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string cache = machine.home.folder("Library/Caches/com.example.foo");
    showLargeFile(machine.home.text("Library/Caches/com.example.foo/large.bin", "x").path());
    machine.home.text("Library/Caches/com.example.foo/stuck", "x");
    WatchedFileCalls calls;
    calls.refuses = [](const char* call, const char* name) {
        return std::string_view(call) == "remove" && std::string_view(name) == "stuck" ? EACCES : 0;
    };
    // The services keep the mover that they were made with.
    const std::unique_ptr<FileMover> before =
        std::exchange(machine.platform.mover, std::make_unique<PosixFileManager>(calls));
    post("uninstall", {{"path", foo}, {"paths", {cache}}});
    machine.dispatcher.runAll();
    EXPECT_EQ(result()["removed"], 0);
    ASSERT_EQ(result()["failures"].size(), 1u);
    EXPECT_FALSE(machine.home.exists("Library/Caches/com.example.foo"));
    EXPECT_THAT(page->calls("setState").back(), Not(HasSubstr("large.bin")));
    EXPECT_THAT(history.entries(), IsEmpty()) << "some of it is there yet";
}

TEST_F(UninstallIntent, WhatLayBehindAChosenLinkIsNotOfferedAnyMore) {
    const std::string foo = application("Foo", "com.example.foo");
    const std::string place = machine.home.folder("Documents/elsewhere");
    showLargeFile(machine.home.text("Documents/elsewhere/large.bin", "x").path());
    machine.home.link("Library/Caches/com.example.foo", place);
    const std::string link = machine.home.path("Library/Caches/com.example.foo");
    post("appAnalysis", {{"path", foo}});  // which shows where the link leads
    machine.dispatcher.runAll();
    page->scripts.clear();
    post("uninstall", {{"path", foo}, {"paths", {link}}});
    machine.dispatcher.runAll();
    EXPECT_EQ(result()["removed"], 1) << result().dump();
    EXPECT_FALSE(machine.home.exists("Documents/elsewhere"));
    ASSERT_THAT(page->calls("setState"), testing::SizeIs(1));
    EXPECT_THAT(page->calls("setState").back(), Not(HasSubstr("large.bin")));
}

TEST_F(UninstallIntent, AFolderOfApplicationsIsNoApplicationAndNothingInItIsQuit) {
    const std::string inHome = application("Foo", "com.example.foo");
    const HomeLayout& layout = machine.platform.layout;
    const auto& own = machine.running.add({.bundlePath = inHome});
    const auto& shared =
        machine.running.add({.bundlePath = layout.systemApplications + "/Bar.app"});
    const std::string cache = machine.home.path("Library/Caches/com.example.foo");
    for (const std::string& path :
         {layout.systemApplications, layout.systemApplications + "/", layout.userApplications,
          layout.home, machine.home.path("machine"), machine.home.path("Library/../Applications"),
          machine.home.path("Library/Caches"), std::string("/"), std::string(), std::string("x")}) {
        SCOPED_TRACE(path);
        machine.home.text("Library/Caches/com.example.foo", "x");
        post("uninstall", {{"path", path}, {"paths", {cache}}});
        machine.dispatcher.runAll();
        EXPECT_EQ(result()["closed"], 0);
        EXPECT_EQ(result()["removed"], 1) << "what was chosen is removed all the same";
    }
    EXPECT_FALSE(own.terminated);
    EXPECT_FALSE(shared.terminated);
    EXPECT_TRUE(machine.home.exists("Applications/Foo.app"));
}

TEST_F(UninstallIntent, AFolderOfTheSystemsProgramsIsNoApplicationEither) {
    machine.platform.layout = HomeLayout::freedesktop(
        machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
    const auto& editor = machine.running.add({.executable = "/usr/bin/editor"});
    const auto& own = machine.running.add({.executable = machine.home.path(".local/bin/tool")});
    for (const std::string& path : {std::string("/usr/bin"), std::string("/usr"),
                                    machine.home.path(".local/bin"), machine.home.path(".local")}) {
        post("uninstall", {{"path", path}, {"paths", nlohmann::json::array()}});
        machine.dispatcher.runAll();
        EXPECT_EQ(result()["closed"], 0) << path;
    }
    EXPECT_FALSE(editor.terminated);
    EXPECT_FALSE(own.terminated);
}

TEST_F(UninstallIntent, AnApplicationWhoseBundleIsGoneIsQuitAllTheSame) {
    const std::string gone = machine.home.path("Applications/Gone.app");
    const auto& process = machine.running.add({.bundlePath = gone});
    post("uninstall", {{"path", gone}, {"paths", nlohmann::json::array()}});
    machine.dispatcher.runAll();
    EXPECT_TRUE(process.terminated);
    EXPECT_EQ(result()["name"], "Gone");
}

}  // namespace
}  // namespace velto
