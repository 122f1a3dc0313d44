#include "cleaning/known_caches.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "cleaning/caches_made_again.h"
#include "cleaning/caches_never_taken.h"
#include "support/TestPlatform.h"

namespace velto {
namespace {

using testing::IsEmpty;
using testing::Not;
using KeptFor = CacheFacts::Reason;

constexpr KnownCache stays = KnownCache::neverTaken;
constexpr KnownCache goes = KnownCache::madeAgain;
constexpr KnownCache asks = KnownCache::unknown;

struct Expected {
    std::string_view name;
    KnownCache verdict;
};

/// Names that programs really give their folders among the caches of a Linux home, and some that
/// only look like one of them.
constexpr auto realNames = std::to_array<Expected>({
    // clang-format off
        {"rclone", stays}, {"Rclone", stays}, {"onedriver", stays}, {"kioexec", stays},
        {"obexd", stays}, {"borg", stays}, {"restic", stays}, {"kopia", stays},
        {"duplicity", stays}, {"deja-dup", stays}, {"huggingface", stays}, {"torch", stays},
        {"whisper", stays}, {"clip", stays}, {"gpt4all", stays}, {"ollama", stays},
        {"llama.cpp", stays}, {"lm-studio", stays}, {"keras", stays}, {"kagglehub", stays},
        {"modelscope", stays}, {"instructlab", stays}, {"vosk", stays}, {"suno", stays},
        {"JetBrains", stays}, {"Google", stays}, {"RawTherapee", stays}, {"RawTherapee5", stays},
        {"RawTherapee5-dev", stays}, {"pre-commit", stays}, {"pypoetry", stays}, {"R", stays},
        {"org.R-project.R", stays}, {"deno", stays}, {"winetricks", stays}, {"evolution", stays},
        {"sessions", stays}, {"xfce4", stays}, {"cliphist", stays}, {"git", stays},
        {"keyring-a1B2c3", stays}, {"keepassxc", stays}, {"spotify", stays},
        {"com.spotify.client", stays}, {"rawtherapee-x", stays},

        {"mozilla", goes}, {"librewolf", goes}, {"waterfox", goes}, {"chromium", goes},
        {"google-chrome", goes}, {"google-chrome-beta", goes}, {"google-chrome-unstable", goes},
        {"BraveSoftware", goes}, {"microsoft-edge", goes}, {"microsoft-edge-beta", goes},
        {"microsoft-edge-dev", goes}, {"vivaldi", goes}, {"vivaldi-snapshot", goes},
        {"opera", goes}, {"yandex-browser", goes}, {"epiphany", goes}, {"qutebrowser", goes},
        {"falkon", goes}, {"kio_http", goes}, {"fontconfig", goes}, {"thumbnails", goes},
        {"mesa_shader_cache", goes}, {"mesa_shader_cache_sf", goes},
        {"mesa_shader_cache_db", goes}, {"nvidia", goes}, {"gstreamer-1.0", goes},
        {"darktable", goes}, {"matplotlib", goes}, {"pip", goes}, {"npm", goes}, {"yarn", goes},
        {"pnpm", goes}, {"node-gyp", goes}, {"electron", goes}, {"electron-builder", goes},
        {"composer", goes}, {"debuginfod_client", goes}, {"go-build", goes}, {"gopls", goes},
        {"golangci-lint", goes}, {"ccache", goes}, {"sccache", goes}, {"dune", goes},
        {"clangd", goes}, {"vscode-cpptools", goes}, {"typescript", goes}, {"black", goes},
        {"pylint", goes}, {"jedi", goes},

        {"abrt", asks}, {"akonadi", asks}, {"albert", asks}, {"ardour6", asks}, {"ardour7", asks},
        {"arduino", asks}, {"ark", asks}, {"ART", asks}, {"audacity", asks}, {"babl", asks},
        {"baloo_file", asks}, {"bazel", asks}, {"bazelisk", asks}, {"bitwarden", asks},
        {"blender", asks}, {"bloop", asks}, {"bottles", asks}, {"buildah", asks}, {"bundle", asks},
        {"cabal", asks}, {"calibre", asks}, {"cantata", asks}, {"cargo", asks}, {"cheese", asks},
        {"chroma", asks}, {"clementine", asks}, {"colima", asks},
        {"com.github.tchx84.Flatseal", asks}, {"composer2", asks}, {"conda", asks},
        {"containers", asks}, {"copyq", asks}, {"coursier", asks}, {"Cypress", asks},
        {"darling", asks}, {"dconf", asks}, {"digikam", asks}, {"discord", asks}, {"docker", asks},
        {"dolphin", asks}, {"dolphin-emu", asks}, {"dropbox", asks}, {"electrum", asks},
        {"emacs", asks}, {"emersion", asks}, {"evince", asks}, {"evolution-data-server", asks},
        {"fcitx5", asks}, {"feh", asks}, {"ffmpeg", asks}, {"filezilla", asks}, {"firebase", asks},
        {"fish", asks}, {"flatpak", asks}, {"flatpak-builder", asks}, {"flutter", asks},
        {"folks", asks}, {"freecad", asks}, {"gajim", asks}, {"geary", asks}, {"gegl-0.4", asks},
        {"gdm", asks}, {"gimp", asks}, {"gnome-boxes", asks}, {"gnome-builder", asks},
        {"gnome-calculator", asks}, {"gnome-control-center", asks}, {"gnome-maps", asks},
        {"gnome-photos", asks}, {"gnome-recipes", asks}, {"gnome-shell", asks},
        {"gnome-software", asks}, {"go-mod", asks}, {"godot", asks}, {"gradle", asks},
        {"gthumb", asks}, {"gvfs", asks}, {"gwenview", asks}, {"hatch", asks}, {"helm", asks},
        {"heroic", asks}, {"homebank", asks}, {"hugo", asks}, {"ibus", asks}, {"inkscape", asks},
        {"insomnia", asks}, {"insync", asks}, {"ipython", asks}, {"istanbul", asks}, {"ivy", asks},
        {"jdtls", asks}, {"jupyter", asks}, {"kaggle", asks}, {"k9s", asks}, {"kate", asks},
        {"kdenlive", asks}, {"keybase", asks}, {"kicad", asks}, {"kitty", asks}, {"konsole", asks},
        {"krita", asks}, {"krunner", asks}, {"ksplash", asks}, {"lapce", asks},
        {"libreoffice", asks}, {"libvirt", asks}, {"lima", asks}, {"lutris", asks}, {"lxc", asks},
        {"mako", asks}, {"marble", asks}, {"mc", asks}, {"mega", asks}, {"metals", asks},
        {"minikube", asks}, {"minecraft", asks}, {"mpd", asks}, {"mpv", asks},
        {"ms-playwright", asks}, {"mu", asks}, {"multipass", asks}, {"mutt", asks},
        {"Mullvad", asks}, {"neomutt", asks}, {"neovim", asks}, {"newsboat", asks},
        {"Nextcloud", asks}, {"nheko", asks}, {"nix", asks}, {"nvim", asks}, {"obs-studio", asks},
        {"okular", asks}, {"onlyoffice", asks}, {"opencode", asks}, {"openshot", asks},
        {"org.gnome.Maps", asks}, {"packer", asks}, {"pamac", asks}, {"paru", asks}, {"pdm", asks},
        {"phoronix-test-suite", asks}, {"picom", asks}, {"pikaur", asks}, {"pipx", asks},
        {"plasmashell", asks}, {"playonlinux", asks}, {"podman", asks}, {"postman", asks},
        {"pnpm-store", asks}, {"prisma", asks}, {"protonmail", asks}, {"psensor", asks},
        {"puppeteer", asks}, {"pulumi", asks}, {"PrusaSlicer", asks}, {"qgis", asks},
        {"quickshell", asks}, {"ramalama", asks}, {"renv", asks}, {"rhythmbox", asks},
        {"rofi", asks}, {"ruby", asks}, {"rustic", asks}, {"samba", asks}, {"sbt", asks},
        {"seahorse", asks}, {"shotcut", asks}, {"shotwell", asks}, {"signal-desktop", asks},
        {"slack", asks}, {"sublime-text", asks}, {"steam", asks}, {"strawberry", asks},
        {"swaylock", asks}, {"Slic3r", asks}, {"syncthing", asks}, {"system-config", asks},
        {"TelegramDesktop", asks}, {"telegram-desktop", asks}, {"terraform", asks},
        {"thunderbird", asks}, {"tlp", asks}, {"torbrowser", asks}, {"totem", asks},
        {"tracker3", asks}, {"transmission", asks}, {"trivy", asks}, {"uv", asks},
        {"vagrant", asks}, {"vim", asks}, {"virt-manager", asks}, {"virtualenv", asks},
        {"vlc", asks}, {"VSCodium", asks}, {"vscode", asks}, {"wal", asks}, {"wine", asks},
        {"Wolfram", asks}, {"xournalpp", asks}, {"yay", asks}, {"yt-dlp", asks}, {"zed", asks},
        {"zoom", asks}, {"zotero", asks}, {"zsh", asks}, {".hidden", asks}, {"Mozilla", asks},
        {"CHROMIUM", asks}, {"pip-tools", asks}, {"mozilla-backup", asks},
        {"google-chrome-old", asks}, {"mesa_shader_cache.old", asks}, {"thumbnails2", asks},
    // clang-format on
});

TEST(KnownCaches, NoRealNameIsTakenForMadeAgainThatIsNot) {
    static_assert(realNames.size() >= 200);
    std::set<std::string_view> met;
    for (const auto& [name, verdict] : realNames) {
        EXPECT_TRUE(met.insert(name).second) << name << " twice";
        EXPECT_EQ(knownCache(name), verdict) << name;
    }
}

TEST(KnownCaches, EveryRowIsAmongTheRealNamesAndSaysWhyAndWhoSaysSo) {
    const auto isExpected = [](std::string_view name, KnownCache verdict) {
        return std::ranges::any_of(realNames, [&](const Expected& one) {
            return one.name == name && one.verdict == verdict;
        });
    };
    for (const NeverTakenCache& row : cachesNeverTaken) {
        if (!row.name.ends_with('*')) {
            EXPECT_TRUE(isExpected(row.name, stays)) << row.name;
        }
        EXPECT_THAT(row.reason, Not(IsEmpty())) << row.name;
        EXPECT_THAT(row.source, Not(IsEmpty())) << row.name;
    }
    for (const MadeAgainCache& row : cachesMadeAgain) {
        EXPECT_TRUE(isExpected(row.name, goes)) << row.name;
        EXPECT_THAT(row.reason, Not(IsEmpty())) << row.name;
        EXPECT_THAT(row.source, Not(IsEmpty())) << row.name;
    }
}

struct CacheJudgeTest : testing::Test {
    CacheJudgeTest() { useLinuxHome(); }

    void useLinuxHome() {
        machine.platform.layout = HomeLayout::freedesktop(
            machine.home.path(), [](const std::string&) { return std::nullopt; }, "");
    }
    void useMacHome() { machine.platform.layout = HomeLayout::macOS(machine.home.path()); }

    KeptFor reasonOf(const std::string& name, const std::string& rule = "caches") {
        const std::string path = machine.platform.layout.caches + "/" + name;
        return CacheJudge(machine.platform).facts(Candidate{.ruleID = rule, .path = path}).reason;
    }

    void runs(const std::string& executable) {
        machine.running.processes.clear();
        machine.running.add({.executable = executable});
    }
    void runs(const std::string& bundle, const std::string& identifier) {
        machine.running.processes.clear();
        machine.running.add({.bundleIdentifier = identifier,
                             .bundlePath = bundle,
                             .executable = bundle + "/Contents/MacOS/main"});
    }

    TestPlatform machine;
};

TEST_F(CacheJudgeTest, OnALinuxHomeOnlyWhatIsRecognisedIsCertain) {
    EXPECT_EQ(reasonOf("mozilla"), KeptFor::madeAgain);
    EXPECT_EQ(reasonOf("some-program"), KeptFor::unknown);
    EXPECT_EQ(reasonOf("rclone"), KeptFor::keeps);
}

TEST_F(CacheJudgeTest, OnAMacEverythingIsCertainButWhatIsNeverTaken) {
    useMacHome();
    EXPECT_EQ(reasonOf("com.example.App"), KeptFor::madeAgain);
    EXPECT_EQ(reasonOf("JetBrains"), KeptFor::keeps);
    EXPECT_EQ(reasonOf("rclone"), KeptFor::keeps);
}

TEST_F(CacheJudgeTest, TheCacheOfAProgramThatRunsIsNotCertain) {
    runs("/usr/lib/firefox-esr/firefox-esr");
    EXPECT_EQ(reasonOf("mozilla"), KeptFor::running);
    EXPECT_EQ(reasonOf("chromium"), KeptFor::madeAgain);
    runs("/opt/google/chrome/chrome");
    EXPECT_EQ(reasonOf("google-chrome"), KeptFor::running);
    EXPECT_EQ(reasonOf("mozilla"), KeptFor::madeAgain);
    runs("/usr/bin/Darktable");
    EXPECT_EQ(reasonOf("darktable"), KeptFor::running) << "by its own name, in whatever letters";
    runs("/usr/bin/python3.11");
    EXPECT_EQ(reasonOf("pip"), KeptFor::running) << "pip is a python";
    runs(machine.platform.layout.caches + "/electron/abc/electron-v30");
    EXPECT_EQ(reasonOf("electron"), KeptFor::running) << "it runs from in there";
    runs(machine.platform.layout.caches + "/go-build-tool/x");
    EXPECT_EQ(reasonOf("go-build"), KeptFor::madeAgain) << "beside it, not in it";
}

TEST_F(CacheJudgeTest, OnAMacTheEntryIsTheIdentifierOfItsApplication) {
    useMacHome();
    runs("/Applications/Example.app", "com.example.App");
    EXPECT_EQ(reasonOf("com.example.App"), KeptFor::running);
    EXPECT_EQ(reasonOf("com.example.app"), KeptFor::running);
    EXPECT_EQ(reasonOf("com.example.App.ShipIt"), KeptFor::running) << "its updater's";
    EXPECT_EQ(reasonOf("Example"), KeptFor::running) << "by the bundle's name";
    EXPECT_EQ(reasonOf("com.example.App2"), KeptFor::madeAgain);
    EXPECT_EQ(reasonOf("com.other.App"), KeptFor::madeAgain);
    runs("/Applications/Chrome.app/Contents/Helper.app", "com.google.Chrome.helper");
    EXPECT_EQ(reasonOf("com.google.Chrome"), KeptFor::running) << "a helper runs";
    runs("/Applications/Firefox.app", "org.mozilla.firefox");
    EXPECT_EQ(reasonOf("Mozilla"), KeptFor::running) << "by its maker";
    EXPECT_EQ(reasonOf("org.chromium.Chromium"), KeptFor::madeAgain);
}

TEST_F(CacheJudgeTest, XcodesBuildDataStaysWhileXcodeRuns) {
    useMacHome();
    EXPECT_EQ(reasonOf("DerivedData", "xcode"), KeptFor::madeAgain);
    runs("/Applications/Xcode.app", "com.apple.dt.Xcode");
    EXPECT_EQ(reasonOf("DerivedData", "xcode"), KeptFor::running);
}

TEST_F(CacheJudgeTest, FactsAreToldOfCachesAlone) {
    const auto facts =
        CacheJudge(machine.platform)
            .facts(std::vector<Candidate>{{.ruleID = "caches", .path = "/c/mozilla"},
                                          {.ruleID = "oldDownloads", .path = "/d/a"},
                                          {.ruleID = "xcode", .path = "/x/DerivedData"}});
    EXPECT_EQ(facts, (FactsByPath{{"/c/mozilla", {KeptFor::madeAgain}},
                                  {"/x/DerivedData", {KeptFor::madeAgain}}}));
    EXPECT_TRUE(facts.at("/c/mozilla").isCertain());
    EXPECT_FALSE(CacheFacts{KeptFor::running}.isCertain());
}

}  // namespace
}  // namespace velto
