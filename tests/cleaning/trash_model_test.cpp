// Random changes, one after another by two processes in turn, against a model of the trash.
// VELTO_SEED sets the first seed.

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>

#include "TrashModel.h"
#include "TrashWorld.h"

namespace velto {
namespace {

namespace fs = std::filesystem;

unsigned firstSeed() {
    const char* given = std::getenv("VELTO_SEED");
    return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : 1u;
}

/// A file is a file; what ends in "/" is a folder with one file of that content in it.
const std::vector<std::string> places{"a",       "b.txt",         "d/c.tar.gz", "d/.hidden",
                                      "d/é.pdf", "d/folder.app/", "folder/"};

class Walk {
public:
    explicit Walk(unsigned seed) : random_(seed) {}

    void run(int steps) {
        for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE(testing::Message() << "step " << step << ": " << last_);
            act();
            compare();
        }
    }

private:
    std::size_t below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
    }

    bool happens(int percent) { return below(100) < static_cast<std::size_t>(percent); }

    VeltoTrashService& service() { return processes_[below(processes_.size())]->service; }

    std::string anyItem() {
        if (model_.trash.empty() || happens(5)) return "it00000000";
        return model_.trash[below(model_.trash.size())].id;
    }

    std::string anyOperation() {
        if (model_.trash.empty() || happens(5)) return "op";
        return model_.trash[below(model_.trash.size())].operation;
    }

    std::string anyPath() {
        if (model_.home.empty() || happens(10)) return places[below(places.size())];
        return std::next(model_.home.begin(), static_cast<long>(below(model_.home.size())))->first;
    }

    void act() {
        const std::size_t choice = below(100);
        // In percent.
        if (choice < 30) return make();
        if (choice < 55) return move();
        if (choice < 70) return restore();
        if (choice < 78) return undo();
        if (choice < 86) return remove();
        if (choice < 90) return purge();
        if (choice < 91) return empty();
        if (choice < 95) return vanish();
        restart();
    }

    void make() {
        last_ = "make";
        std::string path = places[below(places.size())];
        const bool isFolder = path.ends_with('/');
        if (isFolder) path.pop_back();
        if (model_.home.contains(path)) return;
        const std::string content = "content " + std::to_string(++made_);
        home_.text(isFolder ? path + "/inside" : path, content);
        model_.home[path] = content;
    }

    void move() {
        last_ = "move";
        std::vector<std::string> relatives;
        std::vector<std::string> paths;
        for (std::size_t count = below(5); relatives.size() < count;) {
            std::string path = anyPath();
            if (path.ends_with('/')) path.pop_back();
            relatives.push_back(path);
            paths.push_back(home_.path(path));
        }
        const bool isPossible = model_.canMove(relatives);
        expect(isPossible, [&](VeltoTrashService& trash) {
            const Operation operation = trash.moveToTrash(paths, "wind");
            std::vector<std::string> ids;
            for (const TrashItem& item : operation.items)
                ids.push_back(item.id);
            ASSERT_EQ(ids.size(), onceEach(relatives).size());
            model_.move(relatives, ids, operation.id, clock_.time);
        });
    }

    void restore() {
        last_ = "restore";
        const std::string id = anyItem();
        expect(model_.restore(id), [&](VeltoTrashService& trash) { trash.restore(id); });
    }

    void undo() {
        last_ = "undo";
        const std::string id = anyOperation();
        expect(model_.undo(id), [&](VeltoTrashService& trash) { trash.undoOperation(id); });
    }

    void remove() {
        last_ = "delete";
        const std::string id = anyItem();
        expect(model_.remove(id), [&](VeltoTrashService& trash) { trash.deletePermanently(id); });
    }

    void purge() {
        last_ = "purge";
        clock_.time += static_cast<double>(below(3)) * 86400;
        const auto days = static_cast<std::int64_t>(below(4));
        model_.purge(clock_.time - static_cast<double>(days) * 86400);
        expect(true, [&](VeltoTrashService& trash) { trash.purgeExpired(days); });
    }

    void empty() {
        last_ = "empty";
        model_.trash.clear();
        expect(true, [&](VeltoTrashService& trash) { trash.emptyTrash(); });
    }

    /// Somebody removes a file from the trash by hand.
    void vanish() {
        last_ = "vanish";
        if (model_.trash.empty()) return;
        TrashModel::Item& item = model_.trash[below(model_.trash.size())];
        fs::remove_all(stored(item));
        item.hasVanished = true;
    }

    void restart() {
        last_ = "restart";
        processes_[below(processes_.size())] = std::make_unique<TrashProcess>(layout_, clock_);
    }

    void expect(bool isPossible, const std::function<void(VeltoTrashService& trash)>& action) {
        try {
            action(service());
            EXPECT_TRUE(isPossible) << last_ << " should have been refused";
        } catch (const TrashError& error) {
            EXPECT_FALSE(isPossible) << last_ << ": " << error.what();
            EXPECT_EQ(error.reason(), TrashError::Reason::notFound);
        }
    }

    std::string stored(const TrashModel::Item& item) const {
        return layout_.trashFolder + "/" + item.operation + "/" + item.id + "-" +
               fs::path(item.path).filename().string();
    }

    /// The content of a file, or of the one file in a folder.
    std::string contentAt(const std::string& path) const {
        const std::string inside = path + "/inside";
        return files_.read(files_.exists(inside) ? inside : path, anyFile(1 << 20));
    }

    void compare() {
        std::set<std::string> expected;
        for (const auto& [path, content] : model_.home) {
            ASSERT_TRUE(home_.exists(path)) << path << " is lost after " << last_;
            EXPECT_EQ(contentAt(home_.path(path)), content) << path;
            expected.insert(home_.path(path));
        }
        for (const char* folder : {"", "d"}) {
            if (!home_.exists(folder)) continue;
            for (const auto& entry : fs::directory_iterator(home_.path(folder))) {
                const std::string name = entry.path().filename();
                if (name == "Library" || name == "d") continue;
                EXPECT_TRUE(expected.contains(home_.path() + (*folder ? "/d/" : "/") + name))
                    << name << " is in the home after " << last_;
            }
        }

        for (const auto& process : processes_) {
            const std::vector<TrashItem>& items = process->service.items();
            ASSERT_EQ(items.size(), model_.trash.size()) << "after " << last_;
            for (std::size_t index = 0; index < items.size(); ++index) {
                EXPECT_EQ(items[index].id, model_.trash[index].id);
                EXPECT_EQ(items[index].originalPath, home_.path(model_.trash[index].path));
            }
            std::size_t inOperations = 0;
            for (const Operation& operation : process->service.operations()) {
                inOperations += operation.items.size();
                EXPECT_EQ(operation.items.size(), model_.itemsOf(operation.id).size());
            }
            EXPECT_EQ(inOperations, items.size());
        }
        for (const TrashModel::Item& item : model_.trash) {
            if (item.hasVanished) continue;
            ASSERT_TRUE(files_.exists(stored(item))) << item.path << " is lost after " << last_;
            EXPECT_EQ(contentAt(stored(item)), item.content);
        }
    }

    std::mt19937 random_;
    TempHome home_{TrashWorld::fastVolume()};
    HomeLayout layout_ = HomeLayout::macOS(home_.path());
    FakeClock clock_;
    PosixFileManager files_;
    std::vector<std::unique_ptr<TrashProcess>> processes_ = [this] {
        std::vector<std::unique_ptr<TrashProcess>> two;
        for (int number = 0; number < 2; ++number)
            two.push_back(std::make_unique<TrashProcess>(layout_, clock_));
        return two;
    }();
    TrashModel model_;
    int made_ = 0;
    std::string last_;
};

TEST(TrashModelTest, NothingIsLostOrDoubledByAnySequence) {
    const unsigned sequences = isExhaustive() ? 1000 : 40;
    const unsigned first = firstSeed();
    testing::Test::RecordProperty("seed", static_cast<int>(first));
    for (unsigned seed = first; seed < first + sequences; ++seed) {
        SCOPED_TRACE(testing::Message() << "VELTO_SEED=" << seed);
        Walk(seed).run(60);
        if (testing::Test::HasFailure()) return;
    }
}

}  // namespace
}  // namespace velto
