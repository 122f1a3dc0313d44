#include "app/OrderlyQuit.h"

#include <gmock/gmock.h>

#include "settings/VeltoSettings.h"
#include "support/FakeWebView.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class OrderlyQuitTest : public testing::Test {
protected:
    /// A change that waits on the global queue.
    void beginCleanup() {
        cleanups.run([this](CleanupServices&) { ++done; });
    }
    bool request(const std::string& name) {
        return quit.request([this, name] { ready.push_back(name); });
    }
    void pass(double seconds) {
        machine.dispatcher.advance(seconds);
        machine.dispatcher.runMain();
    }

    TestPlatform machine;
    VeltoSettings settings{*machine.platform.defaults, *machine.platform.locale};
    AppLanguage language{settings};
    VeltoTrashService trash{*machine.platform.files, *machine.platform.mover,
                            *machine.platform.clock, *machine.platform.log,
                            machine.platform.layout};
    HistoryService history{*machine.platform.files, *machine.platform.mover, *machine.platform.log,
                           machine.platform.layout};
    CloudFolder cloud{*machine.platform.files, *machine.platform.mover, *machine.platform.log,
                      machine.platform.layout};
    CleanupQueue cleanups{machine.dispatcher, {.trash = trash, .history = history, .cloud = cloud}};
    UninstallGate uninstalls;
    OrderlyQuit quit{machine.platform, language, cleanups, uninstalls};
    std::shared_ptr<FakeWebView> page = std::make_shared<FakeWebView>();
    std::vector<std::string> ready;
    int done = 0;
};

TEST_F(OrderlyQuitTest, WithNothingRunningTheProgramEndsAtOnceAndNobodyIsToldAnything) {
    quit.setView(page);
    EXPECT_TRUE(request("quit"));
    EXPECT_THAT(page->scripts, IsEmpty());
    EXPECT_THAT(machine.notifications.posted, IsEmpty());
    EXPECT_EQ(machine.dispatcher.waitingTimers(), 0u);
    beginCleanup();
    machine.dispatcher.runGlobal();
    EXPECT_TRUE(request("quit")) << "what has ended is over";
    EXPECT_THAT(ready, IsEmpty());
}

TEST_F(OrderlyQuitTest, ACleanupComesToItsEndAndThePageSaysSoMeanwhile) {
    quit.setView(page);
    beginCleanup();
    beginCleanup();
    EXPECT_FALSE(request("quit"));
    EXPECT_THAT(page->calls("onQuitting"),
                ElementsAre(testing::HasSubstr("onQuitting({\"running\":\"cleanup\"})")));
    EXPECT_THAT(machine.notifications.posted, IsEmpty());
    pass(60);
    EXPECT_THAT(ready, IsEmpty()) << "it still runs";
    machine.dispatcher.runGlobal();
    EXPECT_THAT(ready, IsEmpty());
    pass(1);
    EXPECT_THAT(ready, ElementsAre("quit"));
    EXPECT_EQ(done, 2);
    pass(60);
    EXPECT_THAT(ready, SizeIs(1)) << "once";
}

TEST_F(OrderlyQuitTest, AnUninstallIsWaitedForAndNamed) {
    quit.setView(page);
    auto inside = uninstalls.enter();
    EXPECT_FALSE(request("quit"));
    EXPECT_THAT(page->calls("onQuitting"),
                ElementsAre(testing::HasSubstr("onQuitting({\"running\":\"uninstall\"})")));
    pass(60);
    EXPECT_THAT(ready, IsEmpty());
    beginCleanup();  // its entry in the history
    inside->end();
    pass(1);
    EXPECT_THAT(ready, IsEmpty()) << "the entry is missing";
    machine.dispatcher.runGlobal();
    pass(1);
    EXPECT_THAT(ready, ElementsAre("quit"));
}

TEST_F(OrderlyQuitTest, WithoutAWindowANotificationSaysItInTheUsersLanguage) {
    beginCleanup();
    EXPECT_FALSE(request("quit"));
    ASSERT_THAT(machine.notifications.posted, SizeIs(1));
    EXPECT_EQ(machine.notifications.posted[0].title, "Velto will quit when it has finished");
    EXPECT_EQ(machine.notifications.posted[0].body, "It is finishing what it has begun.");
    machine.dispatcher.runGlobal();
    pass(1);

    language.setCode("es");
    const auto inside = uninstalls.enter();
    quit.setView(page);
    page.reset();  // the window is gone
    EXPECT_FALSE(request("quit"));
    ASSERT_THAT(machine.notifications.posted, SizeIs(2));
    EXPECT_EQ(machine.notifications.posted[1].title, "Velto se cerrará al terminar");
    EXPECT_EQ(machine.notifications.posted[1].body, "Está desinstalando una aplicación.");
    EXPECT_NE(machine.notifications.posted[0].identifier,
              machine.notifications.posted[1].identifier);
}

TEST_F(OrderlyQuitTest, AskedTwiceBothAreAnsweredAndTheUserIsToldOnce) {
    quit.setView(page);
    beginCleanup();
    EXPECT_FALSE(request("window"));
    EXPECT_FALSE(request("quit"));
    EXPECT_THAT(page->calls("onQuitting"), SizeIs(1));
    machine.dispatcher.runGlobal();
    pass(1);
    EXPECT_THAT(ready, ElementsAre("window", "quit"));
}

TEST_F(OrderlyQuitTest, APageThatHasJustLoadedIsToldToo) {
    quit.setView(page);
    quit.pageLoaded();
    EXPECT_THAT(page->scripts, IsEmpty());
    beginCleanup();
    request("quit");
    quit.pageLoaded();
    EXPECT_THAT(page->calls("onQuitting"), SizeIs(2));
}

TEST_F(OrderlyQuitTest, AnObjectThatIsGoneAnswersNobody) {
    {
        OrderlyQuit short_{machine.platform, language, cleanups, uninstalls};
        beginCleanup();
        short_.request([this] { ready.emplace_back("gone"); });
    }
    machine.dispatcher.runGlobal();
    pass(60);
    EXPECT_THAT(ready, IsEmpty());
}

}  // namespace
}  // namespace velto
