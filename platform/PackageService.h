#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/ToolRunner.h"

namespace velto {

/// Who has installed an application for all users and keeps the record of it.
enum class PackageKeeper { distribution, flatpak, snap };

/// An installed package, as its keeper knows it.
struct Package {
    std::string name;        // what people call it by: "gnome-maps"
    std::string identifier;  // what the keeper calls it by: "gnome-maps;43.4-1;amd64;installed"

    bool operator==(const Package&) const = default;
};

class PackageError : public std::runtime_error {
public:
    enum class Reason {
        unavailable,  // nobody answers for the keeper
        refused,      // the user said no, or may not
        missing,      // there is no such package
        busy,         // another one installs or removes something
        changed,      // more would go than the user has seen
        kept,         // something would go that must stay
        failed        // what() tells, in the keeper's own words
    };

    PackageError(Reason reason, const std::string& what)
        : std::runtime_error(what), reason_(reason) {}

    Reason reason() const { return reason_; }

private:
    Reason reason_;
};

/// Throws PackageError unless the flatpak tool has done what it was asked.
void requireFlatpaksSuccess(const ToolResult& ended);

/// What one keeper knows of its packages, and removes. The keeper itself asks the user for leave;
/// this program never has any of its own. Blocking, on any thread but the main one; every function
/// throws PackageError.
class PackageService {
public:
    virtual ~PackageService() = default;

    virtual PackageKeeper keeper() const = 0;

    /// The package that the application of a desktop entry (an absolute path) belongs to; nothing
    /// when it is none of this keeper's.
    virtual std::optional<Package> owner(const std::string& desktopEntry) = 0;

    /// What else would go with a package, in the keeper's order.
    virtual std::vector<Package> removedWith(const Package& package) = 0;

    /// Removes a package for all users, and `withOthers` what needs it. May take as long as the
    /// user takes to answer.
    virtual void remove(const Package& package, bool withOthers) = 0;
};

}  // namespace velto
