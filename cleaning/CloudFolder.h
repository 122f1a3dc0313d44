#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cleaning/TrashGuard.h"
#include "platform/FileManager.h"
#include "platform/FileMover.h"
#include "platform/HomeLayout.h"
#include "platform/Log.h"

namespace velto {

/// Moves files and folders into the program's folder in the user's cloud drive, and back out of it
/// to where they came from. An index in the data folder ("cloud.json") remembers that place.
///
/// As careful as the trash: the same guard passes every path, nothing is ever replaced, and a move
/// is written down before the first file is touched, so that one that was cut off is finished or
/// taken back at the next use. One work item at a time uses an instance.
class CloudFolder {
public:
    /// All arguments outlive the object.
    CloudFolder(FileManager& files, FileMover& mover, Log& log, const HomeLayout& layout);

    /// The process's instance, made at first use from the process's platform.
    static CloudFolder& shared();

    struct Result {
        std::vector<std::string> moved;      // as they were passed
        std::vector<std::string> failed;     // the same; these stand where they stood
        std::vector<std::string> arrivedAt;  // where each of `moved` stands now
    };

    /// Moves each path by itself into the folder, which is made when it is missing. A path fails
    /// when the guard refuses it, when it holds the cloud folder or the program's data or lies in
    /// them, when its name is taken, and when there is no cloud drive. Never throws.
    Result moveTo(const std::vector<std::string>& paths);

    /// Moves each path by itself back out: to the folder that it came from, or to Downloads when
    /// that is gone or not known. A path names what lies directly in the cloud folder, or the place
    /// that it came from. Fails as above. Never throws.
    Result moveFrom(const std::vector<std::string>& paths);

    /// Finishes or takes back a move that was cut off. Never throws: what cannot be settled now
    /// still can be at the next use, and until then nothing else is moved.
    void settle();

private:
    /// A move on its way.
    struct Move {
        std::string from;     // absolute
        std::string to;       // absolute
        std::string scratch;  // a name that nothing else uses in either folder
    };
    struct Index {
        std::map<std::string, std::string> origins;  // name in the cloud folder to absolute path
        std::optional<Move> move;
    };

    template <typename MoveOne>
    Result moveEach(const std::vector<std::string>& paths, MoveOne moveOne);
    std::string moveIn(const std::string& path, Index& index);
    std::string moveOut(const std::string& path, Index& index);
    void carryOut(const HeldPlace& from, const HeldPlace& to, const Move& move, Index& index);
    void settleEarlierMove(Index& index);
    bool isOurs(const Move& move) const;
    bool isPlaceOutside(const std::string& path) const;
    bool isInDownloads(const std::string& path) const;
    bool isInDataFolder(const HeldPlace& place);
    void finish(const Move& move, MoveState state, Index& index) const;

    std::string pathInCloud(const std::string& path, const Index& index) const;
    std::string placeToReturnTo(const std::string& origin, const std::string& name) const;
    void refuseOwnFolders(const TrashGuard::Admitted& item);
    void refuseOwnFolder(const TrashGuard::Admitted& item, const std::string& folder);

    Index read() const;
    void save(const Index& index);
    std::string indexPath() const { return layout_.dataFolder + "/cloud.json"; }

    FileManager& files_;
    FileMover& mover_;
    Log& log_;
    const HomeLayout& layout_;
    TrashGuard guard_;
};

}  // namespace velto
