#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/added_date.h"

namespace velto {

/// The trash of the user's system, not the program's own. On a freedesktop home its files lie in
/// "files", and "info" tells where each came from and when; on a Mac the folder holds them itself.
class SystemTrash {
public:
    struct Item {
        std::string name;  // last path component, as stored
        std::string path;  // absolute
        double since = 0;  // seconds since 1970 when it was put there
    };
    using AddedDate = std::function<std::optional<double>(const std::string& path)>;

    /// The platform outlives the object. `addedDate` tells when an item came into its folder.
    explicit SystemTrash(const Platform& platform, AddedDate addedDate = dateAddedToFolder)
        : platform_(platform), addedDate_(std::move(addedDate)) {}

    /// What lies at its top, by name. A trash that cannot be read has nothing. An item without a
    /// date of its own counts from its last modification.
    std::vector<Item> items() const;

    /// Removes what the trash notes about an item that is gone from it. A failure leaves a note
    /// about nothing, which desktops ignore.
    void forget(const std::string& path) const;

private:
    std::string filesFolder() const;
    std::string notePath(const std::string& name) const;
    std::optional<double> notedDate(const std::string& name) const;

    const Platform& platform_;
    AddedDate addedDate_;
};

/// The date in the text of a ".trashinfo" file, in seconds since 1970 ("DeletionDate", which a
/// freedesktop.org trash holds in local time); nothing when it has none that can be read.
std::optional<double> deletionDate(const std::string& note);

}  // namespace velto
