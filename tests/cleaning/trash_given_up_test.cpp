// The user does not want to wait any longer for a disk that a cut-off move led to or came from.

#include <cstdlib>

#include <nlohmann/json.hpp>

#include "AbsentDiskFixture.h"
#include "TrashFixture.h"
#include "cleaning/restored_name.h"
#include "platform/values/text.h"

namespace velto {
namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;
using testing::SizeIs;

class GivenUp : public AbsentDisk {
protected:
    std::string place() const { return world.path(thing); }
    std::string unfinishedPlace() const { return place() + " (copia sin terminar)"; }

    std::string stored(const TrashItem& item) const {
        return world.trashPath() + "/" + item.opID + "/" + item.id + "-" + item.name;
    }

    /// The items that came of the thing.
    std::vector<TrashItem> listed(Process& seen) const {
        std::vector<TrashItem> found;
        for (const TrashItem& item : seen.service->items()) {
            if (item.originalPath.starts_with(place())) found.push_back(item);
        }
        return found;
    }

    void expectToldRightly(const WaitingItem& waiting) const {
        using Kind = Absence::Kind;
        using Reason = WaitingItem::Reason;
        EXPECT_EQ(waiting.item.originalPath, place());
        EXPECT_EQ(waiting.folder, parentFolder(place()));
        EXPECT_EQ(waiting.way,
                  GetParam().cut.isRestore ? WaitingItem::Way::out : WaitingItem::Way::in);
        const Absence& absence = GetParam().absence;
        const bool isRefused =
            absence.kind == Kind::link || absence.reason == EACCES || absence.reason == EIO;
        EXPECT_EQ(waiting.reason, isRefused ? Reason::refused : Reason::absent);
    }

    /// Gives up what waits without the disk. False when nothing did.
    bool giveUp() {
        const auto without = process();
        refuse(*without);
        const std::vector<WaitingItem> waiting = without->service->waitingItems();
        if (waiting.empty()) return false;
        EXPECT_THAT(waiting, SizeIs(1));
        expectToldRightly(waiting.front());
        world.clock.time += 400.0 * 86'400;
        EXPECT_TRUE(without->service->giveUpWaiting(waiting.front().item.id));
        EXPECT_THAT(without->service->waitingItems(), IsEmpty());
        EXPECT_FALSE(without->service->giveUpWaiting(waiting.front().item.id));
        isWhole = waiting.front().isWhole;
        without->service->purgeExpired(30);
        expectKept(*without);
        return true;
    }

    void expectKept(Process& seen) {
        const std::vector<TrashItem> items = listed(seen);
        ASSERT_THAT(items, SizeIs(1));
        const std::string text = treeText(stored(items.front()));
        EXPECT_FALSE(text.empty()) << "listed, and not there";
        if (isWhole) {
            EXPECT_EQ(items.front().originalPath, place());
            EXPECT_EQ(text, whole);
        } else {
            EXPECT_EQ(items.front().originalPath, unfinishedPlace());
        }
        ASSERT_FALSE(seen.service->operations().empty());
        EXPECT_EQ(seen.service->operations().front().id, items.front().opID);
    }

    /// As often as the thing is whole, wherever.
    int wholeCopies(Process& seen) const {
        int count = 0;
        for (const TrashItem& item : listed(seen))
            count += treeText(stored(item)) == whole ? 1 : 0;
        return count + (treeText(place()) == whole ? 1 : 0);
    }

    void expectNothingHidden() {
        EXPECT_THAT(scratchNames(disk), IsEmpty());
        for (const std::string& name : scratchNames(world.trashPath())) {
            // A half-written temporary file of the manifest is nobody's.
            EXPECT_EQ(name.find('/'), std::string::npos) << name;
        }
    }

    bool isWhole = false;
};

TEST_P(GivenUp, NothingIsLostNorHidden) {
    cutOff();
    takeOut();
    ASSERT_TRUE(giveUp());
    {
        const auto next = process();
        refuse(*next);
        EXPECT_THAT(next->service->waitingItems(), IsEmpty());
        expectKept(*next);
        world.home.text("Documents/more", "more");
        next->service->undoOperation(
            next->service->moveToTrash({world.path("Documents/more")}, "wind").id);
        EXPECT_EQ(world.home.read("Documents/more"), "more");
    }
    putBack();
    const auto with = process();
    expectKept(*with);
    if (HasFailure()) return;
    EXPECT_GE(wholeCopies(*with), 1) << "it is lost";
    if (!GetParam().cut.isRestore) EXPECT_EQ(treeText(place()), whole);
    EXPECT_EQ(world.home.read("disk/things/other"), "of the disk");
    expectNothingHidden();
    const bool wasThere = !treeText(place()).empty();
    with->service->restore(listed(*with).front().id);
    const std::string back = treeText(isWhole ? place() : unfinishedPlace());
    EXPECT_TRUE(wasThere ? !back.empty() : back == whole);
    EXPECT_FALSE(fs::exists(world.trashPath() + ".waiting"));
}

using GivenUpOnItsWayIn = GivenUp;

TEST_P(GivenUpOnItsWayIn, DeletingWhatIsLeftOfItTakesNothingFromTheDisk) {
    cutOff();
    takeOut();
    ASSERT_TRUE(giveUp());
    {
        const auto without = process();
        refuse(*without);
        ASSERT_THAT(listed(*without), SizeIs(1));
        without->service->deletePermanently(listed(*without).front().id);
    }
    putBack();
    process()->service->items();
    EXPECT_EQ(treeText(place()), whole);
    expectNothingHidden();
}

const auto nameOfCase = [](const auto& one) {
    return std::string(one.param.cut.name) + one.param.absence.name;
};

/// Those after which an item waits.
std::vector<Case> casesThatWait() {
    std::vector<Case> cases = casesOfAbsence();
    std::erase_if(cases, [](const Case& one) {
        const std::string cut = one.cut.name;
        return cut == "RemovingOutside" || cut == "CopyingOut";
    });
    return cases;
}
INSTANTIATE_TEST_SUITE_P(Of, GivenUp, testing::ValuesIn(casesThatWait()), nameOfCase);

std::vector<Case> casesOnTheWayIn() {
    std::vector<Case> cases = casesThatWait();
    std::erase_if(cases, [](const Case& one) {
        return one.cut.isRestore || one.absence.kind == Absence::Kind::refused;
    });
    return cases;
}
INSTANTIATE_TEST_SUITE_P(Of, GivenUpOnItsWayIn, testing::ValuesIn(casesOnTheWayIn()), nameOfCase);

/// A folder as it is now, to be brought back.
class Kept {
public:
    explicit Kept(std::string folder) : folder_(std::move(folder)) {
        run("cp -a '" + folder_ + "' '" + copy_.path() + "/kept'");
    }
    void bringBack() const {
        run("rm -rf '" + folder_ + "' && cp -a '" + copy_.path() + "/kept' '" + folder_ + "'");
    }

private:
    static void run(const std::string& command) { ASSERT_EQ(std::system(command.c_str()), 0); }

    std::string folder_;
    TempHome copy_{TrashWorld::fastVolume()};
};

/// The thing is a single file.
class GivenUpFile : public GivenUp {
protected:
    void SetUp() override {
        GivenUp::SetUp();
        if (IsSkipped()) return;
        fs::remove_all(place());
        world.home.text(thing, "one file");
        whole = treeText(place());
    }

    /// In a process that dies after that call. True when it came to the end.
    bool giveUpInChild(const std::string& id, int at) {
        const pid_t child = fork();
        if (child == 0) {
            const auto dying = process();
            dying->service->waitingItems();
            dying->calls.count = 0;
            dying->calls.at = at;
            dying->calls.action = WatchedFileCalls::Action::dieAfter;
            dying->service->giveUpWaiting(id);
            _exit(0);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status));
        return WEXITSTATUS(status) != WatchedFileCalls::died;
    }
};

TEST_P(GivenUpFile, OneThatWasWholeKeepsItsName) {
    cutOff();
    takeOut();
    ASSERT_TRUE(giveUp());
    EXPECT_EQ(isWhole, GetParam().cut.isRestore);
    putBack();
    const auto with = process();
    EXPECT_GE(wholeCopies(*with), 1);
    expectNothingHidden();
    if (!isWhole) return;
    with->service->restoreTo(listed(*with).front().id, world.path("Documents"));
    EXPECT_EQ(world.home.read("Documents/thing"), "one file");
}

TEST_P(GivenUpFile, OneThatCannotBeSettledThoughTheDiskIsThereSaysSo) {
    cutOff();
    {
        const auto refused = process();
        refused->calls.refuses = [](const char* call, const char* name) {
            const bool isName = std::string_view(name).ends_with("thing");
            return isName && std::string_view(call) != "stat" ? EIO : 0;
        };
        const auto waiting = refused->service->waitingItems();
        ASSERT_THAT(waiting, SizeIs(1));
        EXPECT_EQ(waiting.front().reason, WaitingItem::Reason::unsettled);
        // Under the name of an unfinished copy it may be kept, under its own this disk refuses it.
        if (waiting.front().isWhole) {
            EXPECT_THROW(refused->service->giveUpWaiting(waiting.front().item.id), FileError);
        } else {
            EXPECT_TRUE(refused->service->giveUpWaiting(waiting.front().item.id));
        }
    }
    EXPECT_GE(wholeCopies(*process()), 1);
    expectNothingHidden();
}

/// The process dies after each call that changes something while the waiting is given up.
TEST_P(GivenUpFile, ACutOffGivingUpHidesNothing) {
    cutOff();
    takeOut();
    const std::string id = process()->service->waitingItems().at(0).item.id;
    const Kept home(world.home.path());
    const Kept trash(world.trashVolume->path());
    int calls = 0;
    const int step = isExhaustive() ? 1 : 3;
    for (bool isComplete = false; !isComplete; calls += step) {
        SCOPED_TRACE(testing::Message() << "call " << calls);
        home.bringBack();
        trash.bringBack();
        inserted = "no disk";
        isComplete = giveUpInChild(id, calls);
        {
            const auto next = process();
            const auto waiting = next->service->waitingItems();
            // What was on its way out is listed all the time.
            const bool isListed = !listed(*next).empty();
            EXPECT_TRUE(waiting.size() == 1 || (isListed && waiting.empty()));
            if (waiting.empty()) expectNothingHidden();
        }
        putBack();
        const auto with = process();
        EXPECT_GE(wholeCopies(*with), 1) << "it is lost";
        if (!GetParam().cut.isRestore) EXPECT_EQ(treeText(place()), whole);
        expectNothingHidden();
        if (HasFailure()) return;
    }
    EXPECT_GT(calls, 8) << "the calls are not counted";
}

INSTANTIATE_TEST_SUITE_P(
    Of, GivenUpFile,
    testing::ValuesIn(std::vector<Case>{
        {{"PutAsideOutside", false, isPutAside}, {"Missing", Absence::Kind::missing}},
        {{"PutAsideInTrash", true, isPutAside}, {"Missing", Absence::Kind::missing}}}),
    nameOfCase);

TEST(UnfinishedName, TellsItFromTheWholeAndFitsWhereTheWholeFits) {
    EXPECT_EQ(unfinishedName("Informe.pdf"), "Informe (copia sin terminar).pdf");
    EXPECT_EQ(unfinishedName("Fotos"), "Fotos (copia sin terminar)");
    for (const std::size_t length : {120u, 143u, 144u, 255u}) {
        for (const std::string& name :
             {std::string(length, 'n'), std::string(length - 4, 'n') + ".pdf",
              "." + std::string(length - 1, 'n')}) {
            const std::string unfinished = unfinishedName(name);
            EXPECT_LE(unfinished.size(), length <= 143 ? 143u : 255u);
            EXPECT_NE(unfinished.find(" (copia sin terminar)"), std::string::npos) << name;
        }
    }
}

struct ForgedKeeping : TrashTest {
    /// As it is written when an item that waits is given up.
    void forge(const TrashItem& kept) {
        Operation operation{.id = kept.opID, .ts = 1, .gb = 0, .items = {kept}, .kind = "wind"};
        const nlohmann::ordered_json entry{{"kind", "keep"},
                                           {"operation", toJson(operation)},
                                           {"itemIDs", nlohmann::json::array()}};
        write(layout.trashFolder + ".journal", entry.dump());
    }
};

TEST_F(ForgedKeeping, GivesNoItemAnotherPlace) {
    const TrashItem item = trashed("Documents/a.txt");
    const TrashItem other = trashed("Documents/b.txt");
    TrashItem forged = item;
    forged.originalPath = home.path("Desktop/a.txt");
    forge(forged);
    EXPECT_EQ(readByOthers().items, (std::vector{item, other}));
    forged = item;
    forged.opID = other.opID;
    forge(forged);
    EXPECT_EQ(readByOthers().items, (std::vector{item, other}));
    forged = item;
    forged.taken += 1;
    forge(forged);
    EXPECT_EQ(readByOthers().items, (std::vector{other, forged})) << "that one was ours";
}

}  // namespace
}  // namespace velto
