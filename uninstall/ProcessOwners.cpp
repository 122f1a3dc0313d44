#include "uninstall/ProcessOwners.h"

#include <algorithm>

#include "platform/program_places.h"
#include "platform/values/text.h"
#include "uninstall/desktop_applications.h"

namespace velto {
namespace {

constexpr std::size_t nobody = static_cast<std::size_t>(-1);

/// What is started without a word of its own, or with options alone, is the program itself. With
/// anything else it may be one of many things that the program does ("xterm -e top").
bool isProgramItself(const std::vector<std::string>& arguments) {
    return std::ranges::all_of(arguments, [](const std::string& argument) {
        return argument.starts_with('-') && argument != "-e" && !argument.starts_with("--app");
    });
}

}  // namespace

ProcessOwners::ProcessOwners(const std::vector<DesktopApplication>& applications) {
    owners_.reserve(applications.size());
    for (const DesktopApplication& application : applications) {
        const std::size_t owner = owners_.size();
        owners_.push_back({application.entry.bid, application.entry.path});
        entries_.emplace(application.id, Known{owner});
        if (!application.flatpak.empty()) flatpaks_.emplace(application.flatpak, Known{owner});
        if (!application.snap.empty()) snaps_.emplace(application.snap, Known{owner});
        if (!application.script.empty()) programs_.emplace(application.script, Known{owner});
        if (application.isIdentified) addProgram(application, owner);
    }
}

void ProcessOwners::addProgram(const DesktopApplication& application, std::size_t owner) {
    const std::string& program = application.executable;
    const bool isItself = isProgramItself(application.arguments);
    const bool isOfHome = isAtOrBelow(program, application.entry.path);
    programs_.emplace(program, Known{owner, isItself || isOfHome});
    if (isOfHome && program != application.entry.path) {
        folders_[application.entry.path] = {owner, true};
        return;
    }
    if (std::string folder = folderOfProgram(program); !folder.empty()) {
        // A folder of another name may hold more than this application.
        const bool isNamedLikeIt = lastPathComponent(folder) == lastPathComponent(program);
        addFolder(folder, {owner, isItself && isNamedLikeIt});
        return;
    }
    for (const std::string& folder : foldersNamedLike(program))
        addFolder(folder, {owner, isItself});
}

void ProcessOwners::addFolder(const std::string& folder, Known known) {
    const auto [place, isNew] = folders_.try_emplace(folder, known);
    if (!isNew && place->second.owner != known.owner) place->second = {nobody, false};
}

ProcessOwners::Match ProcessOwners::lookUp(const Table& table, const std::string& key) const {
    const auto found = key.empty() ? table.end() : table.find(key);
    if (found == table.end() || found->second.owner == nobody) return {};
    return {&owners_[found->second.owner], found->second.isCertain};
}

ProcessOwners::Match ProcessOwners::inFolder(const std::string& program) const {
    for (std::string folder = parentFolder(program); !folder.empty();
         folder = parentFolder(folder)) {
        if (folders_.contains(folder)) return lookUp(folders_, folder);
    }
    return {};
}

ProcessOwners::Match ProcessOwners::ofProgram(const std::string& program) const {
    const Match exactly = lookUp(programs_, program);
    return exactly.owner != nullptr ? exactly : inFolder(program);
}

ProcessOwners::Match ProcessOwners::find(const RunningApplication& process,
                                         const std::string& resolvedScript) const {
    // Inside a sandbox paths mean other files.
    if (!process.flatpak.empty()) return lookUp(flatpaks_, process.flatpak);
    if (!process.snap.empty()) {
        const bool isOfSnap = process.entry.starts_with(process.snap + "_");
        const Match command = isOfSnap ? lookUp(entries_, process.entry) : Match{};
        return command.owner != nullptr ? command : lookUp(snaps_, process.snap);
    }
    Match uncertain;
    for (const Match& match : {ofProgram(process.executable), ofProgram(process.script),
                               ofProgram(resolvedScript), lookUp(entries_, process.entry)}) {
        if (match.owner == nullptr) continue;
        if (match.isCertain) return match;
        if (uncertain.owner == nullptr) uncertain = match;
    }
    return uncertain;
}

ProcessOwners::Match ProcessOwners::of(const RunningApplication& process) const {
    return find(process, "");
}

ProcessOwners::Match ProcessOwners::of(const RunningApplication& process,
                                       const FileManager& files) const {
    std::string resolved;
    try {
        if (!process.script.empty()) resolved = files.resolved(process.script);
    } catch (const FileError&) {
        // It is gone; what was said on the command line still counts.
    }
    return find(process, resolved);
}

}  // namespace velto
