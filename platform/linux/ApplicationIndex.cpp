#include "platform/linux/ApplicationIndex.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/linux/kernel_file.h"
#include "platform/values/text.h"

namespace velto {
namespace {

// Where each application has a folder of its own.
constexpr std::array<std::string_view, 8> homesOfApplications{
    "/opt/",       "/usr/lib/",       "/usr/lib64/",       "/usr/libexec/",
    "/usr/share/", "/usr/local/lib/", "/usr/local/share/", "/usr/lib32/"};

/// The folder right below one of the homes of applications; empty for any other path. Multiarch
/// folders ("x86_64-linux-gnu") are shared by all.
std::string ownFolder(const std::string& path) {
    for (std::string_view home : homesOfApplications) {
        if (!path.starts_with(home)) continue;
        const std::size_t end = path.find('/', home.size());
        if (end == std::string::npos) return {};
        if (path.substr(0, end).ends_with("-linux-gnu")) return {};
        return path.substr(0, end);
    }
    return {};
}

/// Everything below it belongs to the application whose program lies in it: a folder below a home
/// of applications, or one that is named like the program.
std::string folderOfProgram(const std::string& executable) {
    if (std::string own = ownFolder(executable); !own.empty()) return own;
    std::string folder = parentFolder(executable);
    const bool isNamedLikeIt =
        !folder.empty() && lastPathComponent(folder) == lastPathComponent(executable);
    return isNamedLikeIt ? folder : std::string();
}

/// systemd.unit(5): "\x2d" stands for a hyphen, and so on.
std::string unescaped(std::string_view unit) {
    std::string text;
    while (!unit.empty()) {
        int code = 0;
        const bool isEscape =
            unit.starts_with("\\x") && unit.size() >= 4 &&
            std::from_chars(unit.data() + 2, unit.data() + 4, code, 16).ptr == unit.data() + 4;
        text += isEscape ? static_cast<char>(code) : unit.front();
        unit.remove_prefix(isEscape ? 4 : 1);
    }
    return text;
}

void dropFrom(std::string_view& text, std::size_t position) {
    text = text.substr(0, std::min(text.size(), position));
}

bool dropEnd(std::string_view& text, std::string_view end) {
    if (!text.ends_with(end)) return false;
    text.remove_suffix(end.size());
    return true;
}

std::string applicationInUnit(std::string_view unit) {
    if (unit.starts_with("snap.") && dropEnd(unit, ".scope")) {
        dropFrom(unit, unit.find('-', unit.rfind('.')));
        unit.remove_prefix(5);
        std::string name(unit);
        std::ranges::replace(name, '.', '_');
        return name;
    }
    if (!unit.starts_with("app-")) return {};
    if (dropEnd(unit, ".scope")) {
        const std::size_t number = unit.rfind('-');
        if (number > 3) dropFrom(unit, number);
    } else if (dropEnd(unit, ".service")) {
        dropFrom(unit, unit.find('@'));
    } else {
        return {};
    }
    return unescaped(unit.substr(unit.rfind('-') + 1));
}

}  // namespace

std::string applicationInControlGroup(std::string_view controlGroup) {
    while (!controlGroup.empty()) {
        std::string_view line = nextLine(controlGroup);
        // The innermost unit that is an application's.
        while (!line.empty()) {
            const std::size_t slash = line.rfind('/');
            if (slash == std::string_view::npos) break;
            std::string found = applicationInUnit(line.substr(slash + 1));
            if (!found.empty()) return found;
            line = line.substr(0, slash);
        }
    }
    return {};
}

ApplicationIndex::ApplicationIndex(const std::vector<ListedApplication>& applications) {
    for (const ListedApplication& listed : applications) {
        const auto& app = applications_.emplace_back(std::make_unique<const RunningApp>(
            RunningApp{.name = listed.name,
                       .bundle = listed.identifier,
                       .path = listed.path,
                       .isForPeople = true}));  // only entries that are shown are listed
        identifiers_.emplace(listed.identifier, app.get());
        if (listed.startsAnything || listed.executable.empty()) continue;
        executables_.emplace(listed.executable, app.get());
        if (std::string folder = folderOfProgram(listed.executable); !folder.empty()) {
            folders_.emplace(std::move(folder), app.get());
            continue;
        }
        // A program in a shared folder is often a script that starts what lies in a folder of the
        // same name.
        const std::string name(lastPathComponent(listed.executable));
        for (std::string_view home : homesOfApplications) {
            folders_.emplace(std::string(home) + name, app.get());
        }
    }
}

const RunningApp* ApplicationIndex::find(std::string_view controlGroup,
                                         const std::string& executable) const {
    const auto unit = identifiers_.find(applicationInControlGroup(controlGroup));
    if (unit != identifiers_.end()) return unit->second;
    const auto program = executables_.find(executable);
    return program != executables_.end() ? program->second : byFolder(executable);
}

const RunningApp* ApplicationIndex::byFolder(const std::string& executable) const {
    for (std::string folder = parentFolder(executable); !folder.empty();
         folder = parentFolder(folder)) {
        const auto found = folders_.find(folder);
        if (found != folders_.end()) return found->second;
    }
    return nullptr;
}

}  // namespace velto
