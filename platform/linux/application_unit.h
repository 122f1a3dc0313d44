#pragma once

#include <string>
#include <string_view>

namespace velto {

/// To which application a process belongs, as the unit tells under which it runs. Empty where the
/// unit does not tell.
struct ApplicationUnit {
    std::string entry;    // id of a desktop entry
    std::string flatpak;  // identifier of a Flatpak
    std::string snap;     // (instance) name of a Snap

    bool operator==(const ApplicationUnit&) const = default;
};

/// The application in the name of the innermost unit of one that /proc/<pid>/cgroup names:
/// - "app-<launcher>-<id>-<number>.scope", "app-<launcher>-<id>@<number>.service" (the systemd
///   project's rules for desktop environments; the launcher may be missing);
/// - "app-flatpak-<id>-<number>.scope", of an older Flatpak "flatpak-<id>-<number>.scope";
/// - "dbus-:1.2-<id>@<number>.service" of one that was started by a message;
/// - "snap.<name>.<command>-<uuid>.scope", of an older snapd with a full stop before the UUID, with
///   a number or with nothing; "snap.<name>.<command>.service"; "snap.<name>" of a freezer group.
///   The entry is then called "<name>_<command>".
ApplicationUnit applicationUnitIn(std::string_view controlGroup);

}  // namespace velto
