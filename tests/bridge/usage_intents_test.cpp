#include <cerrno>
#include <memory>
#include <utility>

#include <fmt/format.h>

#include "bridge/BridgeFixture.h"

namespace velto {
namespace {

constexpr const char* file = "Library/Application Support/Velto/app-usage.json";

/// Removes nothing.
class Refusing final : public FileManager {
public:
    explicit Refusing(FileManager& files) : files_(files) {}

    bool exists(const std::string& path) const override { return files_.exists(path); }
    std::optional<FileAttributes> attributes(const std::string& path) const override {
        return files_.attributes(path);
    }
    std::vector<std::string> list(const std::string& path) const override {
        return files_.list(path);
    }
    std::string resolved(const std::string& path) const override { return files_.resolved(path); }
    std::string read(const std::string& path, const ReadLimit& limit) const override {
        return files_.read(path, limit);
    }
    void writeAtomically(const std::string& path, std::string_view content) override {
        files_.writeAtomically(path, content);
    }
    void createFolders(const std::string& path) override { files_.createFolders(path); }
    void removeAll(const std::string& path) override { throw FileError("remove", path, EACCES); }

private:
    FileManager& files_;
};

struct UsageIntentsTest : BridgeFixture {
    void SetUp() override { open(); }

    void expectTold(bool recording, int applications) {
        ASSERT_FALSE(page->calls("onAppUses").empty());
        EXPECT_THAT(page->calls("onAppUses").back(),
                    testing::HasSubstr(fmt::format(R"("applications":{},"recording":{})",
                                                   applications, recording)));
    }
};

TEST_F(UsageIntentsTest, ThePageIsToldOfHowManyApplicationsAUseIsRecorded) {
    usage.record("com.example.one", 1000);
    usage.record("com.example.two", 2000);
    post("appUses");
    expectTold(true, 2);
}

TEST_F(UsageIntentsTest, SwitchedOffWhatWasRecordedIsDeletedAndThePageIsTold) {
    usage.record("com.example.one", 1000);
    usage.save();
    ASSERT_TRUE(machine.home.exists(file));
    post("recordAppUses", {{"on", false}});
    EXPECT_EQ(count("onAppUses"), 0u) << "deleted on the main thread";
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.home.exists(file));
    expectTold(false, 0);
    EXPECT_EQ(count("toast"), 0u);
    EXPECT_TRUE(
        machine.log.holds("Velto ▶ usos de aplicaciones: no se anotan; lo anotado se ha borrado"));
    post("recordAppUses", {{"on", true}});
    machine.dispatcher.runAll();
    expectTold(true, 0);
}

TEST_F(UsageIntentsTest, WhatWasAskedForLastHolds) {
    usage.record("com.example.one", 1000);
    post("recordAppUses", {{"on", false}});
    post("recordAppUses", {{"on", true}});
    machine.dispatcher.runAll();
    expectTold(true, 0);
    EXPECT_TRUE(usage.isRecording());
    EXPECT_TRUE(usage.launches().empty()) << "what was to be forgotten came back";
}

TEST_F(UsageIntentsTest, AFileThatCannotBeDeletedIsNamed) {
    usage.record("com.example.one", 1000);
    // Services of the fixture hold the first one.
    const auto files =
        std::exchange(machine.platform.files, std::make_unique<Refusing>(*machine.platform.files));
    post("recordAppUses", {{"on", false}});
    machine.dispatcher.runAll();
    EXPECT_THAT(page->calls("toast").back(), testing::HasSubstr("app-usage.json"));
    expectTold(false, 0);
}

TEST_F(UsageIntentsTest, OnlyAClearAnswerSwitchesIt) {
    post("recordAppUses");
    post("recordAppUses", {{"on", "false"}});
    post("recordAppUses", "off");
    machine.dispatcher.runAll();
    EXPECT_TRUE(usage.isRecording());
    EXPECT_EQ(count("onAppUses"), 0u);
}

}  // namespace
}  // namespace velto
