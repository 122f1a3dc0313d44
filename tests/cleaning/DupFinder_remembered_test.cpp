// What earlier searches have read of files is not read again as long as they are unchanged.

#include <gmock/gmock.h>

#include "cleaning/DigestStore.h"
#include "cleaning/DupFinder.h"
#include "support/FakeFileContents.h"
#include "support/fakes.h"

namespace velto {
namespace {

constexpr std::int64_t oneSecond = 1'000'000'000;

struct RememberedFiles : testing::Test {
    FakeClock clock;
    FakeFileContents contents;
    std::vector<FileRecord> records;
    std::shared_ptr<DigestStore> store = std::make_shared<DigestStore>();
    static constexpr std::size_t length = 3'000'000;

    FakeFileContents::File& add(const std::string& path, std::string content) {
        records.push_back({path, static_cast<std::int64_t>(content.size())});
        FakeFileContents::File& file = contents.files[path];
        file.stamp = FileStamp{.identity = {.device = 1, .number = records.size()},
                               .length = static_cast<std::int64_t>(content.size()),
                               .modified = 1'000 * oneSecond,
                               .changed = 1'000 * oneSecond};
        file.content = std::move(content);
        return file;
    }

    /// The groups as texts, and in `readBytes` what was read for them.
    std::vector<std::string> find() {
        const auto before = contents.reads().size();
        const auto result = DupFinder(clock, contents, 2, store.get()).find(records);
        std::vector<std::string> groups;
        for (const auto& group : result.groups) {
            std::string text = group.hash.substr(0, 8);
            for (const std::string& path : group.paths)
                text += " " + path;
            groups.push_back(text);
        }
        readBytes = 0;
        const auto reads = contents.reads();
        for (std::size_t index = before; index < reads.size(); ++index)
            readBytes += static_cast<std::int64_t>(reads[index].given);
        return groups;
    }
    std::int64_t readBytes = 0;

    void SetUp() override {
        std::string late(length, 'a');
        late[2'000'000] = 'x';
        std::string soon(length, 'a');
        soon[7] = 'x';
        add("/one", std::string(length, 'a'));
        add("/two", std::string(length, 'a'));
        add("/late", late);
        add("/soon", soon);
    }
};

TEST_F(RememberedFiles, ASecondSearchFindsTheSameAndReadsNothing) {
    const auto first = find();
    EXPECT_EQ(first.size(), 1u);
    EXPECT_GT(readBytes, static_cast<std::int64_t>(3 * length));
    EXPECT_EQ(find(), first);
    EXPECT_EQ(readBytes, 0);
    store = DigestStore::decoded(store->encoded());
    EXPECT_EQ(find(), first);
    EXPECT_EQ(readBytes, 0);
}

TEST_F(RememberedFiles, AChangedFileAloneIsReadAgain) {
    find();
    auto& two = contents.files["/two"];
    two.content[1'000'000] = 'z';
    two.stamp->changed += oneSecond;
    EXPECT_TRUE(find().empty());
    EXPECT_EQ(contents.bytesRead("/late"), static_cast<std::int64_t>(length + 3 * 4096));
    auto& late = contents.files["/late"];
    late.content = contents.files["/one"].content;
    late.stamp->modified += oneSecond;
    const auto groups = find();
    ASSERT_EQ(groups.size(), 1u);
    EXPECT_TRUE(groups[0].ends_with(" /one /late"));
}

TEST_F(RememberedFiles, AFileThatChangesWhileItIsReadIsNotRemembered) {
    auto& two = contents.files["/two"];
    two.stampAfterReads = two.stamp;
    two.stampAfterReads->changed += oneSecond;
    find();
    two.stampAfterReads.reset();
    find();
    EXPECT_EQ(contents.bytesRead("/two"), 2 * static_cast<std::int64_t>(length + 3 * 4096));
}

TEST_F(RememberedFiles, AFileThatHasJustBeenChangedIsReadAgain) {
    auto& two = contents.files["/two"];
    two.stamp->modified = static_cast<std::int64_t>(clock.time - 1) * oneSecond;
    find();
    find();
    EXPECT_EQ(contents.bytesRead("/two"), 2 * static_cast<std::int64_t>(length + 3 * 4096));
    clock.time += 3;
    find();
    find();
    EXPECT_EQ(contents.bytesRead("/two"), 3 * static_cast<std::int64_t>(length + 3 * 4096));
}

TEST_F(RememberedFiles, ASearchThatWasStoppedGoesOnFromWhereItStood) {
    records.clear();
    contents.files.clear();
    for (int pair = 0; pair < 100; ++pair) {
        const std::string content(2'000'000 + static_cast<std::size_t>(pair), 'a');
        add("/a" + std::to_string(pair), content);
        add("/b" + std::to_string(pair), content);
    }
    const auto whole = DupFinder(clock, contents, 1).find(records);
    std::atomic<std::int64_t> read = 0;
    contents.beforeRead = [&](const std::string&, std::int64_t) { ++read; };
    const auto cut =
        DupFinder(clock, contents, 1, store.get()).find(records, [&] { return read > 400; });
    EXPECT_FALSE(cut.left.empty());
    EXPECT_FALSE(cut.groups.empty());
    contents.beforeRead = nullptr;
    std::int64_t before = 0;
    for (const auto& one : contents.reads())
        before += static_cast<std::int64_t>(one.given);
    const auto rest = DupFinder(clock, contents, 1, store.get()).find(records);
    EXPECT_EQ(rest.groups.size(), whole.groups.size());
    EXPECT_TRUE(rest.left.empty());
    std::int64_t after = 0;
    for (const auto& one : contents.reads())
        after += static_cast<std::int64_t>(one.given);
    // Each file is read whole once for the search that nobody cut, and once for the two others.
    std::int64_t length = 0;
    for (const FileRecord& record : records)
        length += record.size;
    EXPECT_LT(after, 2 * length + 2 * length / 10);
    EXPECT_LT(after - before, length);
}

}  // namespace
}  // namespace velto
