// The trash: `bench_trash FOLDER ROUNDS`. Prints one line a round, in milliseconds: undoing an
// operation of 1,000 files, undoing one of 10,000, emptying the trash of as many files, loading a
// trash of 100,000 items, and parsing that trash's manifest into a JSON value and no further. The
// folder is emptied before and after.
#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "cleaning/VeltoTrashService.h"
#include "platform/Clock.h"
#include "platform/posix/PosixFileManager.h"
#include "rounds.h"
#include "stopwatch.h"

namespace {

namespace fs = std::filesystem;

class Bench {
public:
    explicit Bench(const std::string& folder) : folder_(folder) { fs::remove_all(folder); }
    ~Bench() { fs::remove_all(folder_); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    /// Undoing takes a service that has read the trash, as the window's has.
    double undo(int count) {
        const std::vector<std::string> paths = makeFiles(count);
        Trash trash(layout_);
        const velto::Operation operation = trash.service.moveToTrash(paths, "wind");
        const double time = velto::milliseconds([&] { trash.service.undoOperation(operation.id); });
        for (const std::string& path : paths) {
            if (!fs::remove(path)) throw std::runtime_error("not undone: " + path);
        }
        return time;
    }

    double empty(int count) {
        Trash trash(layout_);
        trash.service.moveToTrash(makeFiles(count), "wind");
        const double time = velto::milliseconds([&] { trash.service.emptyTrash(); });
        if (!trash.service.items().empty()) throw std::runtime_error("not emptied");
        return time;
    }

    /// As large as a trash with operations of 1,000 items.
    void makeManifest(int count) {
        velto::Manifest manifest;
        for (int number = 0; number < count; ++number) {
            if (number % 1000 == 0) {
                manifest.operations.push_back(
                    {.id = fmt::format("op{:08X}-0000-4000-8000-000000000000", number),
                     .ts = 1'700'000'000.25,
                     .gb = 1.5,
                     .items = {},
                     .kind = "wind"});
            }
            velto::Operation& operation = manifest.operations.back();
            operation.items.push_back({.id = fmt::format("it{:08X}", number),
                                       .opID = operation.id,
                                       .originalPath = fmt::format(
                                           "{}/Downloads/some folder/file {}.txt", folder_, number),
                                       .name = fmt::format("file {}.txt", number),
                                       .gb = 0.1,
                                       .taken = 1'700'000'000.25});
            manifest.items.push_back(operation.items.back());
        }
        fs::create_directories(layout_.trashFolder);
        files_.writeAtomically(manifestPath(), velto::encodeManifest(manifest));
    }

    double load(std::size_t expected) {
        Trash trash(layout_);
        std::size_t count = 0;
        const double time = velto::milliseconds([&] { count = trash.service.items().size(); });
        if (count != expected) throw std::runtime_error(fmt::format("loaded {} items", count));
        return time;
    }

    double parse() {
        const std::string text = files_.read(manifestPath(), velto::trashRecordsLimit);
        nlohmann::json value;
        return velto::milliseconds([&] { value = nlohmann::json::parse(text); });
    }

private:
    struct Trash {
        explicit Trash(const velto::HomeLayout& layout)
            : service(files, files, clock, log, layout) {}

        velto::PosixFileManager files;
        velto::SystemClock clock;
        velto::SilentLog log;
        velto::VeltoTrashService service;
    };

    std::vector<std::string> makeFiles(int count) const {
        fs::create_directories(folder_ + "/Downloads");
        std::vector<std::string> paths;
        for (int number = 0; number < count; ++number) {
            paths.push_back(fmt::format("{}/Downloads/file {}.txt", folder_, number));
            std::fclose(std::fopen(paths.back().c_str(), "w"));
        }
        return paths;
    }

    std::string manifestPath() const { return layout_.trashFolder + "/manifest.json"; }

    std::string folder_;
    velto::HomeLayout layout_ = velto::HomeLayout::macOS(folder_);
    velto::PosixFileManager files_;
};

}  // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        fmt::print(stderr, "usage: bench_trash FOLDER ROUNDS\n");
        return 2;
    }
    constexpr int few = 1'000;
    constexpr int many = 10'000;
    constexpr int all = 100'000;
    return velto::printRounds(arguments[2], [&] {
        Bench bench(arguments[1]);
        const double undoFew = bench.undo(few);
        const double undoMany = bench.undo(many);
        const double emptyFew = bench.empty(few);
        const double emptyMany = bench.empty(many);
        bench.makeManifest(all);
        const double load = bench.load(all);
        return std::array{undoFew, undoMany, emptyFew, emptyMany, load, bench.parse()};
    });
}
