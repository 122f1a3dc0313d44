#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "bridge/TrashFixture.h"
#include "bridge/preview_events.h"
#include "cleaning/preview/FilePreview.h"
#include "support/made_picture.h"

namespace velto {
namespace {

using nlohmann::json;

struct PreviewIntents : TrashFixture {
    json preview(const std::string& path) {
        const std::size_t before = count("onPreview");
        ask("preview", {{"request", 7}, {"path", path}});
        EXPECT_EQ(count("onPreview"), before + 1);
        return count("onPreview") > before ? lastArgument(*page, "onPreview") : json();
    }
    std::string reasonFor(const std::string& path) {
        const json answer = preview(path);
        EXPECT_EQ(answer["kind"], "none");
        EXPECT_FALSE(answer.contains("text"));
        EXPECT_FALSE(answer.contains("source"));
        return answer["reason"];
    }
    void write(const std::string& content) { machine.home.text("a/copy.bin", content); }
};

TEST_F(PreviewIntents, ATextIsShownFromItsBeginning) {
    write("uno\ndos\n");
    const json answer = preview(copy1);
    EXPECT_EQ(answer["request"], 7);
    EXPECT_EQ(answer["path"], copy1);
    EXPECT_EQ(answer["kind"], "text");
    EXPECT_EQ(answer["text"], "uno\ndos\n");
    EXPECT_EQ(answer["whole"], true);
    EXPECT_EQ(answer["bytes"], 8);
    EXPECT_GT(answer["modified"], 1'500'000'000);

    const std::string line = "a line that is as long as any other\n";
    std::string text;
    while (text.size() < 2'000'000)
        text += line;
    write(text);
    const json part = preview(copy1);
    EXPECT_EQ(part["whole"], false);
    EXPECT_EQ(part["text"].get<std::string>().size(), 16u * 1024);
    EXPECT_EQ(part["bytes"], text.size());
}

TEST_F(PreviewIntents, APictureComesWholeWithItsDimensions) {
    const std::string picture = pngPicture(20, 10, {.red = 200});
    write(picture);
    const json answer = preview(copy1);
    EXPECT_EQ(answer["kind"], "picture");
    EXPECT_EQ(answer["width"], 20);
    EXPECT_EQ(answer["height"], 10);
    EXPECT_EQ(answer["source"], "data:image/png;base64," + events::base64(picture));
}

TEST_F(PreviewIntents, AHostilePictureIsNotHandedToTheDecoder) {
    std::string picture = pngPicture(20, 10, {});
    picture.replace(16, 8, std::string("\0\0\x40\0\0\0\x40\0", 8));  // 16,384 each way
    write(picture);
    EXPECT_EQ(reasonFor(copy1), "tooLarge");
    picture.replace(16, 8, std::string("\0\1\0\0\0\0\0\1", 8));  // one line, and long
    write(picture);
    EXPECT_EQ(reasonFor(copy1), "tooLarge");
    write(picture.substr(0, 12) + "JUNK");
    EXPECT_EQ(reasonFor(copy1), "damaged");
    write(pngPicture(20, 10, {}));
    std::filesystem::resize_file(copy1, FilePreviewReader::mostPictureBytes + 1);
    EXPECT_EQ(reasonFor(copy1), "tooLong");
    write("<svg xmlns='http://www.w3.org/2000/svg' onload='alert(1)'/>");
    EXPECT_EQ(preview(copy1)["kind"], "text");
}

TEST_F(PreviewIntents, WhatIsNeitherSaysSo) {
    write(
        std::string("\x7F"
                    "ELF\0\0\0\0",
                    8));
    EXPECT_EQ(reasonFor(copy1), "noKind");
}

TEST_F(PreviewIntents, OnlyFilesOfTheAnalysisAreRead) {
    const std::string other = machine.home.text("Documents/diary.txt", "secret").path();
    EXPECT_EQ(reasonFor(other), "gone");
    EXPECT_EQ(reasonFor("/etc/hostname"), "gone");
    EXPECT_EQ(reasonFor(machine.home.path() + "/a/../Documents/diary.txt"), "gone");
    EXPECT_EQ(preview(film)["kind"], "none");  // a large file of the analysis
    // Nothing is asked by a message of another form, and nothing is answered.
    const std::size_t before = count("onPreview");
    ask("preview");
    ask("preview", {{"path", copy1}});
    ask("preview", {{"request", 1}});
    ask("preview", {{"request", "1"}, {"path", copy1}});
    ask("preview", {{"request", 1}, {"path", 5}});
    ask("preview", json::array({1, copy1}));
    EXPECT_EQ(count("onPreview"), before);
}

TEST_F(PreviewIntents, NoLinkIsFollowedAndOnlyARegularFileIsOpened) {
    const std::string secret = machine.home.text("Documents/diary.txt", "secret").path();
    ASSERT_EQ(::unlink(copy1.c_str()), 0);
    machine.home.link("a/copy.bin", secret);
    EXPECT_EQ(reasonFor(copy1), "refused");

    // A link in the place of the folder.
    std::filesystem::rename(machine.home.path() + "/b", machine.home.path() + "/elsewhere");
    machine.home.link("b", machine.home.path() + "/elsewhere");
    EXPECT_EQ(reasonFor(copy2), "refused");

    ASSERT_EQ(::unlink(copy3.c_str()), 0);
    EXPECT_EQ(reasonFor(copy3), "gone");
    ASSERT_EQ(::mkfifo(copy3.c_str(), 0600), 0);
    EXPECT_EQ(reasonFor(copy3), "gone");
}

TEST_F(PreviewIntents, TheLastQuestionIsTheOneThatIsAnswered) {
    post("preview", {{"request", 1}, {"path", copy1}});
    post("preview", {{"request", 2}, {"path", copy2}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onPreview"), 1u);
    EXPECT_EQ(lastArgument(*page, "onPreview")["request"], 2);
    // One without a path only ends it.
    post("preview", {{"request", 3}, {"path", copy1}});
    post("preview", {{"request", 4}});
    machine.dispatcher.runAll();
    EXPECT_EQ(count("onPreview"), 1u);
}

TEST_F(PreviewIntents, LookingDoesNotCountAsUse) {
    TempHome::File(copy1).dated(1'400'000'000, 1'500'000'000);
    preview(copy1);
    EXPECT_EQ(machine.platform.files->attributes(copy1)->accessed, 1'400'000'000);
}

struct NoDownload final : FileContentReader {
    struct File final : FileContent {
        explicit File(FileStamp known) : known(known) {}
        std::int64_t size() const override { return known.length; }
        std::optional<FileStamp> stamp() const override { return known; }
        std::ptrdiff_t read(std::int64_t, std::span<std::byte>) override {
            errno = EDEADLK;  // as a Mac's kernel says of what lies only in the cloud
            return -1;
        }
        FileStamp known;
    };
    std::unique_ptr<FileContent> open(const std::string& path) override {
        return std::make_unique<File>(*makeFileContentReader()->stamp(path));
    }
};

TEST_F(PreviewIntents, WhatWouldHaveToBeDownloadedIsNotRead) {
    install<NoDownload>(machine.platform.contents);
    EXPECT_EQ(reasonFor(copy1), "inCloud");
}

TEST(PreviewEvents, Base64IsThatOfTheStandard) {
    // RFC 4648, section 10.
    EXPECT_EQ(events::base64(""), "");
    EXPECT_EQ(events::base64("f"), "Zg==");
    EXPECT_EQ(events::base64("fo"), "Zm8=");
    EXPECT_EQ(events::base64("foo"), "Zm9v");
    EXPECT_EQ(events::base64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(events::base64("\xFF\xFE\xFB"), "//77");
}

}  // namespace
}  // namespace velto
