#include "platform/program_places.h"

#include <array>
#include <string_view>

#include "platform/values/text.h"

namespace velto {
namespace {

// Where each application has a folder of its own.
constexpr std::array<std::string_view, 8> homesOfApplications{
    "/opt/",       "/usr/lib/",       "/usr/lib64/",       "/usr/libexec/",
    "/usr/share/", "/usr/local/lib/", "/usr/local/share/", "/usr/lib32/"};

constexpr std::array<std::string_view, 2> homesOfSnaps{"/snap/", "/var/lib/snapd/snap/"};

/// The folder right below one of the homes of applications; empty for any other path. Multiarch
/// folders ("x86_64-linux-gnu") are shared by all.
std::string folderBelowHome(const std::string& path) {
    for (std::string_view home : homesOfApplications) {
        if (!path.starts_with(home)) continue;
        const std::size_t end = path.find('/', home.size());
        if (end == std::string::npos) return {};
        if (path.substr(0, end).ends_with("-linux-gnu")) return {};
        return path.substr(0, end);
    }
    return {};
}

}  // namespace

std::string folderOfProgram(const std::string& executable) {
    if (std::string own = folderBelowHome(executable); !own.empty()) return own;
    std::string folder = parentFolder(executable);
    const bool isNamedLikeIt =
        !folder.empty() && lastPathComponent(folder) == lastPathComponent(executable);
    return isNamedLikeIt ? folder : std::string();
}

std::vector<std::string> foldersNamedLike(const std::string& executable) {
    std::vector<std::string> folders;
    const std::string_view name = lastPathComponent(executable);
    if (name.empty()) return folders;
    for (std::string_view home : homesOfApplications)
        folders.push_back(std::string(home).append(name));
    return folders;
}

std::string snapOfProgram(const std::string& executable) {
    for (std::string_view home : homesOfSnaps) {
        if (!executable.starts_with(home)) continue;
        const std::size_t end = executable.find('/', home.size());
        if (end == std::string::npos) return {};
        std::string name = executable.substr(home.size(), end - home.size());
        return name == "bin" ? std::string() : name;
    }
    return {};
}

bool isPassingPlace(const std::string& executable, bool isReadOnly) {
    if (executable.find("/AppTranslocation/") != std::string::npos) return true;
    return isReadOnly && executable.starts_with("/Volumes/");
}

}  // namespace velto
