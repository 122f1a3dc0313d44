#include <array>

#include "uninstall/kept_places.h"

namespace velto {
namespace {

constexpr auto home = &HomeLayout::home;
constexpr auto config = &HomeLayout::configuration;
constexpr auto data = &HomeLayout::applicationSupport;
constexpr auto cache = &HomeLayout::caches;
constexpr auto state = &HomeLayout::applicationState;
constexpr auto sandbox = &HomeLayout::sandboxes;
constexpr auto flatpaks = &HomeLayout::userFlatpaks;

constexpr auto folder = KeptPlace::Extent::folder;
constexpr auto programs = KeptPlace::Extent::programs;
constexpr auto maker = KeptPlace::Extent::maker;
constexpr auto everything = KeptPlace::Extent::everything;
constexpr auto profile = KeptPlace::Extent::profile;

constexpr auto table = std::to_array<KeptPlace>({
    // Passwords and keys: lost with them is what they open.
    {home, everything, ".ssh", "keys that log in to other machines"},
    {home, everything, ".gnupg", "OpenPGP keys and whom they trust"},
    {data, everything, "gnupg", "OpenPGP keys and whom they trust"},
    {data, everything, "keyrings", "the Secret Service's passwords (GNOME Keyring)"},
    {data, everything, "kwalletd|kwallet", "passwords of KDE's wallet"},
    {config, everything, "kwalletrc|kwalletmanager5rc", "how KDE's wallet is opened"},
    {home, everything, ".password-store", "passwords of pass"},
    {data, everything, "password-store|pass", "passwords of pass"},
    {home, everything, ".pki|.cert", "certificates that NSS shares among programs"},
    {data, everything, "pki", "certificates that NSS shares among programs"},
    {data, everything, "networkmanagement", "certificates of network connections"},
    {config, everything, "keepassxc|KeePass|keepassx", "a password database or where it lies"},
    {data, everything, "keepassxc|KeePass|keepassx", "a password database or where it lies"},
    {home, everything, ".keepass|.keepassx", "a password database or where it lies"},
    {config, everything, "Bitwarden|Bitwarden CLI|1Password|op|Enpass|sinew.in",
     "a vault of passwords"},
    {data, everything, "Enpass", "a vault of passwords"},
    {sandbox, everything,
     "org.keepassxc.KeePassXC|com.bitwarden.desktop|com.onepassword.OnePassword|org.gnome.World."
     "Secrets",
     "a vault of passwords"},
    {home, everything, ".aws|.azure|.kube|.docker|.netrc|.authinfo|.git-credentials|.vault-token",
     "access to servers and services"},
    {config, everything, "gcloud|gh|hub|rclone|sops|age|doctl|containers|syncthing",
     "access to servers and services"},
    {config, everything, "goa-1.0|signond|libaccounts-glib",
     "accounts of the whole session (GNOME Online Accounts, signond)"},
    {home, everything, ".bitcoin|.electrum|.ethereum|.litecoin|.bitmonero|.dogecoin",
     "a wallet of digital money"},
    // Mail, contacts, calendars and messages.
    {home, everything,
     ".thunderbird|.icedove|.mozilla-thunderbird|.mail|Mail|Maildir|.maildir|.claws-mail|.sylpheed-"
     "2.0|.balsa|.mutt|.muttrc|.msmtprc|.fetchmailrc|.notmuch-config|.alpine|.pinerc|.mailrc|snap/"
     "thunderbird|snap/mailspring",
     "mail"},
    {data, everything,
     "evolution|geary|mail|local-mail|.local-mail.directory|kmail2|akonadi|akonadi-davgroupware|"
     "balsa|notmuch|trojita",
     "mail"},
    {config, everything,
     "evolution|geary|akonadi|emailidentities|mailtransports|kmail2rc|mutt|neomutt|aerc|msmtp|"
     "notmuch|himalaya|Mailspring|isyncrc|mbsync|balsa|sylpheed",
     "mail accounts and filters"},
    {cache, everything, "evolution|geary", "mail that is kept for reading offline"},
    {sandbox, everything,
     "org.mozilla.Thunderbird|eu.betterbird.Betterbird|org.gnome.Evolution|org.gnome.Geary|org.kde."
     "kmail2|org.kde.kontact|org.claws_mail.Claws-Mail|com.getmailspring.Mailspring|org.kde."
     "trojita",
     "mail"},
    {data, everything,
     "contacts|calendars|calendar|korganizer|kaddressbook|kalendar|folks|vdirsyncer|khal|calcurse|"
     "gnome-contacts|gnome-calendar",
     "contacts and calendars"},
    {config, everything, "vdirsyncer|khal|khard|calcurse", "contacts and calendars"},
    {home, everything, ".calcurse|.calendar|.contacts", "contacts and calendars"},
    {home, everything, ".purple|.gajim|.weechat|.irssi|.mcabber",
     "conversations and the accounts for them"},
    {data, everything, "TpLogger|telepathy|gajim|dino|weechat|empathy|fractal",
     "conversations and the accounts for them"},
    {config, everything, "Signal|Signal Beta|Element|Session|Briar",
     "conversations of which there is no other copy"},
    {sandbox, everything, "org.signal.Signal|im.riot.Riot|network.loki.Session",
     "conversations of which there is no other copy"},
    // Browsers: bookmarks, passwords, open tabs. Folders of several browsers stay.
    {home, everything, ".mozilla|.moonchild productions",
     "shared by Firefox, SeaMonkey and others"},
    {cache, folder, "mozilla|BraveSoftware|moonchild productions",
     "shared by Firefox, Thunderbird and others"},
    {config, everything, "BraveSoftware", "shared by all channels of the browser"},
    {home, profile, ".mozilla/firefox", "bookmarks and passwords",
     "firefox firefox-esr firefox_firefox org.mozilla.firefox"},
    {cache, profile, "mozilla/firefox", "bookmarks and passwords",
     "firefox firefox-esr firefox_firefox org.mozilla.firefox"},
    {sandbox, profile, "org.mozilla.firefox", "bookmarks and passwords",
     "firefox firefox-esr firefox_firefox org.mozilla.firefox"},
    {home, profile, "snap/firefox", "bookmarks and passwords",
     "firefox firefox-esr firefox_firefox org.mozilla.firefox"},
    {home, profile, ".librewolf", "bookmarks and passwords",
     "librewolf io.gitlab.librewolf-community"},
    {cache, profile, "librewolf", "bookmarks and passwords",
     "librewolf io.gitlab.librewolf-community"},
    {sandbox, profile, "io.gitlab.librewolf-community", "bookmarks and passwords",
     "librewolf io.gitlab.librewolf-community"},
    {home, profile, ".waterfox", "bookmarks and passwords", "waterfox net.waterfox.waterfox"},
    {cache, profile, "waterfox", "bookmarks and passwords", "waterfox net.waterfox.waterfox"},
    {sandbox, profile, "net.waterfox.waterfox", "bookmarks and passwords",
     "waterfox net.waterfox.waterfox"},
    {home, profile, ".zen", "bookmarks and passwords", "zen app.zen_browser.zen"},
    {cache, profile, "zen", "bookmarks and passwords", "zen app.zen_browser.zen"},
    {sandbox, profile, "app.zen_browser.zen", "bookmarks and passwords", "zen app.zen_browser.zen"},
    {config, profile, "chromium", "bookmarks and passwords",
     "chromium chromium-browser chromium_chromium org.chromium.Chromium"},
    {cache, profile, "chromium", "bookmarks and passwords",
     "chromium chromium-browser chromium_chromium org.chromium.Chromium"},
    {sandbox, profile, "org.chromium.Chromium", "bookmarks and passwords",
     "chromium chromium-browser chromium_chromium org.chromium.Chromium"},
    {home, profile, "snap/chromium", "bookmarks and passwords",
     "chromium chromium-browser chromium_chromium org.chromium.Chromium"},
    {config, profile, "google-chrome", "bookmarks and passwords",
     "google-chrome com.google.Chrome"},
    {cache, profile, "google-chrome", "bookmarks and passwords", "google-chrome com.google.Chrome"},
    {sandbox, profile, "com.google.Chrome", "bookmarks and passwords",
     "google-chrome com.google.Chrome"},
    {config, profile, "google-chrome-beta", "bookmarks and passwords", "google-chrome-beta"},
    {cache, profile, "google-chrome-beta", "bookmarks and passwords", "google-chrome-beta"},
    {config, profile, "google-chrome-unstable", "bookmarks and passwords",
     "google-chrome-unstable"},
    {cache, profile, "google-chrome-unstable", "bookmarks and passwords", "google-chrome-unstable"},
    {config, profile, "BraveSoftware/Brave-Browser", "bookmarks and passwords",
     "brave-browser com.brave.Browser brave_brave"},
    {cache, profile, "BraveSoftware/Brave-Browser", "bookmarks and passwords",
     "brave-browser com.brave.Browser brave_brave"},
    {sandbox, profile, "com.brave.Browser", "bookmarks and passwords",
     "brave-browser com.brave.Browser brave_brave"},
    {home, profile, "snap/brave", "bookmarks and passwords",
     "brave-browser com.brave.Browser brave_brave"},
    {config, profile, "microsoft-edge", "bookmarks and passwords",
     "microsoft-edge com.microsoft.Edge"},
    {cache, profile, "microsoft-edge", "bookmarks and passwords",
     "microsoft-edge com.microsoft.Edge"},
    {sandbox, profile, "com.microsoft.Edge", "bookmarks and passwords",
     "microsoft-edge com.microsoft.Edge"},
    {config, profile, "vivaldi", "bookmarks and passwords", "vivaldi-stable com.vivaldi.Vivaldi"},
    {cache, profile, "vivaldi", "bookmarks and passwords", "vivaldi-stable com.vivaldi.Vivaldi"},
    {sandbox, profile, "com.vivaldi.Vivaldi", "bookmarks and passwords",
     "vivaldi-stable com.vivaldi.Vivaldi"},
    {config, profile, "opera", "bookmarks and passwords", "opera com.opera.Opera opera_opera"},
    {cache, profile, "opera", "bookmarks and passwords", "opera com.opera.Opera opera_opera"},
    {sandbox, profile, "com.opera.Opera", "bookmarks and passwords",
     "opera com.opera.Opera opera_opera"},
    {home, profile, "snap/opera", "bookmarks and passwords", "opera com.opera.Opera opera_opera"},
    {config, profile, "epiphany", "bookmarks and passwords", "org.gnome.Epiphany epiphany"},
    {data, profile, "epiphany", "bookmarks and passwords", "org.gnome.Epiphany epiphany"},
    {cache, profile, "epiphany", "bookmarks and passwords", "org.gnome.Epiphany epiphany"},
    {sandbox, profile, "org.gnome.Epiphany", "bookmarks and passwords",
     "org.gnome.Epiphany epiphany"},
    {config, profile, "falkon", "bookmarks and passwords", "org.kde.falkon"},
    {data, profile, "falkon", "bookmarks and passwords", "org.kde.falkon"},
    {sandbox, profile, "org.kde.falkon", "bookmarks and passwords", "org.kde.falkon"},
    {config, profile, "qutebrowser", "bookmarks and passwords", "org.qutebrowser.qutebrowser"},
    {data, profile, "qutebrowser", "bookmarks and passwords", "org.qutebrowser.qutebrowser"},
    {data, profile, "torbrowser", "bookmarks and passwords",
     "torbrowser org.torproject.torbrowser-launcher"},
    {config, profile, "torbrowser", "bookmarks and passwords",
     "torbrowser org.torproject.torbrowser-launcher"},
    {config, profile, "midori", "bookmarks and passwords", "midori org.midori_browser.Midori"},
    {data, profile, "midori", "bookmarks and passwords", "midori org.midori_browser.Midori"},
    // What the desktop and the session go by (freedesktop.org's folders for autostart, menus, MIME,
    // icon themes and D-Bus). What applications have put into the shared folders may go alone.
    {config, everything, "dconf|glib-2.0", "every setting of a GNOME-like desktop"},
    {data, everything, "glib-2.0", "settings' schemas of applications"},
    {config, everything, "gtk-2.0|gtk-3.0|gtk-4.0|gtkrc|gtkrc-2.0|xsettingsd",
     "how all GTK applications look, and bookmarks"},
    {config, folder, "autostart|autostart-scripts|systemd|systemd/user",
     "what is started with the session"},
    {data, folder, "systemd|systemd/user|dbus-1|dbus-1/services", "services of the session"},
    {config, everything,
     "environment.d|menus|user-dirs.dirs|user-dirs.locale|user-dirs.conf|mimeapps.list|user-"
     "tmpfiles.d|binfmt.d|locale.conf|plasma-localerc",
     "the session's environment, menus, folders and file types"},
    {data, everything,
     "desktop-directories|recently-used.xbel|user-places.xbel|gvfs-metadata|RecentDocuments",
     "menus and what was opened last"},
    {data, folder, "applications", "the menu's entries"},
    {data, folder, "icons|icons/hicolor", "icons of all applications"},
    {home, everything, ".icons|.themes|.fonts|.fontconfig|.fonts.conf",
     "icons, themes and fonts of the user's choice"},
    {data, everything,
     "themes|fonts|sounds|backgrounds|wallpapers|icc|color|color-schemes|aurorae|plasma|kwin|look-"
     "and-feel|cursors",
     "themes, fonts and pictures of the user's choice"},
    {data, folder,
     "mime|mime/packages|metainfo|appdata|kservices5|kxmlgui5|knotifications5|locale|man|doc",
     "file types and descriptions of applications"},
    {config, everything,
     "pulse|pipewire|wireplumber|fontconfig|ibus|fcitx|fcitx5|kxkbrc|touchpadxlibinputrc|monitors."
     "xml|kscreen|colord",
     "sound, input and fonts of the session"},
    {data, everything, "pipewire|wireplumber|kscreen|ibus|fcitx5|ibus-table",
     "sound, input and screens of the session"},
    {config, everything,
     "kdeglobals|kwinrc|kglobalshortcutsrc|khotkeysrc|plasmarc|plasmashellrc|plasma-workspace|"
     "plasma-org.kde.plasma.desktop-appletsrc|kdedefaults|kactivitymanagerdrc|ksmserverrc|Kvantum|"
     "Trolltech.conf|mate|cinnamon|cinnamon-session|gnome-session|gnome-shell|lxsession|lxpanel|"
     "openbox|i3|i3status|sway|swaylock|hypr|waybar|rofi|dunst|polybar|awesome|bspwm|sxhkd|picom|"
     "budgie-desktop|enlightenment|budgie-control-center",
     "the desktop's own settings"},
    {config, maker,
     "xfce4|lxqt|kde.org|KDE|pantheon|deepin|Google|JetBrains|microsoft|Unknown Organization",
     "shared by all applications of that desktop or maker"},
    {config, everything, "xfce4/xfconf|xfce4/panel", "settings of the whole Xfce desktop"},
    {data, everything,
     "gnome-shell|cinnamon|nautilus|nemo|caja|tracker|tracker3|baloo|zeitgeist|kactivitymanagerd|"
     "gnome-settings-daemon|session_migration-ubuntu|sddm|xorg|wayland-sessions|xsessions|"
     "gsettings-data-convert",
     "extensions, scripts and indexes of the desktop"},
    {data, maker, "JetBrains|Google|kde.org|xfce4", "shared by all applications of that maker"},
    {cache, maker, "JetBrains|Google|xfce4|kde.org", "shared by all applications of that maker"},
    {cache, everything,
     "fontconfig|thumbnails|mesa_shader_cache|gstreamer-1.0|dconf|gnome-desktop-thumbnailer|ibus|"
     "tracker3|obexd|event-sound-cache.tdb",
     "shared by all programs"},
    {state, everything, "wireplumber|pipewire|systemd", "sound volumes and sessions"},
    {home, everything,
     ".profile|.bashrc|.bash_profile|.bash_login|.bash_logout|.bash_aliases|.bash_history|.zshrc|."
     "zshenv|.zprofile|.zlogin|.zsh_history|.zsh|.oh-my-zsh|.inputrc|.login|.logout|.cshrc|.kshrc|."
     "tcshrc|.xinitrc|.xsession|.xsessionrc|.xprofile|.Xresources|.Xdefaults|.Xmodmap|.Xauthority|."
     "ICEauthority|.dmrc|.dbus|.gconf|.gnome|.gnome2|.kde|.kde4|.gtkrc-2.0|.gtk-bookmarks|.pulse|."
     "pam_environment|.environment|.hushlogin|.selected_editor|.sudo_as_admin_successful|.gvfs|."
     "cups|.face|.Private|.ecryptfs|.Trash",
     "how the session and its shells start"},
    {config, everything, "fish|nushell|zsh|bash|xonsh|starship.toml|powershell",
     "a shell's start-up and history"},
    {data, everything, "fish|zsh|bash|nushell|xonsh|powershell", "a shell's history"},
    // What is installed, run and developed in the home.
    {data, everything, "flatpak", "what Flatpak has installed"},
    {flatpaks, folder, "", "each application of Flatpak's goes by itself"},
    {data, everything,
     "containers|docker|lxc|lxd|libvirt|gnome-boxes|waydroid|vagrant|multipass|distrobox",
     "containers and virtual machines"},
    {config, everything, "libvirt|VirtualBox|distrobox", "where virtual machines are"},
    {home, everything, "VirtualBox VMs|.VirtualBox|.vagrant.d|.vmware|vmware|.lima|.minikube",
     "containers and virtual machines"},
    {home, everything, ".wine|.PlayOnLinux", "Windows programs and their documents"},
    {data, everything, "wineprefixes|bottles|playonlinux", "Windows programs and their documents"},
    {home, everything, ".steam|.steampath|.minecraft", "games and what was saved in them"},
    {home, folder, "snap", "what Snaps keep"},
    {home, everything, ".local/share/Trash", "what was deleted and may be wanted back"},
    {data, everything, "Trash", "what was deleted and may be wanted back"},
    {data, everything, "Velto", "what this program keeps"},
    {config, everything, "velto", "what this program keeps"},
    {home, everything,
     ".cargo|.rustup|.npm|.nvm|.pyenv|.rbenv|.sdkman|.gradle|.m2|.ivy2|.sbt|.java|.android|.dotnet|"
     ".nuget|.conda|.ghcup|.stack|.opam|.gem|.bundle|.yarn|.pnpm|.deno|.bun|.asdf|.volta|."
     "terraform.d|.ansible|.platformio|.julia|.cpan|.texlive|.nix-profile|.nix-defexpr|.linuxbrew|."
     "npmrc|.pypirc|.condarc|.jupyter|.ipython|.python_history|.node_repl_history|.sqlite_history|."
     "psql_history|.mysql_history|.pgpass|.my.cnf",
     "tools of a developer and what they fetched"},
    {home, folder, "dotfiles|.dotfiles", "what other places of the home lead to"},
    {home, programs,
     ".cargo/bin|.npm-global|.local/opt|.local/lib|.local/games|.local/libexec|.local/include|.opt",
     "programs that the user has installed"},
    {home, everything,
     ".vim|.vimrc|.viminfo|.emacs|.emacs.d|.doom.d|.spacemacs|.nanorc|.tmux.conf|.screenrc|."
     "gitconfig|.gitignore|.hgrc|.bazaar|.subversion|.texmf|texmf|.latexmkrc",
     "written by the user over years"},
    {config, everything,
     "git|nvim|vim|emacs|doom|tmux|helix|pip|npm|yarn|direnv|mise|yadm|chezmoi|nano|latexmk|home-"
     "manager|nix|nixpkgs",
     "written by the user over years"},
    {state, everything, "nvim|vim|syncthing|bash|zsh|fish|home-manager|nix",
     "undo and history of an editor"},
    {data, everything, "nvim|vim|emacs|chezmoi|nix", "undo and history of an editor"},
    // What the user has made, in the keeping of one application.
    {data, everything,
     "gnote|tomboy|bijiben|notes|gtg|endeavour|Anki2|gramps|gnucash|homebank|zim|knotes|basket|"
     "timewarrior",
     "notes, tasks, cards and books that the user has written"},
    {home, everything,
     ".gramps|.task|.timewarrior|Zotero|.zotero|Calibre Library|org|Notes|Sync|.local/share/gnote",
     "notes, tasks, cards and books that the user has written"},
    {config, everything,
     "joplin|joplin-desktop|darktable|digikamrc|standard-notes|Standard Notes|logseq",
     "notes, tasks, cards and books that the user has written"},
    {data, everything, "shotwell|digikam|darktable|rhythmbox|gthumb",
     "albums, edits and playlists that the user has made"},
});

}  // namespace

std::span<const KeptPlace> keptPlaces() { return table; }

}  // namespace velto
