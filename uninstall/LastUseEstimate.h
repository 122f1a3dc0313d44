#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/Platform.h"

namespace velto {

/// When an application was last used, as far as the changes of its own files tell. A constant
/// object may be used from several threads.
class LastUseEstimate {
public:
    /// The platform outlives the object.
    explicit LastUseEstimate(const Platform& platform);

    /// Lists the folders, so that `of` need not ask for what is in none of them: worth it for many
    /// applications. What comes into being afterwards may go unseen.
    void listFolders();

    /// The latest change, seconds since 1970, of the files that carry this identifier; nothing
    /// when there are none.
    std::optional<double> of(const std::string& bundleID) const;

private:
    struct Place {
        std::string folder;
        std::string_view suffix;  // what follows the identifier there
        // In small letters; nothing while they are not known.
        std::optional<std::unordered_set<std::string>> names;
        bool mayBeListed = true;
    };

    const FileManager& files_;
    std::vector<Place> places_;
};

}  // namespace velto
