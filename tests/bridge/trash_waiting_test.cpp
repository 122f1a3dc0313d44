// What waits for a disk: the page is told of it, and may give it up.

#include <chrono>

#include "bridge/TrashFixture.h"
#include "platform/posix/PosixFileManager.h"

namespace velto {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

struct TrashWaiting : TrashFixture {
    static constexpr const char* id = "itA1B2C3D4";

    std::string data(const std::string& name) const { return dataFolder + "/" + name; }

    /// As a move from a disk that was taken out meanwhile leaves it.
    void leaveCutOffMove() {
        machine.home.text(data("Trash/opW/.velto-itA1B2C3D4"), "half of it");
        const json item{{"id", id},
                        {"opID", "opW"},
                        {"originalPath", machine.home.path("disk/film.raw")},
                        {"name", "film.raw"},
                        {"gb", 1.5},
                        {"taken", 1'600'000'000.0}};
        const json operation{
            {"id", "opW"}, {"ts", 1.0}, {"gb", 1.5}, {"items", {item}}, {"kind", "wind"}};
        const json entry{{"kind", "move"},
                         {"operation", operation},
                         {"itemIDs", json::array()},
                         {"volumes", {{id, "the disk"}}}};
        machine.home.text(data("Trash.waiting"), json{{"entries", {entry}}}.dump());
    }

    /// The names of the page's callbacks, in the order in which they were called.
    std::vector<std::string> told() const {
        std::vector<std::string> names;
        for (const std::string& script : page->scripts) {
            for (const char* name : {"onTrashWaiting", "onTrashState", "onTrashChanged", "toast"}) {
                if (script.find(std::string("velto.") + name + "(") != std::string::npos) {
                    names.push_back(name);
                }
            }
        }
        return names;
    }
};

TEST_F(TrashWaiting, IsToldAtTheStartAndNotAsWhatCanBePutBack) {
    leaveCutOffMove();
    page = std::make_shared<FakeWebView>();
    open();
    load();
    EXPECT_THAT(told(), ElementsAre("onTrashWaiting", "onTrashState"));
    EXPECT_EQ(lastArgument(*page, "onTrashWaiting"),
              json::array({{{"id", id},
                            {"name", "film.raw"},
                            {"gb", 1.5},
                            {"path", machine.home.path("disk/film.raw")},
                            {"folder", machine.home.path("disk")},
                            {"way", "in"},
                            {"reason", "absent"},
                            {"whole", false}}}));
    EXPECT_THAT(lastArgument(*page, "onTrashState"), IsEmpty());
}

TEST_F(TrashWaiting, IsLookedForAgainWhenTheWindowComesToTheFront) {
    leaveCutOffMove();
    bridge->refreshTrash();
    machine.dispatcher.runAll();
    EXPECT_THAT(lastArgument(*page, "onTrashWaiting"), SizeIs(1));
    page->scripts.clear();
    bridge->refreshTrash();
    machine.dispatcher.runAll();
    EXPECT_THAT(told(), IsEmpty()) << "nothing has changed";
    // The same disk is back: what was there before the move is there.
    const auto place =
        machine.platform.mover->openFolder(machine.home.folder("disk"), FolderPath::withoutLinks);
    std::string waiting = machine.home.read(data("Trash.waiting"));
    const std::string volume = machine.platform.mover->volumeOf(*place);
    waiting.replace(waiting.find("the disk"), 8, volume);
    machine.home.text(data("Trash.waiting"), waiting);
    machine.home.text("disk/film.raw", "half of it, and the rest");
    bridge->refreshTrash();
    machine.dispatcher.runAll();
    EXPECT_THAT(lastArgument(*page, "onTrashWaiting"), IsEmpty());
    EXPECT_THAT(lastArgument(*page, "onTrashState"), IsEmpty());
    EXPECT_EQ(machine.home.read("disk/film.raw"), "half of it, and the rest");
}

TEST_F(TrashWaiting, GivenUpItIsAnItemThatSaysWhatItIs) {
    leaveCutOffMove();
    openWindow();
    ask("giveUpWaiting", {{"id", id}});
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("No longer waiting", "What there is of the item is in Velto Trash."));
    EXPECT_THAT(lastArgument(*page, "onTrashWaiting"), IsEmpty());
    const json items = lastArgument(*page, "onTrashState");
    ASSERT_THAT(items, SizeIs(1));
    EXPECT_EQ(items[0]["name"], "film (copia sin terminar).raw");
    EXPECT_EQ(items[0]["path"], machine.home.path("disk/film (copia sin terminar).raw"));
    EXPECT_EQ(machine.home.read(data("Trash/opW/itA1B2C3D4-film (copia sin terminar).raw")),
              "half of it");
    page->scripts.clear();
    ask("giveUpWaiting", {{"id", id}});
    EXPECT_THAT(told(), IsEmpty()) << "it does not wait any more";
}

TEST_F(TrashWaiting, AMalformedPayloadOrAnUnknownItemGivesNothingUp) {
    leaveCutOffMove();
    openWindow();
    ask("giveUpWaiting");
    ask("giveUpWaiting", id);
    ask("giveUpWaiting", {{"id", 7}});
    ask("giveUpWaiting", {{"id", "itFFFFFFFF"}});
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_THAT(trash.waitingItems(), SizeIs(1));
}

TEST_F(TrashWaiting, AFailureIsToldAndGivesNothingUp) {
    leaveCutOffMove();
    PosixFileManager files(systemFileCalls(), {std::chrono::milliseconds(1)});
    VeltoTrashService impatient(files, files, machine.clock, machine.log, machine.platform.layout);
    cleanups = std::make_unique<CleanupQueue>(
        *machine.platform.dispatcher,
        CleanupServices{.trash = impatient, .history = history, .cloud = cloud});
    page = std::make_shared<FakeWebView>();
    openAnother();
    load();
    machine.dispatcher.runAll();
    const auto held =
        machine.platform.mover->lock(machine.platform.layout.trashFolder + ".lock", true);
    ask("giveUpWaiting", {{"id", id}});
    EXPECT_EQ(page->calls("toast").back(),
              toastScript("Couldn't stop waiting",
                          "Another Velto is using the trash. Try again in a moment."));
    EXPECT_THAT(lastArgument(*page, "onTrashWaiting"), SizeIs(1));
}

}  // namespace
}  // namespace velto
