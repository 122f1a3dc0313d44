#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "analysis/again/KeptWalk.h"
#include "platform/FolderChanges.h"

namespace velto {

/// Of when a kept walk is, and what it holds for.
struct KeptStamp {
    std::string conditions;  // see walkConditions
    ChangeMark mark;         // taken before the walk began
    double walked = 0;       // seconds since 1970, when the walk began
    double whole = 0;        // the same of the last one that read every folder

    bool operator==(const KeptStamp&) const = default;
};

namespace kept_walk_text {

/// A line that names the form and its version, numbers and names, and a checksum. No byte is NUL.
std::string encode(const KeptStamp& stamp, const KeptWalk& walk);

struct Decoded {
    KeptStamp stamp;
    KeptWalk walk;  // names point into the text
};

/// Nothing for what `encode` has not written whole, of any other version, or that cannot be a walk.
std::optional<Decoded> decode(std::string_view text);

/// The stamp alone, unchecked: enough to see that the rest is of no use.
std::optional<KeptStamp> decodeStamp(std::string_view text);

}  // namespace kept_walk_text
}  // namespace velto
