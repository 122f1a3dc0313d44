#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/PackageService.h"
#include "platform/Platform.h"

namespace velto {

/// How an application goes that somebody else has installed for all users.
struct PackagePlan {
    PackageKeeper keeper = PackageKeeper::distribution;
    std::string name;                 // of the package; empty when nobody can tell
    std::vector<std::string> others;  // packages that would go with it
    std::string kept;                 // the one among them all that must stay, so nothing goes
    std::string command;              // what to type where nobody answers for the keeper

    bool operator==(const PackagePlan&) const = default;
};

/// Removes applications as the system does it, by whoever keeps the record of what is installed.
/// Blocking, on any thread but the main one.
class PackageRemoval {
public:
    /// Outlives the object.
    explicit PackageRemoval(const Platform& platform) : platform_(platform) {}

    /// What removing the application of a desktop entry comes to; nothing when it is no package.
    /// Removes nothing. Throws PackageError for a keeper that answers with a failure.
    std::optional<PackagePlan> plan(const std::string& desktopEntry) const;

    /// Removes the package of an entry. What goes with it is what was shown, or less: for anything
    /// else, and for what must stay, it throws PackageError, and nothing has gone.
    void remove(const std::string& desktopEntry, const std::vector<std::string>& shown) const;

private:
    struct Owner {
        PackageService& service;
        Package package;
    };
    std::optional<Owner> ownerOf(const std::string& desktopEntry) const;
    bool isForAllUsers(const std::string& desktopEntry) const;
    std::string commandFor(const std::string& desktopEntry) const;

    const Platform& platform_;
};

}  // namespace velto
