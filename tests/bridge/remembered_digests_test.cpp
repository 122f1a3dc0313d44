#include <atomic>

#include "bridge/BridgeFixture.h"
#include "platform/FileContent.h"

namespace velto {
namespace {

/// The machine's files, with every opening counted.
class CountedContents final : public FileContentReader {
public:
    std::unique_ptr<FileContent> open(const std::string& path) override {
        ++opened;
        return reader_->open(path);
    }
    std::optional<FileStamp> stamp(const std::string& path) override {
        return reader_->stamp(path);
    }

    std::atomic<int> opened{0};

private:
    std::unique_ptr<FileContentReader> reader_ = makeFileContentReader();
};

struct RememberedDigests : BridgeFixture {
    CountedContents& contents = install<CountedContents>(machine.platform.contents);
    const std::string path = machine.platform.layout.dataFolder + "/digests";

    void SetUp() override {
        machine.grantAccess();
        machine.clock.time = 4'000'000'000;  // long after the files were made
        const std::string content(1'200'000, 'a');
        machine.home.text("Documents/one.bin", content);
        machine.home.text("Downloads/two.bin", content);
        open();
        load();
        machine.dispatcher.runAll();
    }

    std::size_t groups() {
        contents.opened = 0;
        post("scan");
        machine.dispatcher.runAll();
        return bridge->bootState->state.dupGroups.size();
    }
};

TEST_F(RememberedDigests, WhatWasComparedIsNotOpenedAtTheNextAnalysisNorAfterARestart) {
    EXPECT_EQ(groups(), 1u);
    EXPECT_EQ(contents.opened, 0) << "the first start has compared them";
    bridge.reset();
    openAnother();
    load();
    machine.dispatcher.runAll();
    EXPECT_EQ(groups(), 1u);
    EXPECT_EQ(contents.opened, 0);
    machine.home.text("Downloads/two.bin", std::string(1'200'000, 'b'));
    EXPECT_EQ(groups(), 0u);
    EXPECT_GT(contents.opened, 0);
}

TEST_F(RememberedDigests, AResetTakesThemAway) {
    EXPECT_TRUE(machine.platform.files->exists(path));
    post("resetVelto");
    machine.dispatcher.runAll();
    EXPECT_FALSE(machine.platform.files->exists(path));
}

}  // namespace
}  // namespace velto
