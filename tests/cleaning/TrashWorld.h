#pragma once

#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cleaning/VeltoTrashService.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/WatchedFileCalls.h"
#include "support/exhaustive.h"
#include "support/fakes.h"
#include "support/volumes.h"

namespace velto {

/// For the test's report.
void PrintTo(const TrashItem& item, std::ostream* stream);
void PrintTo(const Operation& operation, std::ostream* stream);

/// A trash as one process sees it.
struct TrashProcess {
    TrashProcess(const HomeLayout& layout, const Clock& clock)
        : files(calls), service(files, files, clock, log, layout) {
        calls.waitsForDisk = false;
    }

    WatchedFileCalls calls;
    PosixFileManager files;
    FakeLog log;
    VeltoTrashService service;
};

/// A home with files that matter to somebody, and its trash. Tells of every file where it is.
class TrashWorld {
public:
    /// Home and trash in folders of one volume or of two.
    explicit TrashWorld(const std::string& homeVolume, const std::string& trashVolume = "");

    /// In memory where the machine has such a volume: syncing costs nothing there.
    static std::string fastVolume();
    static bool hasTwoVolumes();

    /// Puts something into the home that has to survive.
    void keep(const std::string& relative, const std::string& content);
    /// A folder of many kinds of things, links and an empty file among them.
    void keepFolder(const std::string& relative);
    /// Files and folders with all sorts of names.
    void keepMany();

    std::string path(const std::string& relative) const { return home.path(relative); }
    std::vector<std::string> keptPaths() const;
    std::string trashPath() const { return layout.trashFolder; }

    std::unique_ptr<TrashProcess> process() const {
        return std::make_unique<TrashProcess>(layout, clock);
    }

    /// Where each kept thing is, in full: as seen by a new process. Anything that is missing,
    /// partial, doubled or left over is a failure of the test; `mayBeGone` may be missing, but not
    /// in part.
    struct Whereabouts {
        std::set<std::string> home;  // relative paths of kept things
        std::set<std::string> trash;
        std::set<std::string> gone;
    };
    Whereabouts prove(const std::set<std::string>& mayBeGone = {}) const;

    /// The trash goes on working: everything in it comes back, goes in again and comes back again.
    void proveTrashWorks();

    /// Counts files that no one knows of as leftovers unless they are allowed (file systems that
    /// fail to remove what they should leave something, and it must not be the user's).
    bool allowsLeftovers = false;

    /// Kept things of which a failed removal may have left a part.
    std::set<std::string> mayBeInPart;

    TempHome home;
    std::optional<TempHome> trashVolume;
    HomeLayout layout;
    FakeClock clock;

private:
    std::map<std::string, std::string> kept_;  // relative path to its text
};

}  // namespace velto
