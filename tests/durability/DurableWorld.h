#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "cleaning/CloudFolder.h"
#include "cleaning/HistoryService.h"
#include "cleaning/VeltoTrashService.h"
#include "platform/Platform.h"
#include "platform/posix/PosixFileManager.h"
#include "support/FakeDirectoryReader.h"
#include "support/ModelCrash.h"
#include "support/ModelDisk.h"
#include "support/ModelFileCalls.h"
#include "support/TestPlatform.h"
#include "uninstall/AppUsage.h"
#include "uninstall/InstalledApps.h"
#include "uninstall/ItemRemoval.h"

namespace velto {

/// What the program asks of a machine, as far as it works on files.
struct ModelPlatform : Platform {
    ModelPlatform(FileCalls& calls, const HomeLayout& layout);
};

/// The program on a model's disk, from its start on.
struct DurableProcess {
    DurableProcess(ModelDisk& disk, const HomeLayout& layout, double now);

    /// What the program does at its start: whatever an earlier process has left is settled.
    void start();

    ModelFileCalls calls;
    PosixFileManager files{calls};
    ModelPlatform platform;
    FakeLog& log;
    FakeClock& clock;
    VeltoTrashService trash;
    HistoryService history;
    CloudFolder cloud;
    AppUsage usage;
    InstalledApps apps;
    ItemRemoval removal;
};

/// A home with files that matter to somebody, on a disk of two volumes: "External" in the home is
/// the second one. Tells whether all of them are still there.
class DurableWorld {
public:
    DurableWorld();

    // What an operation is about.
    static constexpr const char* file = "Downloads/a.pdf";
    static constexpr const char* folder = "Documents/notes";
    static constexpr const char* outerFile = "External/film.mov";
    static constexpr const char* outerFolder = "External/project";
    static std::vector<std::string> all() { return {file, folder, outerFile, outerFolder}; }

    std::string path(const std::string& relative) const { return layout.home + "/" + relative; }
    std::vector<std::string> paths(const std::vector<std::string>& relatives) const;

    /// Puts a file into the home that nothing may touch.
    void putBystander(const std::string& relative, const std::string& content);
    /// Takes something of the home away, as the user does.
    void takeAway(const std::string& relative);

    std::unique_ptr<DurableProcess> process(ModelDisk& of) const {
        return std::make_unique<DurableProcess>(of, layout, now);
    }
    std::unique_ptr<DurableProcess> process() { return process(disk); }

    /// Where things are after the start of a process on a disk.
    struct Findings {
        /// Nothing when the promise is kept.
        std::vector<std::string> broken;
        /// Pieces that nobody needs any more and nobody removes. No promise, but no gain.
        std::size_t leftovers = 0;
    };
    /// Starts the program on the disk, looks for everything, and lets the program bring everything
    /// back. `mayBeGone` was to be deleted for good: it is whole, or not where it was.
    Findings examine(ModelDisk& after, const std::set<std::string>& mayBeGone,
                     bool mayBeInTwoPlaces) const;

    ModelDisk disk;
    HomeLayout layout = HomeLayout::macOS("/home/user");
    double now = 1'700'000'000;
    /// The histories that may be found, newest entries first.
    std::vector<std::vector<std::string>> histories;

private:
    void put(const std::string& relative, const std::string& content);
    void keepFolder(const std::string& relative);
    std::vector<std::string> placesFor(const std::string& relative) const;
    std::string whole(const ModelImage& image, const std::string& relative) const;
    int placesOf(const ModelImage& image, DurableProcess& process, const std::string& relative,
                 Findings& findings) const;
    void lookForChanges(const ModelImage& image, Findings& findings) const;
    void bringAllBack(DurableProcess& process, Findings& findings) const;

    std::map<std::string, std::string> kept_;        // relative path to text
    std::map<std::string, std::string> bystanders_;  // the same
};

std::vector<std::string> idsOf(const HistoryService& history);

}  // namespace velto
