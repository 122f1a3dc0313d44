#include "uninstall/PackageRemoval.h"

#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "platform/DesktopEntry.h"
#include "platform/values/text.h"
#include "uninstall/essential_packages.h"

namespace velto {
namespace {

using Refusal = PackageError::Reason;

std::vector<std::string> namesOf(const std::vector<Package>& packages) {
    std::vector<std::string> names;
    for (const Package& package : packages)
        names.push_back(package.name);
    return names;
}

/// The first of them that must stay.
std::string keptAmong(const std::string& package, const std::vector<std::string>& others) {
    if (isEssentialPackage(package)) return package;
    const auto found = std::ranges::find_if(others, isEssentialPackage);
    return found == others.end() ? "" : *found;
}

/// For a shell: the text as one word.
std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char letter : text)
        word += letter == '\'' ? "'\\''" : std::string(1, letter);
    return word + "'";
}

struct Tool {
    const char* path;
    const char* command;  // {} is the file whose package is to go
};
/// The tools that people install with, and how each is asked for a file's package.
constexpr std::array tools{
    Tool{"/usr/bin/apt", "sudo apt remove $(dpkg-query -S {} | cut -d: -f1)"},
    Tool{"/usr/bin/dnf", "sudo dnf remove {}"},
    Tool{"/usr/bin/zypper", "sudo zypper remove $(rpm -qf {})"},
    Tool{"/usr/bin/pacman", "sudo pacman -R $(pacman -Qqo {})"},
};

}  // namespace

bool PackageRemoval::isForAllUsers(const std::string& desktopEntry) const {
    return platform_.layout.kind == HomeLayout::Kind::freedesktop &&
           desktopEntry.ends_with(desktopEntryExtension) &&
           standardizedPath(desktopEntry) == desktopEntry &&
           !isAtOrBelow(desktopEntry, platform_.layout.home);
}

std::optional<PackageRemoval::Owner> PackageRemoval::ownerOf(
    const std::string& desktopEntry) const {
    if (!isForAllUsers(desktopEntry)) return std::nullopt;
    for (const auto& service : platform_.packages) {
        if (auto package = service->owner(desktopEntry)) {
            return Owner{*service, std::move(*package)};
        }
    }
    return std::nullopt;
}

std::optional<PackagePlan> PackageRemoval::plan(const std::string& desktopEntry) const {
    try {
        const auto owner = ownerOf(desktopEntry);
        if (!owner) return std::nullopt;
        PackagePlan plan{.keeper = owner->service.keeper(),
                         .name = owner->package.name,
                         .others = {},
                         .kept = {},
                         .command = {}};
        // Nobody needs to be asked of what goes with it, and some refuse to think of that.
        if (isEssentialPackage(plan.name)) {
            plan.kept = plan.name;
            return plan;
        }
        plan.others = namesOf(owner->service.removedWith(owner->package));
        plan.kept = keptAmong(plan.name, plan.others);
        return plan;
    } catch (const PackageError& error) {
        if (error.reason() != Refusal::unavailable) throw;
        const std::string command = commandFor(desktopEntry);
        if (command.empty()) return std::nullopt;
        return PackagePlan{.keeper = PackageKeeper::distribution,
                           .name = {},
                           .others = {},
                           .kept = {},
                           .command = command};
    }
}

std::string PackageRemoval::commandFor(const std::string& desktopEntry) const {
    const auto tool = std::ranges::find_if(
        tools, [&](const Tool& each) { return platform_.files->exists(each.path); });
    if (tool == tools.end()) return {};
    return fmt::format(fmt::runtime(tool->command), quoted(desktopEntry));
}

void PackageRemoval::remove(const std::string& desktopEntry,
                            const std::vector<std::string>& shown) const {
    const auto owner = ownerOf(desktopEntry);
    if (!owner) throw PackageError(Refusal::missing, "no package has " + desktopEntry);
    // It may have come to more since the user was asked.
    const auto others = namesOf(owner->service.removedWith(owner->package));
    for (const std::string& other : others) {
        if (std::ranges::find(shown, other) == shown.end()) {
            throw PackageError(Refusal::changed, "would go as well: " + other);
        }
    }
    const std::string kept = keptAmong(owner->package.name, others);
    if (!kept.empty()) throw PackageError(Refusal::kept, "has to stay: " + kept);
    platform_.log->line(fmt::format("Velto ▶ desinstalador: se pide al sistema quitar {}",
                                    singleLine(owner->package.name)));
    owner->service.remove(owner->package, !others.empty());
}

}  // namespace velto
