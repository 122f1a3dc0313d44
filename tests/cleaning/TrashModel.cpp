#include "TrashModel.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace velto {

std::vector<std::string> onceEach(const std::vector<std::string>& paths) {
    std::vector<std::string> once;
    for (const std::string& path : paths) {
        if (std::ranges::find(once, path) == once.end()) once.push_back(path);
    }
    return once;
}

bool TrashModel::canMove(const std::vector<std::string>& paths) const {
    return std::ranges::all_of(paths, [&](const auto& path) { return home.contains(path); });
}

void TrashModel::move(const std::vector<std::string>& paths, const std::vector<std::string>& ids,
                      const std::string& operation, double now) {
    std::size_t index = 0;
    for (const std::string& path : onceEach(paths)) {
        const auto node = home.extract(path);
        trash.push_back({.id = ids.at(index++),
                         .operation = operation,
                         .path = path,
                         .content = node.mapped(),
                         .taken = now});
    }
}

bool TrashModel::restore(const std::string& id) {
    const auto item = find(id);
    if (item == trash.end() || item->hasVanished) return false;
    home[freePlace(item->path)] = item->content;
    trash.erase(item);
    return true;
}

bool TrashModel::undo(const std::string& operation) {
    const std::vector<Item> items = itemsOf(operation);
    return std::ranges::all_of(items, [&](const Item& item) { return restore(item.id); });
}

bool TrashModel::remove(const std::string& id) {
    const auto item = find(id);
    if (item == trash.end() || item->hasVanished) return false;
    trash.erase(item);
    return true;
}

void TrashModel::purge(double cutoff) {
    std::erase_if(trash, [&](const Item& item) { return item.taken < cutoff; });
}

std::vector<TrashModel::Item> TrashModel::itemsOf(const std::string& operation) const {
    std::vector<Item> items;
    std::ranges::copy_if(trash, std::back_inserter(items),
                         [&](const Item& item) { return item.operation == operation; });
    return items;
}

std::vector<TrashModel::Item>::iterator TrashModel::find(const std::string& id) {
    return std::ranges::find(trash, id, &Item::id);
}

std::string TrashModel::freePlace(const std::string& path) const {
    const std::filesystem::path wanted(path);
    std::filesystem::path candidate = wanted;
    for (int number = 1; home.contains(candidate); ++number) {
        candidate = wanted;
        candidate.replace_filename(wanted.stem().string() + " (restaurado " +
                                   std::to_string(number) + ")" + wanted.extension().string());
    }
    return candidate;
}

}  // namespace velto
