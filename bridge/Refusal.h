#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cleaning/TrashRecords.h"

namespace velto {

/// What the trash has refused of a selection, or of one item. Nothing has been moved then.
struct Refusal {
    struct Item {
        std::string path;  // empty where nobody can tell
        TrashError::Reason reason = TrashError::Reason::notFound;
    };
    std::vector<Item> items;        // never empty
    std::vector<std::string> rest;  // what would have been taken without them
};

/// The error that it is told as: its reason is that of the first item.
class RefusedSelection : public TrashError {
public:
    explicit RefusedSelection(Refusal refusal)
        : TrashError(refusal.items.front().reason), refusal_(std::move(refusal)) {}

    const Refusal& refusal() const { return refusal_; }

private:
    Refusal refusal_;
};

}  // namespace velto
