// What real applications and real folders are called.

#include "RealNames.h"

#include "platform/values/text.h"

namespace velto {
namespace {

// Identifier, name and program of desktop entries as Debian's packages (bookworm) and the makers of
// some applications ship them.
constexpr std::string_view applications = R"(
firefox-esr|Firefox ESR|firefox-esr; firefox|Firefox|firefox;
thunderbird|Thunderbird|thunderbird; chromium|Chromium Web Browser|chromium;
google-chrome|Google Chrome|google-chrome-stable;
brave-browser|Brave Web Browser|brave-browser-stable;
microsoft-edge|Microsoft Edge|microsoft-edge-stable; vivaldi-stable|Vivaldi|vivaldi-stable;
opera|Opera|opera; torbrowser|Tor Browser Launcher|torbrowser-launcher;
org.gnome.Epiphany|Web|epiphany-browser; org.kde.falkon|Falkon|falkon;
org.kde.konqueror|Konqueror|konqueror; org.qutebrowser.qutebrowser|qutebrowser|qutebrowser;
org.midori_browser.Midori|Midori|midori; dillo|Dillo|dillo; links2|Links 2|xlinks2;
netsurf-gtk|NetSurf|netsurf-gtk3; org.gnome.Evolution|Evolution|evolution;
evolution|Mail|evolution; org.gnome.Geary|Geary|geary; claws-mail|Claws Mail|claws-mail;
sylpheed|Sylpheed|sylpheed; balsa|Balsa|balsa; mutt|mutt|mutt; neomutt|neomutt|neomutt;
org.kde.kmail2|KMail|kmail; org.kde.kontact|Kontact|kontact;
org.kde.korganizer|KOrganizer|korganizer; org.kde.kaddressbook|KAddressBook|kaddressbook;
org.kde.akregator|Akregator|akregator; org.kde.knotes|KNotes|knotes;
org.kde.kalarm|KAlarm|kalarm; org.kde.kwalletmanager5|KWalletManager|kwalletmanager5;
org.kde.kgpg|KGpg|kgpg; org.kde.kleopatra|Kleopatra|kleopatra; org.kde.dolphin|Dolphin|dolphin;
org.kde.kate|Kate|kate; org.kde.kwrite|KWrite|kwrite; org.kde.konsole|Konsole|konsole;
org.kde.okular|Okular|okular; org.kde.gwenview|Gwenview|gwenview; org.kde.ark|Ark|ark;
org.kde.kcalc|KCalc|kcalc; org.kde.spectacle|Spectacle|spectacle; org.kde.elisa|Elisa|elisa;
org.kde.dragonplayer|Dragon Player|dragon; org.kde.k3b|K3b|k3b;
org.kde.kdenlive|Kdenlive|kdenlive; org.kde.krita|Krita|krita; org.kde.digikam|digiKam|digikam;
org.kde.showfoto|showFoto|showfoto; org.kde.kdeconnect.app|KDE Connect|kdeconnect-app;
org.kde.ktorrent|KTorrent|ktorrent; org.kde.konversation|Konversation|konversation;
org.kde.kmymoney|KMyMoney|kmymoney; org.kde.kolourpaint|KolourPaint|kolourpaint;
org.kde.marble|Marble|marble-qt; org.kde.kstars|KStars|kstars; org.kde.step|Step|step;
org.kde.kalzium|Kalzium|kalzium; org.kde.cantor|Cantor|cantor; org.kde.labplot2|LabPlot|labplot2;
org.kde.umbrello|Umbrello|umbrello5; org.kde.kdevelop|KDevelop|kdevelop;
org.kde.kompare|Kompare|kompare; org.kde.filelight|Filelight|filelight;
org.kde.ksysguard|KSysGuard|ksysguard;
org.kde.plasma-systemmonitor|System Monitor|plasma-systemmonitor;
org.kde.discover|Discover|plasma-discover;
org.kde.partitionmanager|KDE Partition Manager|partitionmanager; org.kde.kfind|KFind|kfind;
org.kde.kfontview|Font Viewer|kfontview; org.kde.krdc|KRDC|krdc; org.kde.krfb|Krfb|krfb;
org.kde.yakuake|Yakuake|yakuake; org.kde.kpat|KPatience|kpat; org.kde.kmines|KMines|kmines;
org.kde.bovo|Bovo|bovo; org.kde.ksudoku|KSudoku|ksudoku; org.kde.kmahjongg|KMahjongg|kmahjongg;
org.kde.kamoso|Kamoso|kamoso; org.kde.skanlite|Skanlite|skanlite; org.kde.juk|JuK|juk;
systemsettings|System Settings|systemsettings5; org.gnome.Nautilus|Files|nautilus;
org.gnome.Calendar|Calendar|gnome-calendar; org.gnome.Contacts|Contacts|gnome-contacts;
org.gnome.Photos|Photos|gnome-photos; org.gnome.Music|Music|gnome-music;
org.gnome.Maps|Maps|gnome-maps; org.gnome.Weather|Weather|gnome-weather;
org.gnome.clocks|Clocks|gnome-clocks; org.gnome.Calculator|Calculator|gnome-calculator;
org.gnome.Characters|Characters|gnome-characters; org.gnome.font-viewer|Fonts|gnome-font-viewer;
org.gnome.Logs|Logs|gnome-logs; org.gnome.Software|Software|gnome-software;
org.gnome.Settings|Settings|gnome-control-center; org.gnome.Terminal|Terminal|gnome-terminal;
org.gnome.Console|Console|kgx; org.gnome.TextEditor|Text Editor|gnome-text-editor;
org.gnome.gedit|gedit|gedit; org.gnome.Evince|Document Viewer|evince;
org.gnome.eog|Image Viewer|eog; org.gnome.Totem|Videos|totem; org.gnome.Cheese|Cheese|cheese;
org.gnome.Boxes|Boxes|gnome-boxes; org.gnome.Connections|Connections|gnome-connections;
org.gnome.DiskUtility|Disks|gnome-disks; org.gnome.baobab|Disk Usage Analyzer|baobab;
org.gnome.SystemMonitor|System Monitor|gnome-system-monitor;
org.gnome.FileRoller|Archive Manager|file-roller;
org.gnome.Screenshot|Screenshot|gnome-screenshot;
org.gnome.SimpleScan|Document Scanner|simple-scan;
org.gnome.seahorse.Application|Passwords and Keys|seahorse; org.gnome.Notes|Notes|bijiben;
org.gnome.Books|Books|gnome-books; org.gnome.Documents|Documents|gnome-documents;
org.gnome.Todo|To Do|gnome-todo; org.gnome.Recipes|Recipes|gnome-recipes;
org.gnome.Shotwell|Shotwell|shotwell; org.gnome.Rhythmbox3|Rhythmbox|rhythmbox;
org.gnome.gThumb|gThumb|gthumb; org.gnome.meld|Meld|meld;
org.gnome.Builder|Builder|gnome-builder; org.gnome.Devhelp|Devhelp|devhelp;
org.gnome.dfeet|D-Feet|d-feet; org.gnome.Ghex|GHex|ghex; org.gnome.glade|Glade|glade;
org.gnome.Polari|Polari|polari; org.gnome.SoundRecorder|Sound Recorder|gnome-sound-recorder;
org.gnome.SoundJuicer|Sound Juicer|sound-juicer; org.gnome.EasyTAG|EasyTAG|easytag;
org.gnome.Brasero|Brasero|brasero; org.gnome.tweaks|Tweaks|gnome-tweaks;
org.gnome.Extensions|Extensions|gnome-extensions-app; org.gnome.Tour|Tour|gnome-tour;
org.gnome.Yelp|Help|yelp; org.gnome.dspy|D-Spy|d-spy; org.gnome.Gnote|Gnote|gnote;
org.gnome.GTG|Getting Things GNOME!|gtg; org.gnome.Chess|Chess|gnome-chess;
org.gnome.Mines|Mines|gnome-mines; org.gnome.Mahjongg|Mahjongg|gnome-mahjongg;
org.gnome.Sudoku|Sudoku|gnome-sudoku; org.gnome.Aisleriot|AisleRiot Solitaire|sol;
org.gnome.Quadrapassel|Quadrapassel|quadrapassel; org.gnome.Tetravex|Tetravex|gnome-tetravex;
org.gnome.Nibbles|Nibbles|gnome-nibbles; org.gnome.Robots|Robots|gnome-robots;
org.gnome.Reversi|Reversi|iagno; org.gnome.five-or-more|Five or More|five-or-more;
org.gnome.Four-in-a-row|Four-in-a-Row|four-in-a-row; org.gnome.Hitori|Hitori|hitori;
org.gnome.Klotski|Klotski|gnome-klotski; org.gnome.LightsOff|Lights Off|lightsoff;
org.gnome.SwellFoop|Swell Foop|swell-foop; org.gnome.Taquin|Taquin|gnome-taquin;
org.gnome.Tali|Tali|tali; org.gnome.World.Secrets|Secrets|secrets;
org.gnome.Podcasts|Podcasts|gnome-podcasts; org.gnome.Lollypop|Lollypop|lollypop;
org.gnome.Fractal|Fractal|fractal; im.dino.Dino|Dino|dino; org.gajim.Gajim|Gajim|gajim;
pidgin|Pidgin|pidgin; hexchat|HexChat|hexchat;
org.telegram.desktop|Telegram Desktop|telegram-desktop; signal-desktop|Signal|signal-desktop;
element-desktop|Element|element-desktop; discord|Discord|Discord; slack|Slack|slack;
zoom|Zoom|zoom; skypeforlinux|Skype|skypeforlinux;
teams-for-linux|Teams for Linux|teams-for-linux; org.keepassxc.KeePassXC|KeePassXC|keepassxc;
keepass2|KeePass2|keepass2; bitwarden|Bitwarden|bitwarden; qtpass|QtPass|qtpass;
revelation|Revelation|revelation; org.cryptomator.Cryptomator|Cryptomator|cryptomator;
veracrypt|VeraCrypt|veracrypt; libreoffice-startcenter|LibreOffice|libreoffice;
libreoffice-writer|LibreOffice Writer|libreoffice; libreoffice-calc|LibreOffice Calc|libreoffice;
libreoffice-impress|LibreOffice Impress|libreoffice;
libreoffice-draw|LibreOffice Draw|libreoffice; libreoffice-base|LibreOffice Base|libreoffice;
libreoffice-math|LibreOffice Math|libreoffice; abiword|AbiWord|abiword;
gnumeric|Gnumeric|gnumeric; scribus|Scribus|scribus; org.inkscape.Inkscape|Inkscape|inkscape;
gimp|GNU Image Manipulation Program|gimp-2.10; blender|Blender|blender; freecad|FreeCAD|freecad;
org.freecad.FreeCAD|FreeCAD|freecad; librecad|LibreCAD|librecad; openscad|OpenSCAD|openscad;
org.kicad.kicad|KiCad|kicad; darktable|darktable|darktable; rawtherapee|RawTherapee|rawtherapee;
hugin|Hugin Panorama Creator|hugin; mypaint|MyPaint|mypaint; pinta|Pinta|pinta; dia|Dia|dia;
xfig|Xfig|xfig; ipe|Ipe|ipe; audacity|Audacity|audacity; ardour|Ardour|ardour6; lmms|LMMS|lmms;
hydrogen|Hydrogen|hydrogen; musescore3|MuseScore 3|mscore3; rosegarden|Rosegarden|rosegarden;
qjackctl|QjackCtl|qjackctl; pavucontrol|PulseAudio Volume Control|pavucontrol;
vlc|VLC media player|vlc; mpv|mpv Media Player|mpv; smplayer|SMPlayer|smplayer;
celluloid|Celluloid|celluloid; io.github.celluloid_player.Celluloid|Celluloid|celluloid;
kodi|Kodi|kodi; clementine|Clementine|clementine; strawberry|Strawberry|strawberry;
org.strawberrymusicplayer.strawberry|Strawberry|strawberry; audacious|Audacious|audacious;
quodlibet|Quod Libet|quodlibet; deadbeef|DeaDBeeF|deadbeef; com.obsproject.Studio|OBS Studio|obs;
org.shotcut.Shotcut|Shotcut|shotcut; org.openshot.OpenShot|OpenShot Video Editor|openshot-qt;
org.pitivi.Pitivi|Pitivi|pitivi; handbrake|HandBrake|ghb; fr.handbrake.ghb|HandBrake|ghb;
org.bunkus.mkvtoolnix-gui|MKVToolNix GUI|mkvtoolnix-gui;
subtitleeditor|Subtitle Editor|subtitleeditor; calibre-gui|calibre|calibre;
com.calibre_ebook.calibre|calibre|calibre; fbreader|FBReader|fbreader;
com.github.johnfactotum.Foliate|Foliate|foliate; zathura|Zathura|zathura; xpdf|xpdf|xpdf;
qpdfview|qpdfview|qpdfview; xournalpp|Xournal++|xournalpp;
com.github.xournalpp.xournalpp|Xournal++|xournalpp; gnucash|GnuCash|gnucash;
homebank|HomeBank|homebank; anki|Anki|anki; zotero|Zotero|zotero; jabref|JabRef|jabref;
gramps|Gramps|gramps; org.gramps_project.Gramps|Gramps|gramps; zim|Zim Desktop Wiki|zim;
org.zim_wiki.Zim|Zim Desktop Wiki|zim; cherrytree|CherryTree|cherrytree;
net.giuspen.cherrytree|CherryTree|cherrytree; tomboy|Tomboy Notes|tomboy;
joplin|Joplin|joplin-desktop; obsidian|Obsidian|obsidian; freeplane|Freeplane|freeplane;
freemind|FreeMind|freemind; org.gnome.Planner|Project Management|planner;
stellarium|Stellarium|stellarium; org.stellarium.Stellarium|Stellarium|stellarium;
celestia|Celestia|celestia; geogebra|GeoGebra|geogebra; wxmaxima|wxMaxima|wxmaxima;
octave|GNU Octave|octave; org.octave.Octave|GNU Octave|octave; rstudio|RStudio|rstudio;
spyder|Spyder|spyder; jupyter-notebook|Jupyter Notebook|jupyter-notebook;
org.qgis.qgis|QGIS Desktop|qgis; qgis|QGIS Desktop|qgis; josm|JOSM|josm;
code|Visual Studio Code|code; codium|VSCodium|codium; sublime_text|Sublime Text|sublime_text;
jetbrains-idea|IntelliJ IDEA|idea.sh; jetbrains-pycharm|PyCharm|pycharm.sh;
jetbrains-toolbox|JetBrains Toolbox|jetbrains-toolbox; android-studio|Android Studio|studio.sh;
netbeans|Apache NetBeans|netbeans; eclipse|Eclipse|eclipse; geany|Geany|geany;
codeblocks|Code::Blocks IDE|codeblocks; emacs|Emacs|emacs; vim|Vim|vim; gvim|GVim|gvim;
nvim|Neovim|nvim; bluefish|Bluefish Editor|bluefish; mousepad|Mousepad|mousepad;
org.xfce.mousepad|Mousepad|mousepad; leafpad|Leafpad|leafpad; pluma|Pluma|pluma;
xed|Text Editor|xed; featherpad|FeatherPad|featherpad; git-gui|Git GUI|git-gui; gitk|gitk|gitk;
gitg|gitg|gitg; org.gnome.gitg|gitg|gitg; git-cola|git-cola|git-cola; qgit|QGit|qgit;
sqlitebrowser|DB Browser for SQLite|sqlitebrowser; dbeaver|DBeaver|dbeaver;
pgadmin4|pgAdmin 4|pgadmin4; wireshark|Wireshark|wireshark;
org.wireshark.Wireshark|Wireshark|wireshark; filezilla|FileZilla|filezilla;
remmina|Remmina|remmina; org.remmina.Remmina|Remmina|remmina;
transmission-gtk|Transmission|transmission-gtk; qbittorrent|qBittorrent|qbittorrent;
org.qbittorrent.qBittorrent|qBittorrent|qbittorrent; deluge|Deluge|deluge-gtk; amule|aMule|amule;
nicotine|Nicotine+|nicotine; syncthing-start|Start Syncthing|syncthing;
syncthing-ui|Syncthing Web UI|syncthing; nextcloud|Nextcloud|nextcloud;
com.nextcloud.desktopclient.nextcloud|Nextcloud Desktop|nextcloud; dropbox|Dropbox|dropbox;
deja-dup|Backups|deja-dup; org.gnome.DejaDup|Backups|deja-dup;
timeshift-gtk|Timeshift|timeshift-launcher; grsync|Grsync|grsync;
backintime-qt|Back In Time|backintime-qt; virtualbox|Oracle VM VirtualBox|VirtualBox;
virt-manager|Virtual Machine Manager|virt-manager;
org.gnome.Vinagre|Remote Desktop Viewer|vinagre; steam|Steam|steam;
net.lutris.Lutris|Lutris|lutris; lutris|Lutris|lutris; com.usebottles.bottles|Bottles|bottles;
wine|Wine|wine; winetricks|Winetricks|winetricks; q4wine|Q4Wine|q4wine;
playonlinux|PlayOnLinux|playonlinux; retroarch|RetroArch|retroarch;
dosbox|DOSBox emulator|dosbox; scummvm|ScummVM|scummvm; supertux2|SuperTux 2|supertux2;
supertuxkart|SuperTuxKart|supertuxkart; 0ad|0 A.D.|0ad; minetest|Minetest|minetest;
openttd|OpenTTD|openttd; wesnoth|Battle for Wesnoth|wesnoth; freeciv-gtk3|Freeciv|freeciv-gtk3;
hedgewars|Hedgewars|hedgewars; warzone2100|Warzone 2100|warzone2100; xonotic|Xonotic|xonotic;
frozen-bubble|Frozen-Bubble|frozen-bubble; pingus|Pingus|pingus; tuxpaint|Tux Paint|tuxpaint;
gcompris-qt|GCompris|gcompris-qt; thunar|Thunar File Manager|thunar;
xfce4-terminal|Xfce Terminal|xfce4-terminal;
xfce4-settings-manager|Settings Manager|xfce4-settings-manager;
xfce4-taskmanager|Task Manager|xfce4-taskmanager;
org.xfce.ristretto|Ristretto Image Viewer|ristretto; org.xfce.Parole|Parole Media Player|parole;
org.xfce.xfburn|Xfburn|xfburn; org.xfce.orage|Orage Calendar|orage;
catfish|Catfish File Search|catfish; caja|Caja|caja; atril|Atril Document Viewer|atril;
eom|Eye of MATE Image Viewer|eom; engrampa|Engrampa Archive Manager|engrampa;
mate-terminal|MATE Terminal|mate-terminal; nemo|Files|nemo; pcmanfm|File Manager PCManFM|pcmanfm;
pcmanfm-qt|PCManFM-Qt File Manager|pcmanfm-qt; lximage-qt|LXImage-Qt|lximage-qt;
qterminal|QTerminal|qterminal; lxterminal|LXTerminal|lxterminal; kitty|kitty|kitty;
Alacritty|Alacritty|alacritty; terminator|Terminator|terminator; com.gexperts.Tilix|Tilix|tilix;
debian-xterm|XTerm|xterm; debian-uxterm|UXTerm|uxterm; rxvt-unicode|rxvt-unicode|urxvt;
htop|Htop|htop; btop|btop++|btop; mc|Midnight Commander|mc; ranger|ranger|ranger;
synaptic|Synaptic Package Manager|synaptic-pkexec; gdebi|GDebi Package Installer|gdebi-gtk;
gparted|GParted|gparted; bleachbit|BleachBit|bleachbit; stacer|Stacer|stacer;
hardinfo|System Profiler and Benchmark|hardinfo;
blueman-manager|Bluetooth Manager|blueman-manager;
system-config-printer|Print Settings|system-config-printer;
nm-connection-editor|Advanced Network Configuration|nm-connection-editor;
ibus-setup|IBus Preferences|ibus-setup; org.fcitx.Fcitx5|Fcitx 5|fcitx5;
im-config|Input Method|im-config; dconf-editor|dconf Editor|dconf-editor;
ca.desrt.dconf-editor|dconf Editor|dconf-editor; evolution-calendar|Calendar|evolution;
gcr-viewer|View file|gcr-viewer; qt5ct|Qt5 Settings|qt5ct;
kvantummanager|Kvantum Manager|kvantummanager; font-manager|Font Manager|font-manager;
com.github.FontManager.FontManager|Font Manager|font-manager; gucharmap|Character Map|gucharmap;
simplescreenrecorder|SimpleScreenRecorder|simplescreenrecorder; peek|Peek|peek;
flameshot|Flameshot|flameshot; org.flameshot.Flameshot|Flameshot|flameshot;
shutter|Shutter|shutter; guvcview|guvcview|guvcview; xsane|XSane|xsane;
gscan2pdf|gscan2pdf|gscan2pdf; redshift-gtk|Redshift|redshift-gtk; conky|conky|conky;
plank|Plank|plank; ulauncher|Ulauncher|ulauncher; rofi|Rofi|rofi; barrier|Barrier|barrier;
kdeconnect|KDE Connect|kdeconnect-app; gpick|Gpick|gpick; gcolor3|Color Picker|gcolor3;
arduino|Arduino IDE|arduino; fritzing|Fritzing|Fritzing; sigrok-pulseview|PulseView|pulseview;
gqrx|Gqrx|gqrx
)";

// Names that would lead into places of others: made up, but for some that old releases had.
constexpr std::string_view misleading = R"(
dconf|dconf|dconf; keyrings|keyrings|keyrings; fonts|Fonts|fonts; mail|Mail|mail;
calendar|Calendar|calendar; autostart|Autostart|autostart; systemd|systemd|systemd;
gtk-3.0|GTK|gtk-3.0; icons|Icons|icons; flatpak|Flatpak|flatpak;
containers|Containers|containers; gnupg|GnuPG|gpg; menus|Menus|menus;
applications|Applications|applications; share|Share|share; evolution|Evolution|evolution;
org.example.Mail|Mail|mail; org.example.Keyrings|keyrings|keyrings;
thunderbird-beta|Thunderbird|thunderbird; webapp-chromium|Chromium|chromium;
config|Config|config; snap|Snap|snap; ssh|ssh|ssh; profile|Profile|profile; bashrc|bashrc|bashrc;
mozilla|Mozilla|mozilla; icedove|Icedove|icedove; passwords|Passwords|pass;
password-store|Password Store|pass; themes|Themes|themes; trash|Trash|trash;
kwalletd|Wallet|kwalletd; wine|Wine|wine; cargo|Cargo|cargo
)";

// Folders as they stand in homes: C configuration, D data, K caches, H the home itself. P: offered
// to nobody; profile: to its own browser alone, and never for certain; -: to nobody for certain;
// else the identifier whose own folder it is.
constexpr std::string_view folders = R"(
C|P|dconf,gtk-2.0,gtk-3.0,gtk-4.0,glib-2.0,menus,environment.d,fontconfig,pulse,pipewire;
C|P|wireplumber,ibus,fcitx5,mimeapps.list,user-dirs.dirs,user-dirs.locale,autostart,systemd;
C|P|goa-1.0,kwalletrc,kdeglobals,kwinrc,plasma-workspace,evolution,geary,mutt,neomutt;
C|P|keepassxc,KeePass,Bitwarden,1Password,gh,git,rclone,containers,libvirt,VirtualBox,signond;
C|P|xsettingsd,monitors.xml,gnome-session,i3,sway,openbox,cinnamon,mate,nvim,emacs,fish,zsh;
C|P|Signal,Element,JetBrains,Google,xfce4,lxqt,kde.org,BraveSoftware,emailidentities;
C|P|mailtransports;
C|profile|chromium,google-chrome,microsoft-edge,vivaldi,opera,epiphany,falkon,qutebrowser;
C|profile|midori;
C|-|Code,VSCodium,Slack,libreoffice,obs-studio,GIMP,Thunar,calibre,transmission,MusE;
C|-|Nextcloud,spotify-beta,sublime-text,user-tmp,gthumb,evince,nautilus,hexchat2;
C|-|inkscape-old,kate,okularrc,totem,yelp,zoomus.conf,Trolltech,qBittorrent,MuseScore;
C|-|KDE Connect; C|audacious|audacious; C|geany|geany; C|gimp|gimp; C|htop|htop; C|mpv|mpv;
C|vlc|vlc; C|kitty|kitty; C|qt5ct|qt5ct; C|remmina|remmina; C|ulauncher|ulauncher;
C|smplayer|smplayer; C|terminator|terminator; C|blender|blender; C|freecad|freecad;
C|hexchat|hexchat; C|lutris|lutris; C|deluge|deluge; C|gpick|gpick; C|kdeconnect|kdeconnect;
C|org.gnome.Builder|org.gnome.Builder;
D|P|keyrings,evolution,fonts,gnupg,applications,icons,themes,mime,flatpak,Trash,containers;
D|P|kwalletd,geary,akonadi,local-mail,contacts,calendars,korganizer,kmail2,folks,sounds;
D|P|backgrounds,wallpapers,desktop-directories,recently-used.xbel,gvfs-metadata,systemd,dbus-1;
D|P|metainfo,appdata,glib-2.0,gnome-shell,nautilus,tracker,baloo,zeitgeist,kactivitymanagerd;
D|P|color-schemes,aurorae,plasma,kwin,libvirt,gnome-boxes,docker,waydroid,pki,TpLogger;
D|P|telepathy,dino,gajim,shotwell,rhythmbox,darktable,gnote,tomboy,bijiben,gtg,zim,gnucash;
D|P|homebank,gramps,Anki2,password-store,JetBrains,Google,kservices5,icc,sddm,wineprefixes;
D|P|bottles,Velto,nvim,pass,xorg,mail,man; D|profile|epiphany,falkon,qutebrowser,torbrowser;
D|-|Steam,TelegramDesktop,okular,dolphin,kate,konsole,gwenview,RecentX,Mumble,data,Euro Truck;
D|-|marble,kscreenlocker,ark,qalculate,klipper,libkunitconversion,remoteview,gedit,totem;
D|-|webkitgtk,xreader,QGIS,cantata; D|stellarium|stellarium; D|minetest|minetest;
D|openttd|openttd; D|supertuxkart|supertuxkart; D|0ad|0ad; D|cherrytree|cherrytree; D|meld|meld;
D|lutris|lutris; D|quodlibet|quodlibet; D|scummvm|scummvm;
D|org.gnome.TextEditor|org.gnome.TextEditor; D|vlc|vlc;
K|P|mozilla,evolution,fontconfig,thumbnails,mesa_shader_cache,gstreamer-1.0,dconf,JetBrains;
K|P|Google,ibus,tracker3,obexd,BraveSoftware;
K|profile|chromium,google-chrome,microsoft-edge,vivaldi,epiphany;
K|-|pip,go-build,ksycoca5,icon-cache.kcache,plasmashell,babl,gegl-0.4,spotify,yay,typescript;
K|-|event,node-gyp,appstream,flatpak,gnome-software,wine,mc,samba; K|peek|peek;
K|shotwell|-; K|simplescreenrecorder|simplescreenrecorder; K|thunderbird|thunderbird;
K|transmission|-; K|lollypop|-; K|deja-dup|deja-dup;
H|P|.ssh,.gnupg,.thunderbird,.icedove,.password-store,.mail,Mail,Maildir,.mozilla,.pki,.aws;
H|P|.kube,.docker,.netrc,.purple,.claws-mail,.sylpheed-2.0,.balsa,.mutt,.icons,.themes,.fonts;
H|P|.config,.local,.cache,.var,snap,.profile,.bashrc,.bash_history,.zshrc,.dbus,.gconf,.kde;
H|P|.wine,.PlayOnLinux,.steam,.cargo,.rustup,.npm,.nvm,.pyenv,.gradle,.m2,.java,.android,.vim;
H|P|.emacs.d,.gitconfig,.bitcoin,.electrum,VirtualBox VMs,.vagrant.d,.gramps,.zotero,Zotero;
H|P|Calibre Library,.minecraft,.jupyter,.ipython,.face,.Xauthority,.xsession,.calcurse,.gajim;
H|P|.weechat,.irssi,.texmf,.conda,.dotnet,.cups; H|profile|.librewolf,.waterfox,.zen;
H|-|Documents,Downloads,Pictures,Projects,bin,src,games,.vscode,.designer;
H|-|.arduino15,.Skype,.swt,.matplotlib,.nv,.cmake,.lyx,.FBReader,.gnubg,.gimp-2.8,.hplip;
H|-|.openoffice,.adobe,.macromedia,.audacity-data; H|filezilla|.filezilla;
H|wireshark|.wireshark; H|octave|.octave; H|tuxpaint|.tuxpaint; H|dosbox|.dosbox;
H|hedgewars|.hedgewars; H|amule|.amule; H|freemind|.freemind; H|josm|.josm; H|gqrx|.gqrx;
C|discord|discord; C|obsidian|obsidian; H|eclipse|.eclipse; H|netbeans|.netbeans;
K|winetricks|winetricks;
H|wesnoth|.wesnoth; H|celestia|.celestia; H|scummvm|.scummvm; H|stellarium|.stellarium;
H|lmms|.lmms; H|xonotic|.xonotic
)";

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> pieces;
    while (!text.empty()) {
        std::string_view piece = text.substr(0, text.find(separator));
        text.remove_prefix(std::min(text.size(), piece.size() + 1));
        while (piece.starts_with('\n') || piece.starts_with(' '))
            piece.remove_prefix(1);
        while (piece.ends_with('\n'))
            piece.remove_suffix(1);
        if (!piece.empty()) pieces.emplace_back(piece);
    }
    return pieces;
}

std::vector<AppEntry> entriesOf(std::string_view text) {
    std::vector<AppEntry> entries;
    for (const std::string& row : split(text, ';')) {
        const auto cells = split(row, '|');
        entries.push_back({.bid = cells.at(0), .name = cells.at(1), .exec = cells.at(2)});
    }
    return entries;
}

}  // namespace

std::vector<AppEntry> realApplications() { return entriesOf(applications); }

std::vector<AppEntry> misleadingApplications() { return entriesOf(misleading); }

std::vector<RealFolder> realFolders(const HomeLayout& home) {
    std::vector<RealFolder> found;
    for (const std::string& row : split(folders, ';')) {
        const auto cells = split(row, '|');
        const char base = cells.at(0).at(0);
        const std::string& folder = base == 'C'   ? home.configuration
                                    : base == 'D' ? home.applicationSupport
                                    : base == 'K' ? home.caches
                                                  : home.home;
        for (const std::string& name : split(cells.at(2), ','))
            found.push_back({.path = folder + "/" + name, .of = cells.at(1)});
    }
    return found;
}

}  // namespace velto
