#include "uninstall/kept_places.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/values/text.h"

namespace velto {
namespace {

using Extent = KeptPlace::Extent;
using Role = std::string HomeLayout::*;

std::string_view takePiece(std::string_view& rest, char separator) {
    const std::string_view piece = rest.substr(0, rest.find(separator));
    rest.remove_prefix(std::min(rest.size(), piece.size() + 1));
    return piece;
}

bool isOwner(const KeptPlace& row, std::string_view identifier) {
    for (std::string_view rest = row.owners; !rest.empty();) {
        if (takePiece(rest, ' ') == identifier) return !identifier.empty();
    }
    return false;
}

/// The table by base: what is kept, and the folders on the way to it, both below the base and in
/// small letters.
struct Index {
    using Rows = std::unordered_map<std::string, const KeptPlace*>;

    struct Base {
        Role role;
        Rows rows;
        std::unordered_set<std::string> holders;
    };
    std::vector<Base> bases;

    Index() {
        for (const KeptPlace& row : keptPlaces()) {
            Base& base = baseOf(row.base);
            if (row.names.empty()) base.rows.emplace("", &row);
            for (std::string_view rest = row.names; !rest.empty();) {
                std::string name = lowerCasedAscii(takePiece(rest, '|'));
                base.holders.insert("");
                for (std::size_t at = name.find('/'); at != name.npos; at = name.find('/', at + 1))
                    base.holders.insert(name.substr(0, at));
                base.rows.emplace(std::move(name), &row);
            }
        }
    }

private:
    Base& baseOf(Role role) {
        const auto found = std::ranges::find(bases, role, &Base::role);
        if (found != bases.end()) return *found;
        return bases.emplace_back(Base{.role = role, .rows = {}, .holders = {}});
    }
};

const Index& index() {
    static const Index table;
    return table;
}

/// What of a path lies below the base; nothing for the base itself.
std::string belowBase(std::string_view path, std::string_view base) {
    return path.size() == base.size() ? std::string()
                                      : lowerCasedAscii(path.substr(base.size() + 1));
}

/// The longest place of a base that is the path or lies above it.
KeptMatch matchIn(const Index::Base& base, std::string_view folder, std::string_view path) {
    for (std::string below = belowBase(path, folder);;) {
        if (const auto found = base.rows.find(below); found != base.rows.end()) {
            return {.row = found->second,
                    .length = folder.size() + (below.empty() ? 0 : 1 + below.size())};
        }
        if (below.empty()) return {};
        const std::size_t slash = below.rfind('/');
        below.resize(slash == std::string::npos ? 0 : slash);
    }
}

/// Whether a kept place lies below the path.
bool holdsKept(std::string_view path, const HomeLayout& home) {
    return std::ranges::any_of(index().bases, [&](const Index::Base& base) {
        const std::string& folder = home.*base.role;
        if (folder.empty()) return false;  // a role that this home lacks
        if (path.size() < folder.size()) return isAtOrBelow(folder, path);
        return isAtOrBelow(path, folder) && base.holders.contains(belowBase(path, folder));
    });
}

/// What the longest place says, without regard to profiles.
bool staysBy(const KeptMatch& match, std::string_view path) {
    if (match.row == nullptr || match.row->extent == Extent::profile) return false;
    return match.row->extent == Extent::everything || match.length == path.size();
}

}  // namespace

KeptMatch keptPlaceOf(std::string_view path, const HomeLayout& home) {
    KeptMatch best;
    if (home.kind != HomeLayout::Kind::freedesktop) return best;
    for (const Index::Base& base : index().bases) {
        const std::string& folder = home.*base.role;
        if (folder.empty() || !isAtOrBelow(path, folder)) continue;
        const KeptMatch match = matchIn(base, folder, path);
        if (match.length > best.length) best = match;
    }
    return best;
}

bool isKeptFromAll(std::string_view path, const HomeLayout& home) {
    if (home.kind != HomeLayout::Kind::freedesktop) return false;
    return staysBy(keptPlaceOf(path, home), path) || holdsKept(path, home);
}

bool isKept(std::string_view path, const HomeLayout& home, std::string_view identifier) {
    if (home.kind != HomeLayout::Kind::freedesktop) return false;
    const KeptMatch match = keptPlaceOf(path, home);
    const bool isOfAnother = match.row != nullptr && match.row->extent == Extent::profile &&
                             !isOwner(*match.row, identifier);
    return isOfAnother || staysBy(match, path) || holdsKept(path, home);
}

bool isProfile(std::string_view path, const HomeLayout& home) {
    const KeptMatch match = keptPlaceOf(path, home);
    return match.row != nullptr && match.row->extent == Extent::profile;
}

bool isInProgramFolder(std::string_view path, const HomeLayout& home) {
    const KeptMatch match = keptPlaceOf(path, home);
    return match.row != nullptr && match.row->extent == Extent::programs &&
           path.size() > match.length;
}

}  // namespace velto
