#include "platform/linux/launchers.h"

#include <algorithm>
#include <array>

namespace velto {
namespace {

constexpr std::array<std::string_view, 22> interpreters{
    "sh",   "bash",  "dash", "zsh",         "ksh", "fish", "busybox", "perl",
    "java", "gjs",   "mono", "guile",       "php", "node", "nodejs",  "dotnet",
    "wish", "tclsh", "lua",  "gjs-console", "cjs", "seed"};

// Their names often end in a version ("python3.11", "electron28").
constexpr std::array<std::string_view, 5> versionedInterpreters{"python", "ruby", "electron",
                                                                "lua5", "wish8"};

constexpr auto starters = std::to_array<std::string_view>({
    // of applications that live elsewhere
    "flatpak",
    "flatpak-spawn",
    "host-spawn",
    "snap",
    "wine",
    "wine64",
    "wine-stable",
    "wine-development",
    "wine-staging",
    "umu-run",
    "protontricks-launch",
    "bottles-cli",
    "distrobox",
    "distrobox-enter",
    "distrobox-host-exec",
    "toolbox",
    "waydroid",
    "podman",
    "docker",
    "appimage-run",
    "bwrap",
    "firejail",
    "chroot",
    "systemd-nspawn",
    // of whatever the system thinks right
    "xdg-open",
    "gio",
    "gtk-launch",
    "kde-open",
    "kde-open5",
    "kioclient",
    "exo-open",
    "deno",
    "bun",
    "npx",
    "uv",
    "uvx",
    "pipx",
    // in other circumstances
    "env",
    "pkexec",
    "sudo",
    "doas",
    "run0",
    "su",
    "gksu",
    "gksudo",
    "kdesu",
    "kdesudo",
    "systemd-run",
    "dbus-run-session",
    "dbus-launch",
    "setsid",
    "nohup",
    "nice",
    "ionice",
    "chrt",
    "taskset",
    "stdbuf",
    "time",
    "timeout",
    "unshare",
    "xvfb-run",
    "prime-run",
    "optirun",
    "primusrun",
    "gamemoderun",
    "gamescope",
    "mangohud",
    "strangle",
});

template <std::size_t count>
bool holds(const std::array<std::string_view, count>& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

/// "python3.11" for "python", and not "pythonista".
bool isVersionOf(std::string_view program, std::string_view name) {
    return program.starts_with(name) &&
           program.find_first_not_of("0123456789.-", name.size()) == std::string_view::npos;
}

}  // namespace

bool isInterpreter(std::string_view program) {
    return holds(interpreters, program) ||
           std::ranges::any_of(versionedInterpreters,
                               [&](std::string_view name) { return isVersionOf(program, name); });
}

bool isLauncher(std::string_view program) {
    return isInterpreter(program) || holds(starters, program);
}

}  // namespace velto
