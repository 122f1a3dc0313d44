#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "cleaning/VeltoTrashService.h"
#include "filesystems/linux/volumes_of_every_kind.h"
#include "platform/posix/PosixFileManager.h"
#include "support/TempHome.h"
#include "support/WatchedFileCalls.h"
#include "support/fakes.h"

namespace velto {

/// What of a home lies on the volume that is tested; the rest lies in memory.
enum class Placed {
    everything,  // home and trash
    diskInHome,  // a folder of the home, with all that is thrown away
    trash,       // the program's own data
};

/// A trash as one process sees it.
struct TrashUser {
    TrashUser(const HomeLayout& layout, const Clock& clock)
        : service(files, files, clock, log, layout) {}

    WatchedFileCalls calls;
    PosixFileManager files{calls, {.limit = std::chrono::milliseconds(200)}};
    FakeLog log;
    VeltoTrashService service;
};

/// A home with files that matter to somebody, on volumes of a kind. To be used in a process with
/// mounts of its own.
class VolumeWorld {
public:
    VolumeWorld(const VolumeKind& kind, Placed placed);

    /// Mounts the volume; returns why that is not possible, "" when it is.
    std::string begin();
    /// The same where somebody else has mounted the volume already.
    void beginMounted();

    /// Puts everything into the home that the volume can hold: files, folders of many things, two
    /// names of one file, names that differ in case alone, and bystanders that nobody touches. What
    /// is there of an earlier call goes first.
    void keepEverything();
    /// Takes up all the room that the volume has left.
    void fill() const;
    void makeRoom() const;

    TrashUser user() const { return {layout, clock}; }

    std::string path(const std::string& kept) const { return home + "/" + prefix + kept; }
    std::vector<std::string> keptPaths() const;
    std::set<std::string> keptNames() const;
    std::string volume() const { return volume_; }

    struct Whereabouts {
        std::set<std::string> home;  // of the kept things
        std::set<std::string> trash;
        std::set<std::string> gone;
    };
    /// Where each kept thing is, whole, as a new process sees it. Anything that is missing,
    /// partial, doubled, changed or left over is a failure of the test; `mayBeGone` may be missing,
    /// but not in part.
    Whereabouts prove(const std::set<std::string>& mayBeGone = {}) const;

    /// All of what stands at a path, with its extended attributes.
    std::string textOf(const std::string& path) const;

    /// A volume that came to grief in the middle may keep the empty folder of an operation, and a
    /// whole copy of what was put back where it came from, since nobody can tell whose it is.
    bool allowsSurplus = false;

    const VolumeKind kind;
    const bool tellsCaseApart;  // where the kept things lie
    std::string home;
    std::string prefix;  // of what is kept, below the home
    HomeLayout layout;
    FakeClock clock;

private:
    void keep(const std::string& name);
    void keepFolder(const std::string& name);
    void expectNothingLeftOver(const std::set<std::string>& stored) const;

    std::string filler() const { return volume_ + "/filler"; }

    TempHome base_;
    std::string volume_;                       // where it is mounted
    std::map<std::string, std::string> kept_;  // name to text
    std::string bystanders_;
};

}  // namespace velto
