#include "uninstall/essential_packages.h"

#include <algorithm>
#include <array>

namespace velto {
namespace {

struct Essential {
    std::string_view name;  // with a "*" at its end for all that begin so
    std::string_view reason;
};

/// As Debian, Ubuntu, Fedora, openSUSE and Arch call them.
constexpr std::array essentials{
    Essential{"velto", "this program"},

    Essential{"gnome-shell", "the GNOME desktop"},
    Essential{"gnome-session*", "the GNOME desktop"},
    Essential{"mutter", "the GNOME desktop"},
    Essential{"plasma-desktop", "the Plasma desktop"},
    Essential{"plasma-workspace*", "the Plasma desktop"},
    Essential{"plasma6-desktop", "the Plasma desktop"},
    Essential{"plasma6-workspace*", "the Plasma desktop"},
    Essential{"kwin*", "the Plasma desktop"},
    Essential{"xfce4-session", "the Xfce desktop"},
    Essential{"xfce4-panel", "the Xfce desktop"},
    Essential{"xfwm4", "the Xfce desktop"},
    Essential{"cinnamon", "the Cinnamon desktop"},
    Essential{"cinnamon-session", "the Cinnamon desktop"},
    Essential{"mate-session-manager", "the MATE desktop"},
    Essential{"mate-panel", "the MATE desktop"},
    Essential{"lxqt-session", "the LXQt desktop"},
    Essential{"lxqt-panel", "the LXQt desktop"},
    Essential{"budgie-desktop", "the Budgie desktop"},
    Essential{"budgie-core", "the Budgie desktop"},
    Essential{"cosmic-session", "the COSMIC desktop"},
    Essential{"sway", "a desktop by itself"},

    Essential{"gdm", "the screen to log in at"},
    Essential{"gdm3", "the screen to log in at"},
    Essential{"sddm", "the screen to log in at"},
    Essential{"lightdm", "the screen to log in at"},
    Essential{"lxdm", "the screen to log in at"},

    Essential{"xserver-xorg", "the display"},
    Essential{"xserver-xorg-core", "the display"},
    Essential{"xorg-server", "the display"},
    Essential{"xorg-x11-server-Xorg", "the display"},
    Essential{"xwayland", "the display"},
    Essential{"mesa-libGL", "the display"},
    Essential{"libgl1-mesa-dri", "the display"},

    Essential{"systemd", "starts everything else"},
    Essential{"systemd-sysv", "starts everything else"},
    Essential{"init", "starts everything else"},
    Essential{"dbus", "how programs of the desktop talk"},
    Essential{"dbus-daemon", "how programs of the desktop talk"},
    Essential{"dbus-broker", "how programs of the desktop talk"},
    Essential{"dbus-user-session", "how programs of the desktop talk"},
    Essential{"udev", "finds the devices"},
    Essential{"polkit", "asks for the administrator"},
    Essential{"polkitd", "asks for the administrator"},
    Essential{"policykit-1", "asks for the administrator"},
    Essential{"sudo", "asks for the administrator"},
    Essential{"login", "logging in"},
    Essential{"passwd", "logging in"},
    Essential{"shadow", "logging in"},
    Essential{"libpam*", "logging in"},
    Essential{"pam", "logging in"},
    Essential{"network-manager", "the network"},
    Essential{"NetworkManager", "the network"},
    Essential{"networkmanager", "the network"},
    Essential{"wpasupplicant", "the network"},
    Essential{"wpa_supplicant", "the network"},
    Essential{"iwd", "the network"},

    Essential{"linux", "the kernel"},
    Essential{"linux-image-*", "the kernel"},
    Essential{"linux-generic*", "the kernel"},
    Essential{"kernel", "the kernel"},
    Essential{"kernel-core", "the kernel"},
    Essential{"kernel-default", "the kernel"},
    Essential{"grub", "starting the computer"},
    Essential{"grub-common", "starting the computer"},
    Essential{"grub-efi*", "starting the computer"},
    Essential{"grub-pc*", "starting the computer"},
    Essential{"grub2*", "starting the computer"},
    Essential{"shim", "starting the computer"},
    Essential{"shim-*", "starting the computer"},
    Essential{"systemd-boot*", "starting the computer"},
    Essential{"initramfs-tools*", "starting the computer"},
    Essential{"mkinitcpio", "starting the computer"},
    Essential{"dracut*", "starting the computer"},
    Essential{"cryptsetup*", "opening the disk"},
    Essential{"lvm2", "opening the disk"},
    Essential{"mdadm", "opening the disk"},
    Essential{"btrfs-progs", "opening the disk"},
    Essential{"e2fsprogs", "opening the disk"},

    Essential{"libc6", "every program"},
    Essential{"glibc*", "every program"},
    Essential{"bash", "every program"},
    Essential{"dash", "every program"},
    Essential{"coreutils", "every program"},
    Essential{"util-linux*", "every program"},
    Essential{"mount", "every program"},
    Essential{"filesystem", "every program"},
    Essential{"base-files", "every program"},

    Essential{"apt", "installing anything"},
    Essential{"dpkg", "installing anything"},
    Essential{"rpm", "installing anything"},
    Essential{"dnf", "installing anything"},
    Essential{"dnf5", "installing anything"},
    Essential{"libzypp", "installing anything"},
    Essential{"zypper", "installing anything"},
    Essential{"packagekit", "installing anything"},
    Essential{"PackageKit", "installing anything"},
    Essential{"flatpak", "every Flatpak"},
    Essential{"snapd", "every Snap"},
};

bool isNamed(const Essential& essential, std::string_view name) {
    if (!essential.name.ends_with('*')) return name == essential.name;
    return name.starts_with(essential.name.substr(0, essential.name.size() - 1));
}

}  // namespace

bool isEssentialPackage(std::string_view name) {
    return std::ranges::any_of(essentials,
                               [&](const Essential& each) { return isNamed(each, name); });
}

}  // namespace velto
