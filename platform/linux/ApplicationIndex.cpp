#include "platform/linux/ApplicationIndex.h"

#include "platform/linux/application_unit.h"
#include "platform/program_places.h"
#include "platform/values/text.h"

namespace velto {

ApplicationIndex::ApplicationIndex(const std::vector<ListedApplication>& applications) {
    for (const ListedApplication& listed : applications) {
        const auto& app = applications_.emplace_back(std::make_unique<const RunningApp>(
            RunningApp{.name = listed.name,
                       .bundle = listed.identifier,
                       .path = listed.path,
                       .isForPeople = true}));  // only entries that are shown are listed
        identifiers_.emplace(listed.identifier, app.get());
        if (!listed.flatpak.empty()) flatpaks_.emplace(listed.flatpak, app.get());
        if (!listed.snap.empty()) snaps_.emplace(listed.snap, app.get());
        if (!listed.script.empty()) executables_.emplace(listed.script, app.get());
        if (listed.startsAnything || listed.executable.empty()) continue;
        executables_.emplace(listed.executable, app.get());
        if (std::string folder = folderOfProgram(listed.executable); !folder.empty()) {
            folders_.emplace(std::move(folder), app.get());
            continue;
        }
        // A program in a shared folder is often a script that starts what lies in a folder of the
        // same name.
        for (std::string& folder : foldersNamedLike(listed.executable))
            folders_.emplace(std::move(folder), app.get());
    }
}

const RunningApp* ApplicationIndex::find(std::string_view controlGroup,
                                         const std::string& executable,
                                         const std::string& script) const {
    const ApplicationUnit unit = applicationUnitIn(controlGroup);
    for (const RunningApp* found :
         {lookUp(flatpaks_, unit.flatpak), lookUp(identifiers_, unit.entry),
          lookUp(snaps_, unit.snap.empty() ? snapOfProgram(executable) : unit.snap),
          lookUp(executables_, executable), lookUp(executables_, script), byFolder(executable),
          byFolder(script)}) {
        if (found != nullptr) return found;
    }
    return nullptr;
}

const RunningApp* ApplicationIndex::identified(const std::string& identifier) const {
    return lookUp(identifiers_, identifier);
}

const RunningApp* ApplicationIndex::ofFlatpak(const std::string& identifier) const {
    return lookUp(flatpaks_, identifier);
}

const RunningApp* ApplicationIndex::lookUp(const Table& table, const std::string& key) {
    const auto found = key.empty() ? table.end() : table.find(key);
    return found == table.end() ? nullptr : found->second;
}

const RunningApp* ApplicationIndex::byFolder(const std::string& executable) const {
    for (std::string folder = parentFolder(executable); !folder.empty();
         folder = parentFolder(folder)) {
        if (const RunningApp* found = lookUp(folders_, folder)) return found;
    }
    return nullptr;
}

}  // namespace velto
