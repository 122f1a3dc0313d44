#pragma once

#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/PosixBlockSharing.h"

namespace velto {

/// A volume that can share blocks, over real files: what shares is remembered and changes nothing.
class FakeBlockSharing final : public BlockSharing {
public:
    /// The error with which a file is refused, by its path.
    std::map<std::string, int> refusals;
    /// Space that a copy holds alone, where it is not its length.
    std::map<std::string, OwnSpace> spaces;
    /// Called before a copy is shared, with its path.
    std::function<void(const std::string& path)> before;
    std::set<std::string> shared;                            // paths of copies
    std::vector<std::pair<std::string, std::string>> asked;  // to share: kept and copy
    bool canShare = true;

    std::unique_ptr<SharedFile> open(const FolderHandle& folder, const std::string& name) override {
        return std::make_unique<File>(*this, posix(folder).path + "/" + name);
    }

    void requireSharable(SharedFile&, SharedFile& copy) override {
        const std::string& path = of(copy).path;
        if (!canShare) throw FileError("share", path, ENOTSUP);
        const auto refused = refusals.find(path);
        if (refused != refusals.end()) throw FileError("share", path, refused->second);
    }

    bool isOneWith(SharedFile&, SharedFile& copy) override {
        return shared.contains(of(copy).path);
    }

    End share(SharedFile& kept, SharedFile& copy, const std::string&,
              const Progress& progress) override {
        const std::string& path = of(copy).path;
        asked.emplace_back(of(kept).path, path);
        if (before) before(path);
        if (contentOf(of(kept).path) != contentOf(path)) return End::differs;
        if (progress && !progress(0)) return End::stopped;
        shared.insert(path);
        return End::shared;
    }

private:
    struct File final : SharedFile {
        File(FakeBlockSharing& theSharing, std::string thePath)
            : sharing(theSharing), path(std::move(thePath)) {
            struct stat status;
            if (::lstat(path.c_str(), &status) != 0) throw FileError("share", path, errno);
            if (!S_ISREG(status.st_mode)) throw FileError("share", path, EINVAL);
        }
        FileStamp stamp() override {
            struct stat status;
            if (::lstat(path.c_str(), &status) != 0) throw FileError("share", path, errno);
            return stampFrom(status);
        }
        OwnSpace ownSpace() override {
            if (sharing.shared.contains(path)) return {};
            const auto known = sharing.spaces.find(path);
            return known == sharing.spaces.end() ? OwnSpace{stamp().length, true} : known->second;
        }

        FakeBlockSharing& sharing;
        std::string path;
    };

    static File& of(SharedFile& file) { return static_cast<File&>(file); }

    static std::string contentOf(const std::string& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
};

}  // namespace velto
