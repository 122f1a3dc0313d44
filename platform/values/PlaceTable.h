#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velto {

/// What a walk is told about one path. A folder that has no place, and so nothing below it has one,
/// costs the walk no comparison of names.
struct Place {
    bool leftOut = false;      // not handed out, and with everything below it not entered
    std::uint32_t reason = 0;  // why it is left out: the visitor's own
    std::uint32_t role = 0;    // the visitor's own, 0 for none
    std::vector<std::string> keepFlagged;  // names directly inside that are walked although flagged

    /// The place of the entry `name` inside this one; null when neither it nor anything below it
    /// was named.
    const Place* child(std::string_view name) const;

private:
    friend class PlaceTable;
    std::map<std::string, std::unique_ptr<Place>, std::less<>> children_;
};

/// The places of one walk by absolute path. Filled before the walk, then only read, so that all
/// its threads may share it. Paths are compared byte by byte and component by component:
/// "Music" says nothing about "Musicals".
class PlaceTable {
public:
    /// The place at `path`, made when it is missing. A path that is not absolute gets the place of
    /// nothing (it is kept, and no walk meets it).
    Place& at(std::string_view path);

    /// Leaves out `path` and everything below it. Of several reasons for one path the last counts.
    void leaveOut(std::string_view path, std::uint32_t reason = 0) {
        Place& place = at(path);
        place.leftOut = true;
        place.reason = reason;
    }

    /// Walks the folder at `path` although its file system flags it hidden.
    void keepFlagged(std::string_view path);

    /// The place at `path`, null when nothing at or below it was named.
    const Place* find(std::string_view path) const;

    /// True when `path` or a folder above it is left out.
    bool leavesOut(std::string_view path) const;

private:
    Place top_;
    Place elsewhere_;
};

}  // namespace velto
