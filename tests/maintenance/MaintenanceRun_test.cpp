#include "maintenance/MaintenanceRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "maintenance/MaintenanceRecord.h"
#include "platform/values/text.h"
#include "support/TestPlatform.h"
#include "support/system_platform.h"

namespace velto {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// A reader on a machine that can open nothing more.
class NoFolders final : public DirectoryReader {
public:
    std::shared_ptr<OpenFolder> open(const std::string&) override {
        throw std::runtime_error("no memory");
    }
    std::shared_ptr<OpenFolder> openChild(OpenFolder&, std::string_view) override {
        throw std::runtime_error("no memory");
    }
    bool read(OpenFolder&, const ReadOptions&, EntryList&) override { return false; }
    bool status(OpenFolder&, std::string_view, FolderStatus&) override { return false; }
};

struct MaintenanceRunTest : testing::Test {
    static constexpr std::int64_t day = 86400;

    MaintenanceRunTest() { machine.home.folder("Library/Application Support"); }

    std::int64_t now() const { return static_cast<std::int64_t>(machine.clock.time); }

    void perform() { perform(trash); }
    void perform(const MaintenanceRules::Limits& limits) {
        const AppLanguage language(settings);
        MaintenanceScheduler scheduler(machine.platform);
        MaintenanceRun(machine.platform, settings, language, trash, scheduler).perform(limits);
    }
    void perform(VeltoTrashService& trashService) {
        const AppLanguage language(settings);
        MaintenanceScheduler scheduler(machine.platform);
        MaintenanceRun(machine.platform, settings, language, trashService, scheduler).perform({});
    }

    /// A cache folder that the rules propose.
    void fillCache(const std::string& name = "com.example.App") {
        machine.home.sparse("Library/Caches/" + name + "/data", 60'000'000);
    }

    void makeDuplicates() {
        settings.setRule("duplicates", true);
        machine.home.text("Downloads/x.bin", std::string(1'200'000, 'x'));
        machine.home.text("Documents/report.bin", std::string(1'200'000, 'x'));
    }

    std::string message() const {
        const auto& posted = machine.notifications.posted;
        return posted.empty() ? "" : posted.back().title + ": " + posted.back().body;
    }

    TestPlatform machine;
    VeltoSettings settings{machine.defaults, machine.locale};
    VeltoTrashService trash{*machine.platform.files, *machine.platform.mover, machine.clock,
                            machine.log, machine.platform.layout};
};

TEST_F(MaintenanceRunTest, CachesWaitInTheTrashAndCanComeBack) {
    fillCache();
    perform();
    ASSERT_THAT(trash.items(), SizeIs(1));
    EXPECT_FALSE(machine.home.exists("Library/Caches/com.example.App"));
    EXPECT_EQ(trash.operations().front().kind, maintenanceKind);
    EXPECT_EQ(message(), "Velto maintenance complete: 1 items wait in Velto Trash.");
    trash.undoOperation(trash.operations().front().id);
    EXPECT_TRUE(machine.home.exists("Library/Caches/com.example.App/data"));
}

TEST_F(MaintenanceRunTest, WhatHasWaitedLongEnoughGoesForGoodToTheSecond) {
    settings.setRetention(7);
    machine.home.text("Documents/a.txt", "a");
    machine.home.text("Documents/b.txt", "b");
    trash.moveToTrash({machine.home.path("Documents/a.txt")}, "wind");
    machine.clock.time += 1;
    trash.moveToTrash({machine.home.path("Documents/b.txt")}, "wind");
    machine.clock.time += 7.0 * day;
    perform();
    ASSERT_THAT(trash.items(), SizeIs(1));
    EXPECT_EQ(trash.items().front().name, "b.txt");
}

TEST_F(MaintenanceRunTest, ARetentionThatIsNoneMeansThirtyDays) {
    for (const std::int64_t stored : {std::int64_t{0}, std::int64_t{-5}}) {
        settings.setRetention(stored);
        machine.home.text("Documents/a.txt", "a");
        trash.moveToTrash({machine.home.path("Documents/a.txt")}, "wind");
        machine.clock.time += 30.0 * day;
        perform();
        EXPECT_THAT(trash.items(), SizeIs(1));
        machine.clock.time += 1;
        perform();
        EXPECT_THAT(trash.items(), IsEmpty());
    }
}

TEST_F(MaintenanceRunTest, DuplicatesAreHandledOnceInThirtyDays) {
    makeDuplicates();
    const double last = machine.clock.time;
    settings.setDuplicatesRound(last);
    machine.clock.time += 29.0 * day;
    perform();
    EXPECT_TRUE(machine.home.exists("Documents/report.bin"));
    EXPECT_EQ(settings.duplicatesRound(), last) << "no round, no new date";
    machine.clock.time += 1.0 * day;
    perform();
    EXPECT_FALSE(machine.home.exists("Documents/report.bin"));
    EXPECT_TRUE(machine.home.exists("Downloads/x.bin"));
    EXPECT_EQ(settings.duplicatesRound(), machine.clock.time);
}

TEST_F(MaintenanceRunTest, ARoundOfDuplicatesThatCouldNotBeMadeIsNoRound) {
    makeDuplicates();
    perform({.hasAccess = false});
    EXPECT_EQ(settings.duplicatesRound(), 0) << "without access nobody has looked";
    auto directories = std::exchange(machine.platform.directories, std::make_unique<NoFolders>());
    perform();
    EXPECT_EQ(settings.duplicatesRound(), 0) << "the rule has failed";
    machine.platform.directories = std::move(directories);
    perform();
    EXPECT_EQ(settings.duplicatesRound(), machine.clock.time);
    EXPECT_FALSE(machine.home.exists("Documents/report.bin"));
}

TEST_F(MaintenanceRunTest, TheFirstRoundOfDuplicatesComesAtOnceAndOnlyWhenSwitchedOn) {
    makeDuplicates();
    settings.setRule("duplicates", false);
    perform();
    EXPECT_EQ(settings.duplicatesRound(), 0);
    settings.setRule("duplicates", true);
    perform();
    EXPECT_EQ(settings.duplicatesRound(), machine.clock.time);
    EXPECT_FALSE(machine.home.exists("Documents/report.bin"));
}

TEST_F(MaintenanceRunTest, NothingDoneIsNothingTold) {
    perform();
    EXPECT_THAT(machine.notifications.posted, IsEmpty());
    const auto record = lastMaintenance(*machine.platform.files, machine.platform.layout);
    ASSERT_TRUE(record);
    EXPECT_EQ(*record, (MaintenanceRecord{.ts = machine.clock.time}));
}

TEST_F(MaintenanceRunTest, WhatItDidIsRemembered) {
    EXPECT_FALSE(lastMaintenance(*machine.platform.files, machine.platform.layout));
    fillCache();
    perform();
    const auto record = lastMaintenance(*machine.platform.files, machine.platform.layout);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->moved, 1);
    EXPECT_DOUBLE_EQ(record->movedGB, 0.1) << "as the trash records it";
    machine.home.text("Library/Application Support/Velto/maintenance.json", "{\"ts\":");
    EXPECT_FALSE(lastMaintenance(*machine.platform.files, machine.platform.layout));
}

TEST_F(MaintenanceRunTest, TwoPassesNeverRunAtTheSameTime) {
    fillCache();
    machine.platform.files->createFolders(machine.platform.layout.dataFolder);
    const auto other = machine.platform.mover->lock(
        machine.platform.layout.dataFolder + "/maintenance.lock", true);
    perform();
    EXPECT_THAT(trash.items(), IsEmpty());
    EXPECT_TRUE(machine.log.holds("Velto ▶ mantenimiento: ya hay una pasada en marcha"));
}

TEST_F(MaintenanceRunTest, ADataFolderThatCannotBeMadeEndsThePassInTheLog) {
    machine.home.text("Library/Application Support/Velto", "a file");
    fillCache();
    EXPECT_NO_THROW(perform());
    EXPECT_TRUE(machine.home.exists("Library/Caches/com.example.App/data"));
    EXPECT_THAT(machine.log.lines().back(), HasSubstr("Velto ▶ mantenimiento interrumpido: "));
}

TEST_F(MaintenanceRunTest, OnAFreedesktopHomeTheDesktopsTrashLosesTheNoteWithTheItem) {
    machine.platform.layout = HomeLayout::freedesktop(
        machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
    machine.home.sparse(".local/share/Trash/files/old.iso", 60'000'000);
    machine.home.text(".local/share/Trash/info/old.iso.trashinfo",
                      "[Trash Info]\nPath=/x\nDeletionDate=2001-01-01T00:00:00\n");
    machine.home.sparse(".cache/mozilla/data", 60'000'000);
    machine.home.sparse(".cache/some-program/data", 60'000'000);
    machine.home.text("Downloads/note.txt", "x");
    VeltoTrashService trashHere(*machine.platform.files, *machine.platform.mover, machine.clock,
                                machine.log, machine.platform.layout);
    perform(trashHere);
    EXPECT_THAT(trashHere.items(), SizeIs(2));
    EXPECT_FALSE(machine.home.exists(".local/share/Trash/files/old.iso"));
    EXPECT_FALSE(machine.home.exists(".local/share/Trash/info/old.iso.trashinfo"));
    EXPECT_FALSE(machine.home.exists(".cache/mozilla"));
    EXPECT_TRUE(machine.home.exists(".cache/some-program/data")) << "nobody knows what it is";
}

TEST_F(MaintenanceRunTest, WhateverTheEnvironmentCallsCachesTheUsersOwnFilesStay) {
    for (const char* file : {"Documents/thesis", "Pictures/photos", ".ssh/keys", "Projects/code",
                             ".local/share/app/data", ".config/app/data", "Templates/forms"}) {
        machine.home.sparse(file, 60'000'000).lastUsed(500_days);
    }
    for (const char* rule : {"systemTrash", "oldDownloads", "caches", "duplicates"})
        settings.setRule(rule, true);
    const std::string& home = machine.home.path();
    for (const std::string& value :
         {home, home + "/", home + "/.", home + "/Documents/..", parentFolder(home),
          std::string("/"), home + "/Documents", home + "/.ssh", home + "/.local/share",
          home + "/.config", home + "/.local", home + "/Templates"}) {
        SCOPED_TRACE(value);
        machine.platform.layout = HomeLayout::freedesktop(
            home,
            [&](const std::string& name) {
                return name == "XDG_CACHE_HOME" ? std::optional(value) : std::nullopt;
            },
            "XDG_DOWNLOAD_DIR=\"$HOME/Documents\"\n");
        VeltoTrashService trashHere(*machine.platform.files, *machine.platform.mover, machine.clock,
                                    machine.log, machine.platform.layout);
        perform(trashHere);
        EXPECT_THAT(trashHere.items(), IsEmpty());
    }
}

TEST_F(MaintenanceRunTest, TheMessageSaysWhatHappenedInBothLanguages) {
    AppLanguage language(settings);
    EXPECT_EQ(maintenanceMessage(language, 1.25, 3),
              "1.2 GB freed, and 3 items wait in Velto Trash.");
    EXPECT_EQ(maintenanceMessage(language, 0.04, 0), "0.0 GB freed from Velto Trash.")
        << "little is still something";
    EXPECT_EQ(maintenanceMessage(language, 0, 12), "12 items wait in Velto Trash.");
    EXPECT_EQ(maintenanceMessage(language, 0, 0), "");
    language.setCode("es");
    EXPECT_EQ(maintenanceMessage(language, 1.26, 3),
              "Se han liberado 1.3 GB y 3 elementos esperan en la Papelera de Velto.");
    EXPECT_EQ(maintenanceMessage(language, 2, 0),
              "Se han liberado 2.0 GB de la Papelera de Velto.");
    EXPECT_EQ(maintenanceMessage(language, 0, 1), "1 elementos esperan en la Papelera de Velto.");
    EXPECT_EQ(maintenanceMessage(language, 0, 0), "");
}

TEST_F(MaintenanceRunTest, ASpanishUserIsToldInSpanish) {
    settings.setLanguage("es");
    fillCache();
    perform();
    EXPECT_EQ(message(),
              "Mantenimiento de Velto completado: 1 elementos esperan en la Papelera de Velto.");
}

TEST_F(MaintenanceRunTest, OneRunIsToldOnceUnderAnIdentifierOfItsOwn) {
    MaintenanceScheduler scheduler(machine.platform);
    scheduler.notify("title", "body");
    scheduler.notify("title", "again");
    MaintenanceScheduler(machine.platform).notify("title", "body");
    ASSERT_THAT(machine.notifications.posted, SizeIs(2));
    const auto& first = machine.notifications.posted[0].identifier;
    EXPECT_THAT(first, testing::MatchesRegex("velto\\.maintenance\\.[0-9A-F-]{36}"));
    EXPECT_NE(first, machine.notifications.posted[1].identifier);
}

}  // namespace
}  // namespace velto
