// Paths of all sorts. VELTO_SEED sets the seed of the random ones.

#include <cstdlib>
#include <filesystem>
#include <random>

#include "TrashAttackFixture.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

using TrashPathTest = TrashAttackTest;

TEST_F(TrashPathTest, PathsThatNobodyCouldHaveAreRefused) {
    const std::string before = treeText(root->path());
    const std::string nul("\0", 1);
    const std::string paths[] = {
        "",
        nul,
        nul + home("other"),
        home("other") + nul,
        home("other") + nul + "/../../outside/victim",
        home("d" + nul + "/victim"),
        home("../outside/victim"),
        home("d/../../outside/victim"),
        home("d/" + nul + "/../victim"),
        home("d/e/../../../outside/./victim"),
        "//" + home("../home/../outside//victim"),
        home("other/../../outside/victim"),
        home(std::string(100'000, 'x')),
        home("other") + std::string(100'000, '/') + "x",
        std::string(100'000, '/'),
        std::string(100'000, '.'),
        root->path("home2"),
        root->path("homeless/a"),
        "other",
        "file://" + home("other"),
        "~/other",
        "\u202E" + home("other"),
    };
    for (const std::string& path : paths) {
        EXPECT_THROW(service->validate(path), TrashError) << path.substr(0, 200);
        EXPECT_THROW(service->moveToTrash({path}, "wind"), TrashError) << path.substr(0, 200);
    }
    fs::remove_all(layout.dataFolder.substr(0, layout.dataFolder.find("/Library") + 8));
    EXPECT_EQ(treeText(root->path()), before);
}

TEST_F(TrashPathTest, APathOfAnyLengthIsMovedAndComesBack) {
    std::string path = home("deep");
    while (path.size() < 100'000)
        path += "/" + std::string(250, 'x');
    const auto folder = files.openFolder(path, FolderPath::createdWithoutLinks);
    files.makeFolder(*folder, "kept");
    const Operation operation = service->moveToTrash({path + "/kept"}, "wind");
    EXPECT_FALSE(files.attributes(*folder, "kept"));
    EXPECT_EQ(TrashProcess(layout, clock).service.items(), operation.items);
    service->undoOperation(operation.id);
    EXPECT_TRUE(files.attributes(*folder, "kept"));
    files.removeAll(home("deep"));
}

/// What the rules say of a path, found in another way than the trash finds it.
bool mayEnter(const TrashPathTest& test, const std::string& path) {
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) return false;
    std::string normal = fs::path(path).lexically_normal().string();
    while (normal.size() > 1 && normal.ends_with('/'))
        normal.pop_back();
    if (normal.starts_with("//")) normal.erase(0, 1);
    const std::string& trash = test.layout.trashFolder;
    if (!normal.starts_with(test.home(""))) return false;
    if (normal.find("Mail") != std::string::npos) return false;
    if (trash.starts_with(normal) || normal.starts_with(trash)) return false;
    std::error_code absent;
    return fs::exists(fs::symlink_status(normal, absent)) &&
           fs::canonical(normal, absent) == normal;
}

TEST_F(TrashPathTest, NothingOutsideTheHomeIsEverMoved) {
    root->text("home/d/ñ \"q\"\n\\", "odd");
    root->text("home/Mail/x", "mail");
    root->text("home2/victim", "of a home whose name begins alike");
    root->link("home/link", "d");
    root->link("home/d/out", "../../outside");
    root->link("outside/back", "../home");
    files.createFolders(layout.trashFolder);
    const auto elsewhere = [&] {
        return treeText(root->path("outside")) + treeText(root->path("home2"));
    };
    const std::string others = elsewhere();
    const auto ours = [&] {
        return treeText(home("d")) + treeText(home("other")) + treeText(home("Mail")) +
               treeText(home("link"));
    };
    const std::string whole = ours();

    const std::string pieces[] = {"..",
                                  ".",
                                  "",
                                  "d",
                                  "e",
                                  "victim",
                                  "other",
                                  "link",
                                  "out",
                                  "back",
                                  "outside",
                                  "home",
                                  "home2",
                                  "Mail",
                                  "x",
                                  "ñ \"q\"\n\\",
                                  "Library",
                                  "Application Support",
                                  "Velto",
                                  "Trash",
                                  std::string("\0", 1),
                                  "\xff",
                                  "\u202E",
                                  " ",
                                  "*"};
    const std::string starts[] = {
        root->path("home"),        root->path(), root->path("outside"), "", "/", home("d"),
        root->path("outside/back")};
    const char* given = std::getenv("VELTO_SEED");
    const unsigned long seed = given != nullptr ? std::strtoul(given, nullptr, 10) : 1;
    SCOPED_TRACE(testing::Message() << "VELTO_SEED=" << seed);
    std::mt19937 random(static_cast<unsigned>(seed));
    const auto any = [&](const auto& list) -> const std::string& {
        return list[std::uniform_int_distribution<std::size_t>(0, std::size(list) - 1)(random)];
    };
    int moved = 0;
    for (int round = 0; round < (isExhaustive() ? 200'000 : 4'000); ++round) {
        std::string path = any(starts);
        for (auto count = random() % 6; count > 0; --count)
            path += (random() % 8 == 0 ? "//" : "/") + any(pieces);
        SCOPED_TRACE(path);
        const bool isAllowed = mayEnter(*this, path);
        try {
            const Operation operation = service->moveToTrash({path}, "wind");
            EXPECT_TRUE(isAllowed) << "it was moved";
            ++moved;
            service->undoOperation(operation.id);
        } catch (const TrashError& error) {
            EXPECT_FALSE(isAllowed) << error.what();
        } catch (const FileError& error) {
            EXPECT_FALSE(isAllowed) << error.what();  // a folder around the trash
        }
        if (round % 20 == 0 || isAllowed) {
            ASSERT_EQ(elsewhere(), others);
            ASSERT_EQ(ours(), whole);
        }
        if (HasFailure()) return;
    }
    EXPECT_GT(moved, 100) << "the paths are not mixed well";
}

}  // namespace
}  // namespace velto
