#include "cleaning/preview/FilePreview.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "support/TestPlatform.h"
#include "support/made_picture.h"

namespace velto {
namespace {

/// Opens what `instead` says, as if a folder of the path had become a link meanwhile.
class RedirectedFiles final : public FileContentReader {
public:
    explicit RedirectedFiles(std::unique_ptr<FileContentReader> files) : files_(std::move(files)) {}

    std::unique_ptr<FileContent> open(const std::string& path) override {
        return files_->open(instead.empty() ? path : instead);
    }

    std::string instead;

private:
    std::unique_ptr<FileContentReader> files_;
};

struct FilePreviewTest : testing::Test {
    FilePreviewTest() {
        auto redirected = std::make_unique<RedirectedFiles>(std::move(machine.platform.contents));
        files = redirected.get();
        machine.platform.contents = std::move(redirected);
        machine.home.text("Documents/note.txt", "mine\n");
        machine.home.text("Documents/other.txt", "another\n");
    }

    std::optional<FilePreview> read(const std::string& name, const CancellationFlag& flag = {}) {
        return FilePreviewReader(machine.platform)
            .read(machine.home.path("Documents/" + name), flag);
    }

    TestPlatform machine;
    RedirectedFiles* files = nullptr;
};

TEST_F(FilePreviewTest, OnlyTheFileThatWasJudgedIsRead) {
    ASSERT_EQ(read("note.txt")->text, "mine\n");
    files->instead = machine.home.path("Documents/other.txt");
    const auto preview = read("note.txt");
    EXPECT_EQ(preview->kind, FilePreview::Kind::none);
    EXPECT_EQ(preview->reason, FilePreview::Reason::gone);
    EXPECT_EQ(preview->text, "");
}

TEST_F(FilePreviewTest, NothingComesOfACancelledOne) {
    CancellationFlag cancelled;
    cancelled.cancel();
    EXPECT_FALSE(read("note.txt", cancelled));
}

TEST_F(FilePreviewTest, APictureOfTooManyBytesIsNotShown) {
    std::string picture = pngPicture(20, 10, {});
    picture.resize(FilePreviewReader::mostPictureBytes + 1);
    machine.home.text("Documents/long.png", picture);
    const auto preview = read("long.png");
    EXPECT_EQ(preview->reason, FilePreview::Reason::tooLong);
    EXPECT_TRUE(preview->content.empty());
    picture.pop_back();
    machine.home.text("Documents/long.png", picture);
    EXPECT_EQ(read("long.png")->kind, FilePreview::Kind::picture);
}

}  // namespace
}  // namespace velto
