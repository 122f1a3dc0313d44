#include "maintenance/SystemTrash.h"

#include <algorithm>
#include <ctime>
#include <iomanip>
#include <sstream>

#include "platform/values/text.h"

namespace velto {
namespace {

constexpr ReadLimit noteLimit = anyFile(64 << 10);  // a path and a date

}  // namespace

std::optional<double> deletionDate(const std::string& note) {
    std::istringstream lines(note);
    constexpr std::string_view key = "DeletionDate=";
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with(key)) continue;
        std::istringstream text(line.substr(key.size()));
        std::tm date{};
        text >> std::get_time(&date, "%Y-%m-%dT%H:%M:%S");
        if (text.fail()) return std::nullopt;
        date.tm_isdst = -1;  // whatever it was then
        const std::time_t seconds = std::mktime(&date);
        if (seconds == -1) return std::nullopt;
        return static_cast<double>(seconds);
    }
    return std::nullopt;
}

std::vector<SystemTrash::Item> SystemTrash::items() const {
    std::vector<std::string> names;
    try {
        names = platform_.files->list(filesFolder());
    } catch (const FileError&) {
        return {};  // nothing was ever thrown away, or the system keeps its trash to itself
    }
    std::ranges::sort(names);
    std::vector<Item> items;
    for (const std::string& name : names) {
        const std::string path = filesFolder() + "/" + name;
        std::optional<double> since = notedDate(name);
        if (!since) since = addedDate_(path);
        if (!since) {
            const auto attributes = platform_.files->attributes(path);
            if (!attributes) continue;
            since = attributes->modified;
        }
        items.push_back({name, path, *since});
    }
    return items;
}

void SystemTrash::forget(const std::string& path) const {
    if (platform_.layout.kind != HomeLayout::Kind::freedesktop) return;
    if (platform_.files->exists(path)) return;
    try {
        platform_.files->removeAll(notePath(std::string(lastPathComponent(path))));
    } catch (const FileError&) {
        // See the declaration.
    }
}

std::string SystemTrash::filesFolder() const {
    const HomeLayout& layout = platform_.layout;
    return layout.kind == HomeLayout::Kind::freedesktop ? layout.systemTrash + "/files"
                                                        : layout.systemTrash;
}

std::string SystemTrash::notePath(const std::string& name) const {
    return platform_.layout.systemTrash + "/info/" + name + ".trashinfo";
}

std::optional<double> SystemTrash::notedDate(const std::string& name) const {
    if (platform_.layout.kind != HomeLayout::Kind::freedesktop) return std::nullopt;
    try {
        return deletionDate(platform_.files->read(notePath(name), noteLimit));
    } catch (const FileError&) {
        return std::nullopt;
    }
}

}  // namespace velto
