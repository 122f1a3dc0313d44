#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cleaning/further/tool_measures.h"
#include "platform/Platform.h"

namespace velto {

/// Something that is installed.
struct InstalledFlatpak {
    std::string ref;       // "org.gnome.Platform/x86_64/45"
    std::string runtime;   // that an application runs on, the same form; empty for a runtime
    bool isUsers = false;  // in the user's own installation, else in the system's

    auto operator<=>(const InstalledFlatpak&) const = default;
};

/// What an application's or a runtime's own file of metadata says of others.
struct FlatpakMetadata {
    /// Extensions that it takes up: of this name, or that name and more after a full stop.
    struct Extension {
        std::string name;
        std::vector<std::string> branches;

        bool operator==(const Extension&) const = default;
    };
    std::string sdk;          // that it was made with; empty for none
    std::string extensionOf;  // what it adds to; empty for no extension
    std::vector<Extension> extensions;

    bool operator==(const FlatpakMetadata&) const = default;
};

/// Where Flatpak keeps its two usual installations.
struct FlatpakInstallations {
    std::string user;
    std::string system = "/var/lib/flatpak";
};

/// What `flatpak uninstall --unused` would give back at least: the runtimes that no installed
/// application runs on or is made with, nor anybody has pinned, and the extensions that nothing of
/// what stays takes up. Of their files only those count that nothing which stays has as well
/// (Flatpak keeps equal files once, as names of one file of its store). Nothing when Flatpak does
/// not tell, or metadata cannot be read. Blocks while the tool works and the unused runtimes are
/// walked; changes nothing.
std::optional<ToolMeasure> measureUnusedFlatpaks(const Platform& platform,
                                                 const std::vector<std::string>& tools,
                                                 const FlatpakInstallations& installations);

// What it is made of. Pure.

/// What `flatpak list --app --columns=ref,runtime,installation` and `flatpak list --runtime --all
/// --columns=ref,installation` answer: a line each, with tabs between. Nothing when a line is none,
/// or tells of an installation that is neither the user's nor the system's.
std::optional<std::vector<InstalledFlatpak>> installedApplications(std::string_view answer);
std::optional<std::vector<InstalledFlatpak>> installedRuntimes(std::string_view answer);

/// The patterns in what `flatpak pin` answers.
std::vector<std::string> pinnedPatterns(std::string_view answer);

/// flatpak-pin(1): "*" stands for any text, and what a pattern leaves out fits everything.
bool fitsPattern(std::string_view ref, std::string_view pattern);

/// flatpak-metadata(5); `branch` is that of what it tells about.
FlatpakMetadata flatpakMetadata(std::string_view text, std::string_view branch);

}  // namespace velto
