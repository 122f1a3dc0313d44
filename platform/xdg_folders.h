#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// What the environment and "user-dirs.dirs" say of a Linux home's folders, judged: a value that
/// would hand the user's own files to a role which others clear counts as unset. Paths are absolute
/// and standardised; empty is a role that this home lacks.
class XdgFolders {
public:
    using Environment = std::function<std::optional<std::string>(const std::string& name)>;
    /// A path without links, as far as it leads anywhere; the same path where it does not.
    using Resolve = std::function<std::string(const std::string& path)>;

    /// `home` is resolved. `userDirs` is the text of "user-dirs.dirs".
    XdgFolders(const std::string& home, const Environment& environment, std::string_view userDirs,
               const Resolve& resolve);

    std::string pictures, movies, music, downloads, documents, desktop;
    std::string configuration, data, state;
    std::string caches;

    /// $XDG_CONFIG_HOME, for finding "user-dirs.dirs": judged by the home alone.
    static std::string configurationFolder(const std::string& home, const Environment& environment,
                                           const Resolve& resolve);

private:
    /// A folder with what it leads to; one that leads nowhere leads to itself.
    struct Folder {
        std::string path;
        std::string resolved;
    };

    Folder folder(const std::string& path) const;
    std::optional<Folder> stated(const std::optional<std::string>& value) const;
    bool holdsHome(const Folder& one) const;
    bool holdsAny(const Folder& one, const std::vector<Folder>& others) const;
    bool isBelowAny(const Folder& one, const std::vector<Folder>& others) const;
    void readUserFolders(std::string_view userDirs);
    std::string userFolder(const std::string& variable, const std::string& name) const;
    std::string downloadsFolder() const;
    std::string baseFolder(const std::optional<std::string>& value,
                           const std::string& standard) const;
    std::string cacheFolder(const std::optional<std::string>& value) const;

    std::string home_;
    Resolve resolve_;
    std::map<std::string, Folder> named_;  // by variable, as the file has them
    std::vector<Folder> own_;              // of the user, whatever their role; never anybody else's
    std::vector<Folder> secrets_;
};

}  // namespace velto
