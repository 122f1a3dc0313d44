#include "platform/values/PlaceTable.h"

#include "platform/values/text.h"

namespace velto {
namespace {

/// Takes the next component off the front of `rest`; empty at the end.
std::string_view nextComponent(std::string_view& rest) {
    while (!rest.empty() && rest.front() == '/')
        rest.remove_prefix(1);
    const std::string_view component = rest.substr(0, rest.find('/'));
    rest.remove_prefix(component.size());
    return component;
}

}  // namespace

const Place* Place::child(std::string_view name) const {
    const auto found = children_.find(name);
    return found == children_.end() ? nullptr : found->second.get();
}

Place& PlaceTable::at(std::string_view path) {
    if (path.empty() || path.front() != '/') return elsewhere_;
    Place* place = &top_;
    for (auto name = nextComponent(path); !name.empty(); name = nextComponent(path)) {
        auto found = place->children_.find(name);
        if (found == place->children_.end()) {
            found = place->children_.emplace(std::string(name), std::make_unique<Place>()).first;
        }
        place = found->second.get();
    }
    return *place;
}

void PlaceTable::keepFlagged(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    if (name.size() >= path.size()) return;  // no folder above it
    at(path);
    at(path.substr(0, path.size() - name.size())).keepFlagged.emplace_back(name);
}

const Place* PlaceTable::find(std::string_view path) const {
    if (path.empty() || path.front() != '/') return nullptr;
    const Place* place = &top_;
    for (auto name = nextComponent(path); place != nullptr && !name.empty();
         name = nextComponent(path)) {
        place = place->child(name);
    }
    return place;
}

bool PlaceTable::leavesOut(std::string_view path) const {
    if (path.empty() || path.front() != '/') return false;
    const Place* place = &top_;
    for (auto name = nextComponent(path); !place->leftOut && !name.empty();
         name = nextComponent(path)) {
        place = place->child(name);
        if (place == nullptr) return false;
    }
    return place->leftOut;
}

}  // namespace velto
