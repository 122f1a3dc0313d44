#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "platform/Platform.h"

namespace velto {

/// What all that is installed on a Linux machine is called, whoever installed it and whether or not
/// it is shown to the user: to tell what is not there any more, and never to be wrong about what
/// is. Blocking; never throws.
class InstalledNames {
public:
    /// Folders whose entries are named for what is installed. Those of the home are the layout's.
    struct Places {
        std::vector<std::string> programs;      // of programs and applications' own folders
        std::vector<std::string> packages;      // of files "<package>.list"
        std::vector<std::string> descriptions;  // of files "<identifier>.<kind>"
        std::vector<std::string> entries;       // of desktop entries, beside the layout's
        std::vector<std::string> flatpaks;      // of installations of Flatpak
        std::vector<std::string> moreFlatpaks;  // of files that name further installations
        std::vector<std::string> containers;    // of what runs with programs of its own
    };
    static Places placesOf(const HomeLayout& layout);

    InstalledNames(const Platform& platform, const Places& places);

    /// True for an identifier ("org.acme.Foo"), also in other letters, that anything installed has,
    /// is a part of or has as a part, and for one whose last word is the name of a program.
    bool hasIdentifier(std::string_view identifier) const;

    /// True when something installed is called that, whatever the case.
    bool hasName(std::string_view name) const;

    /// True when a Flatpak of that identifier is installed, for anybody.
    bool hasFlatpak(std::string_view identifier) const;

    /// False where an installation of Flatpak could not be looked at: then no Flatpak is known to
    /// be gone.
    bool knowsFlatpaks() const { return knowsFlatpaks_; }

    /// False where programs may be installed that cannot be seen from here (in a container that
    /// shares the home): then nothing but a Flatpak is known to be gone.
    bool knowsPrograms() const { return knowsPrograms_; }

private:
    using Names = std::unordered_set<std::string>;

    void add(std::string_view name);
    void addEntries(const Platform& platform, const Places& places);
    void addEntry(const FileManager& files, const std::string& path);
    void addRunning(RunningApplications& running);
    void addFlatpaks(const FileManager& files, const Places& places);
    void addInstallation(const FileManager& files, const std::string& folder);

    Names names_;     // lower case
    Names flatpaks_;  // lower case
    bool knowsFlatpaks_ = true;
    bool knowsPrograms_ = true;
};

}  // namespace velto
