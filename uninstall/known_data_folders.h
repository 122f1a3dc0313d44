#pragma once

#include <array>
#include <string_view>

namespace velto {

/// Folders of settings, data or caches that are named neither for an identifier nor by chance, and
/// what their application is called wherever it may be installed: packages, programs, identifiers
/// of Flatpaks, names of Snaps.
struct KnownDataFolder {
    std::string_view folder;  // exactly
    std::string_view names;   // separated by blanks; the first is shown
};

inline constexpr std::array<KnownDataFolder, 47> knownDataFolders{{
    {"google-chrome", "google-chrome google-chrome-stable chrome com.google.chrome"},
    {"google-chrome-beta", "google-chrome-beta"},
    {"google-chrome-unstable", "google-chrome-unstable"},
    {"chromium", "chromium chromium-browser org.chromium.chromium ungoogled-chromium"},
    {"BraveSoftware", "brave-browser brave brave-browser-stable com.brave.browser"},
    {"vivaldi", "vivaldi vivaldi-stable com.vivaldi.vivaldi"},
    {"opera", "opera opera-stable com.opera.opera"},
    {"microsoft-edge", "microsoft-edge microsoft-edge-stable com.microsoft.edge"},
    {"Code", "code visual-studio-code code-oss com.visualstudio.code"},
    {"Code - OSS", "code-oss code"},
    {"VSCodium", "codium vscodium com.vscodium.codium"},
    {"sublime-text", "sublime-text subl sublime_text com.sublimetext.three"},
    {"sublime-text-3", "sublime-text subl sublime_text com.sublimetext.three"},
    {"discord", "discord com.discordapp.discord vesktop"},
    {"Slack", "slack slack-desktop com.slack.slack"},
    {"Signal", "signal-desktop signal org.signal.signal"},
    {"Element", "element-desktop element im.riot.riot"},
    {"TelegramDesktop", "telegram-desktop telegram org.telegram.desktop"},
    {"skypeforlinux", "skypeforlinux skype com.skype.client"},
    {"spotify", "spotify spotify-client com.spotify.client"},
    {"obsidian", "obsidian md.obsidian.obsidian"},
    {"Postman", "postman com.getpostman.postman"},
    {"Insomnia", "insomnia rest.insomnia.insomnia"},
    {"obs-studio", "obs-studio obs com.obsproject.studio"},
    {"GIMP", "gimp org.gimp.gimp"},
    {"inkscape", "inkscape org.inkscape.inkscape"},
    {"blender", "blender org.blender.blender"},
    {"krita", "krita org.kde.krita"},
    {"darktable", "darktable org.darktable.darktable"},
    {"digikam", "digikam org.kde.digikam"},
    {"audacity", "audacity org.audacityteam.audacity"},
    {"libreoffice", "libreoffice soffice libreoffice-core libreoffice-common"},
    {"vlc", "vlc org.videolan.vlc vlc-bin"},
    {"kodi", "kodi tv.kodi.kodi"},
    {"filezilla", "filezilla org.filezillaproject.filezilla"},
    {"transmission", "transmission transmission-gtk transmission-qt transmission-daemon"},
    {"deluge", "deluge deluge-gtk deluged org.deluge_torrent.deluge"},
    {"qBittorrent", "qbittorrent qbittorrent-nox org.qbittorrent.qbittorrent"},
    {"calibre", "calibre calibre-ebook com.calibre_ebook.calibre"},
    {"joplin-desktop", "joplin joplin-desktop net.cozic.joplin_desktop"},
    {"Bitwarden", "bitwarden com.bitwarden.desktop"},
    {"Nextcloud", "nextcloud nextcloud-desktop nextcloud-client com.nextcloud.desktopclient"},
    {"Anki2", "anki net.ankiweb.anki"},
    {"lutris", "lutris net.lutris.lutris"},
    {"heroic", "heroic com.heroicgameslauncher.hgl"},
    {"balena-etcher-electron", "balena-etcher etcher balenaetcher balena-etcher-electron"},
    {"freecad", "freecad org.freecad.freecad org.freecadweb.freecad"},
}};

}  // namespace velto
