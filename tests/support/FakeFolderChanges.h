#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/FolderChanges.h"

namespace velto {

/// Tells what the test says of changes; nothing as long as it has no history.
class FakeFolderChanges final : public FolderChanges {
public:
    std::optional<ChangeMark> mark(const std::string&) override {
        if (!hasHistory) return std::nullopt;
        return ChangeMark{.volume = volume, .event = event};
    }
    std::optional<std::vector<FolderChange>> since(const ChangeMark& mark, const std::string&,
                                                   const CancellationFlag&) override {
        asked.push_back(mark);
        return changes;
    }

    bool hasHistory = false;
    std::string volume = "volume";
    std::uint64_t event = 1;
    std::optional<std::vector<FolderChange>> changes = std::vector<FolderChange>();
    std::vector<ChangeMark> asked;
};

}  // namespace velto
