#include "platform/xdg_folders.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/values/text.h"

namespace velto {
namespace {

// The user's own folders of the xdg-user-dirs standard, by their usual names.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> userFolders{{
    {"XDG_PICTURES_DIR", "/Pictures"},
    {"XDG_VIDEOS_DIR", "/Videos"},
    {"XDG_MUSIC_DIR", "/Music"},
    {"XDG_DOWNLOAD_DIR", "/Downloads"},
    {"XDG_DOCUMENTS_DIR", "/Documents"},
    {"XDG_DESKTOP_DIR", "/Desktop"},
    {"XDG_TEMPLATES_DIR", "/Templates"},
    {"XDG_PUBLICSHARE_DIR", "/Public"},
}};

// Where programs keep what is no cache, also those that do not ask the environment.
constexpr std::array<std::string_view, 6> keptFolders{
    "/.config", "/.local/share", "/.local/state", "/.local/bin", "/.var/app", "/Applications"};

constexpr std::array<std::string_view, 2> secretFolders{"/.ssh", "/.gnupg"};

bool isControl(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F;
}

/// The value of a line XDG_NAME_DIR="value" without its quotes and backslashes; nothing for any
/// other line.
std::optional<std::pair<std::string, std::string>> userDirsLine(std::string_view line) {
    line.remove_prefix(std::min(line.size(), line.find_first_not_of(" \t")));
    const std::size_t equals = line.find("=\"");
    const std::size_t end = line.rfind('"');
    if (!line.starts_with("XDG_") || equals == std::string_view::npos || end <= equals + 1) {
        return std::nullopt;
    }
    std::string value;
    const std::string_view quoted = line.substr(equals + 2, end - equals - 2);
    for (std::size_t index = 0; index < quoted.size(); ++index) {
        if (quoted[index] == '\\' && index + 1 < quoted.size()) ++index;
        value += quoted[index];
    }
    return std::pair(std::string(line.substr(0, equals)), value);
}

}  // namespace

XdgFolders::XdgFolders(const std::string& home, const Environment& environment,
                       std::string_view userDirs, const Resolve& resolve)
    : home_(home), resolve_(resolve) {
    for (std::string_view name : secretFolders)
        secrets_.push_back(folder(home + std::string(name)));
    readUserFolders(userDirs);

    configuration = baseFolder(environment("XDG_CONFIG_HOME"), home + "/.config");
    data = baseFolder(environment("XDG_DATA_HOME"), home + "/.local/share");
    state = baseFolder(environment("XDG_STATE_HOME"), home + "/.local/state");

    pictures = userFolder("XDG_PICTURES_DIR", "/Pictures");
    movies = userFolder("XDG_VIDEOS_DIR", "/Videos");
    music = userFolder("XDG_MUSIC_DIR", "/Music");
    documents = userFolder("XDG_DOCUMENTS_DIR", "/Documents");
    desktop = userFolder("XDG_DESKTOP_DIR", "/Desktop");
    downloads = downloadsFolder();
    caches = cacheFolder(environment("XDG_CACHE_HOME"));
}

std::string XdgFolders::configurationFolder(const std::string& home, const Environment& environment,
                                            const Resolve& resolve) {
    return XdgFolders(
               home,
               [&](const std::string& name) {
                   return name == "XDG_CONFIG_HOME" ? environment(name) : std::nullopt;
               },
               "", resolve)
        .configuration;
}

XdgFolders::Folder XdgFolders::folder(const std::string& path) const {
    Folder found{.path = path, .resolved = resolve_ ? resolve_(path) : path};
    // Named through a link that leads to the home, it is a folder of the home all the same.
    if (!isAtOrBelow(path, home_) && isAtOrBelow(found.resolved, home_))
        found.path = found.resolved;
    return found;
}

/// Relative values are to be ignored (XDG Base Directory standard); one with control characters
/// could not be written into the files of other programs.
std::optional<XdgFolders::Folder> XdgFolders::stated(
    const std::optional<std::string>& value) const {
    if (!value || std::ranges::any_of(*value, isControl)) return std::nullopt;
    const std::string path = standardizedPath(*value);
    return path.empty() ? std::nullopt : std::optional(folder(path));
}

bool XdgFolders::holdsHome(const Folder& one) const {
    return isAtOrBelow(home_, one.path) || isAtOrBelow(home_, one.resolved) || one.path == "/" ||
           one.resolved == "/";
}

/// True when the folder is one of the others or lies above one, by its name or by where it leads.
bool XdgFolders::holdsAny(const Folder& one, const std::vector<Folder>& others) const {
    return std::ranges::any_of(others, [&](const Folder& other) {
        return isAtOrBelow(other.path, one.path) || isAtOrBelow(other.resolved, one.resolved);
    });
}

/// The other way round.
bool XdgFolders::isBelowAny(const Folder& one, const std::vector<Folder>& others) const {
    return std::ranges::any_of(others, [&](const Folder& other) {
        return isAtOrBelow(one.path, other.path) || isAtOrBelow(one.resolved, other.resolved);
    });
}

void XdgFolders::readUserFolders(std::string_view userDirs) {
    while (!userDirs.empty()) {
        const std::string_view line = userDirs.substr(0, userDirs.find('\n'));
        userDirs.remove_prefix(std::min(userDirs.size(), line.size() + 1));
        auto read = userDirsLine(line);
        if (!read) continue;
        auto& [variable, value] = *read;
        if (value == "$HOME" || value.starts_with("$HOME/")) value = home_ + value.substr(5);
        if (auto named = stated(value)) named_.insert_or_assign(variable, std::move(*named));
    }
    for (const auto& [variable, named] : named_) {
        if (!holdsHome(named)) own_.push_back(named);
    }
    // Also under the usual names: the files do not move when another name is given.
    for (const auto& [variable, name] : userFolders) {
        const Folder usual = folder(home_ + std::string(name));
        if (!holdsHome(usual)) own_.push_back(usual);
    }
}

std::string XdgFolders::userFolder(const std::string& variable, const std::string& name) const {
    const std::vector<Folder> bases{folder(configuration), folder(data), folder(state)};
    const auto isUsable = [&](const Folder& one) {
        return !holdsHome(one) && !holdsAny(one, bases) && !holdsAny(one, secrets_) &&
               !isBelowAny(one, secrets_);
    };
    const auto found = named_.find(variable);
    if (found != named_.end()) {
        // A role set to the home itself is how xdg-user-dirs says that the role is unused.
        if (found->second.path == home_ || found->second.resolved == home_) return {};
        if (isUsable(found->second)) return found->second.path;
    }
    const Folder usual = folder(home_ + name);
    return isUsable(usual) ? usual.path : std::string();
}

/// What has not been used for long is moved out of it: it is no folder of another role.
std::string XdgFolders::downloadsFolder() const {
    std::vector<Folder> others;
    for (const std::string* role : {&pictures, &movies, &music, &documents, &desktop}) {
        if (!role->empty()) others.push_back(folder(*role));
    }
    for (const char* variable : {"XDG_TEMPLATES_DIR", "XDG_PUBLICSHARE_DIR"}) {
        const auto found = named_.find(variable);
        if (found != named_.end() && !holdsHome(found->second)) others.push_back(found->second);
    }
    const std::string stated = userFolder("XDG_DOWNLOAD_DIR", "/Downloads");
    if (stated.empty() || !holdsAny(folder(stated), others)) return stated;
    const Folder usual = folder(home_ + "/Downloads");
    return holdsHome(usual) || holdsAny(usual, others) ? std::string() : usual.path;
}

/// Where programs look for their files must not be where the user keeps some.
std::string XdgFolders::baseFolder(const std::optional<std::string>& value,
                                   const std::string& standard) const {
    const auto one = stated(value);
    const bool isUsable = one && !holdsHome(*one) && !holdsAny(*one, own_) &&
                          !holdsAny(*one, secrets_) && !isBelowAny(*one, secrets_);
    return isUsable ? one->path : standard;
}

/// All that lies in it is taken for built again at will, so it shares nothing with any other role.
std::string XdgFolders::cacheFolder(const std::optional<std::string>& value) const {
    std::vector<Folder> others = own_;
    others.insert(others.end(), secrets_.begin(), secrets_.end());
    for (const std::string* role : {&configuration, &data, &state})
        others.push_back(folder(*role));
    for (std::string_view name : keptFolders)
        others.push_back(folder(home_ + std::string(name)));
    for (const auto& one : {stated(value), std::optional(folder(home_ + "/.cache"))}) {
        if (one && !holdsHome(*one) && !holdsAny(*one, others) && !isBelowAny(*one, others)) {
            return one->path;
        }
    }
    return {};
}

}  // namespace velto
