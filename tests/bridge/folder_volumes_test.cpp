#include <cerrno>
#include <map>
#include <optional>

#include "bridge/FolderFixture.h"
#include "support/FakeDirectoryReader.h"

namespace velto {
namespace {

/// A volume for each path that a test names; the others do not answer.
class FakeVolumes final : public VolumeInfo {
public:
    std::optional<std::int64_t> totalCapacity(const std::string& path) const override {
        return of(totals, path);
    }
    std::optional<std::int64_t> availableCapacity(const std::string& path) const override {
        return of(available, path);
    }
    std::optional<std::int64_t> reservedCapacity(const std::string&) const override { return {}; }
    std::optional<std::int64_t> purgeableCapacity(const std::string&) const override { return {}; }
    std::vector<MountedVolume> volumesBelow(const std::string&) const override { return {}; }

    std::map<std::string, std::int64_t> totals;
    std::map<std::string, std::int64_t> available;

private:
    static std::optional<std::int64_t> of(const std::map<std::string, std::int64_t>& values,
                                          const std::string& path) {
        const auto found = values.find(path);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
};

/// The home's folder "disk" is another file system.
struct FolderVolumes : FolderFixture {
    FolderVolumes() {
        install<FakeVolumes>(machine.platform.volumes);
        reader.folder(home.path("disk")).device = 9;
        reader.file(home.path("a"), 100);
        open();
        post("scan");
        machine.dispatcher.runAll();
    }
    FakeVolumes& volumes() { return dynamic_cast<FakeVolumes&>(*machine.platform.volumes); }

    FakeDirectoryReader& reader = install<FakeDirectoryReader>(machine.platform.directories);
};

TEST_F(FolderVolumes, AnotherVolumeSaysHowFullItIs) {
    volumes().totals[home.path("disk")] = 1'000;
    volumes().available[home.path("disk")] = 400;
    const nlohmann::json disk = named(ask("")["folders"], "disk");
    EXPECT_EQ(disk["state"], "otherVolume");
    EXPECT_EQ(disk["bytes"], 600);
    EXPECT_EQ(disk["total"], 1'000);
}

TEST_F(FolderVolumes, OneThatDoesNotSayHasNoFigures) {
    const nlohmann::json disk = named(ask("")["folders"], "disk");
    EXPECT_EQ(disk["bytes"], -1);
    EXPECT_FALSE(disk.contains("total"));
    EXPECT_EQ(ask(home.path("disk"))["state"], "otherVolume");
}

TEST_F(FolderVolumes, OneThatIsClosedIsNotSaidToBeGone) {
    reader.folder(home.path("closed"));
    reader.folder(home.path("away"));
    post("scan");
    machine.dispatcher.runAll();
    reader.folder(home.path("closed")).openError = EACCES;
    reader.folder(home.path("away")).openError = EIO;
    EXPECT_EQ(ask(home.path("closed"))["state"], "unreadable");
    EXPECT_EQ(ask(home.path("away"))["state"], "unreadable");
    reader.folder(home.path("away")).openError = ENOENT;
    EXPECT_EQ(ask(home.path("away"))["state"], "gone");
}

TEST_F(FolderVolumes, ADeadOneHoldsTheAnswerUpNoLongerThanAMoment) {
    post("folder", {{"path", ""}, {"request", 1}});
    machine.dispatcher.advance(0.31);  // and the volume has not answered
    EXPECT_EQ(machine.dispatcher.waitingGlobal(), 2U);
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onFolder"), 1U) << "once, though the volume has answered in the end";
    EXPECT_EQ(named(last("onFolder")["folders"], "disk")["bytes"], -1);
}

}  // namespace
}  // namespace velto
