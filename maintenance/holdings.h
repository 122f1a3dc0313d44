#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cleaning/TrashRecords.h"
#include "maintenance/TakenItems.h"
#include "settings/VeltoSettings.h"

namespace velto {

/// How long what the maintenance has taken stays in the trash.
struct KeptFor {
    std::int64_t retention = 0;             // days, of everything
    std::optional<std::int64_t> cacheDays;  // of caches; nothing: as everything

    /// Days for what a rule took; an empty id is that of no rule that is known.
    std::int64_t days(std::string_view rule) const;
};

KeptFor keptFor(const VeltoSettings& settings);

/// An item in the trash that the maintenance has moved there.
struct HeldItem {
    std::string id;
    double taken = 0;        // seconds since 1970
    std::int64_t bytes = 0;  // on disk
    std::string rule;        // id, empty when it is not known

    bool operator==(const HeldItem&) const = default;
};

/// What the maintenance holds in the trash, and from when on a pass gives it back.
struct Holdings {
    struct Return {
        double from = 0;  // seconds since 1970, the earliest of a local day
        std::int64_t items = 0;
        std::int64_t bytes = 0;

        bool operator==(const Return&) const = default;
    };

    std::int64_t items = 0;
    std::int64_t bytes = 0;
    std::vector<Return> returns;  // by day, earliest first
    /// Days, by item id, of what does not stay as long as everything else.
    std::map<std::string, std::int64_t> days;
};

/// The items of the trash that a pass has moved, by the operations' kind. `bytes` by item id; an
/// item without an entry counts with the size that the trash noted.
std::vector<HeldItem> heldItems(const std::vector<TrashItem>& items,
                                const std::vector<Operation>& operations,
                                const std::map<std::string, std::int64_t>& bytes,
                                const TakenItems& taken);

Holdings holdings(const std::vector<HeldItem>& held, const KeptFor& kept);

/// Bytes of caches that the trash comes to hold when caches of `cacheBytes` are made again between
/// any two passes: each pass takes them, and what it took stays for `days`.
std::int64_t foretoldBytes(std::int64_t cacheBytes, std::int64_t days, std::string_view frequency);

}  // namespace velto
