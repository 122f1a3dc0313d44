// What a Linux home's environment and "user-dirs.dirs" may say, and what no value may bring about:
// that the home, or a folder of the user's own, is taken for a place that others fill and clear.

#include <gmock/gmock.h>

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/HomeLayout.h"
#include "platform/values/text.h"

namespace velto {
namespace {

using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;

const std::string home = "/home/ana";

HomeLayout layoutOf(const std::map<std::string, std::string>& environment,
                    const std::string& userDirs = "",
                    const std::map<std::string, std::string>& links = {}) {
    const auto variable = [&](const std::string& name) -> std::optional<std::string> {
        const auto found = environment.find(name);
        return found == environment.end() ? std::nullopt : std::optional(found->second);
    };
    const auto resolve = [&](const std::string& path) {
        for (const auto& [link, target] : links) {
            if (isAtOrBelow(path, link)) return standardizedPath(target + path.substr(link.size()));
        }
        return path;
    };
    return HomeLayout::freedesktop(home, variable, userDirs, resolve);
}

struct Role {
    const char* variable;
    std::string HomeLayout::*folder;
    const char* standard;  // below the home
};

constexpr std::array<Role, 4> baseRoles{{
    {"XDG_CACHE_HOME", &HomeLayout::caches, "/.cache"},
    {"XDG_CONFIG_HOME", &HomeLayout::configuration, "/.config"},
    {"XDG_DATA_HOME", &HomeLayout::applicationSupport, "/.local/share"},
    {"XDG_STATE_HOME", &HomeLayout::applicationState, "/.local/state"},
}};

constexpr std::array<Role, 6> userRoles{{
    {"XDG_PICTURES_DIR", &HomeLayout::pictures, "/Pictures"},
    {"XDG_VIDEOS_DIR", &HomeLayout::movies, "/Videos"},
    {"XDG_MUSIC_DIR", &HomeLayout::music, "/Music"},
    {"XDG_DOWNLOAD_DIR", &HomeLayout::downloads, "/Downloads"},
    {"XDG_DOCUMENTS_DIR", &HomeLayout::documents, "/Documents"},
    {"XDG_DESKTOP_DIR", &HomeLayout::desktop, "/Desktop"},
}};

/// Whatever was stated: nothing that is cleared, searched or walked by role reaches the user's own.
void expectHarmless(const HomeLayout& layout) {
    std::vector<std::string> own{home, home + "/.ssh", home + "/.gnupg", home + "/Templates"};
    for (const std::string* folder : {&layout.pictures, &layout.movies, &layout.music,
                                      &layout.downloads, &layout.documents, &layout.desktop}) {
        if (!folder->empty()) own.push_back(*folder);
        EXPECT_FALSE(!folder->empty() && isAtOrBelow(home, *folder)) << *folder;
    }
    for (const Role& role : baseRoles) {
        const std::string& folder = layout.*role.folder;
        for (const std::string& path : own) {
            EXPECT_FALSE(!folder.empty() && isAtOrBelow(path, folder))
                << role.variable << ' ' << folder << " takes " << path;
        }
        EXPECT_FALSE(folder.empty() && role.folder != &HomeLayout::caches) << role.variable;
    }
    if (!layout.caches.empty()) {
        for (const std::string* kept :
             {&layout.configuration, &layout.applicationSupport, &layout.applicationState,
              &layout.dataFolder, &layout.trashFolder, &layout.removalFolder, &layout.systemTrash,
              &layout.sandboxes, &layout.agentsFolder, &layout.userApplications}) {
            EXPECT_FALSE(isAtOrBelow(*kept, layout.caches)) << layout.caches << " takes " << *kept;
            EXPECT_FALSE(isAtOrBelow(layout.caches, *kept)) << layout.caches << " is in " << *kept;
        }
        EXPECT_THAT(layout.neverRemoved, Contains(layout.caches));
    }
    EXPECT_FALSE(layout.downloads == layout.documents && !layout.downloads.empty());
    EXPECT_EQ(layout.walkRoots.front(), home);
    for (const std::string& root : layout.walkRoots)
        EXPECT_TRUE(root == home || (isAtOrBelow(root, home) && !root.empty())) << root;
    EXPECT_THAT(layout.libraryRoots, Not(Contains(home)));
    EXPECT_THAT(layout.libraryRoots, Not(Contains("")));
    EXPECT_THAT(layout.neverRemoved, IsSupersetOf({home + "/.config", home + "/.cache"}));
    EXPECT_THAT(layout.neverRemoved, Not(Contains("")));
}

// Base folders

TEST(XdgFolders, AHostileBaseFolderCountsAsUnsetWhateverItsRole) {
    const char* const values[] = {"/home/ana",
                                  "/home/ana/",
                                  "//home//ana//",
                                  "/home/ana/.",
                                  "/home/ana/./",
                                  "/home/ana/x/..",
                                  "/home/ana/Documents/..",
                                  "/home/ana/../ana",
                                  "/home",
                                  "/home/ana/..",
                                  "/",
                                  "/..",
                                  "/home/ana/Documents",
                                  "/home/ana/.config/../Pictures",
                                  "/home/ana/Templates",
                                  "/home/ana/Public",
                                  "/home/ana/.ssh",
                                  "/home/ana/.ssh/cache",
                                  "/home/ana/.gnupg",
                                  "/link/to/home",
                                  "/link/to/documents",
                                  "/link/to/root",
                                  "relative",
                                  "~",
                                  "$HOME/x",
                                  "./x",
                                  "",
                                  "/home/ana/.ca\nche",
                                  "/home/ana/\x1b[2J",
                                  "/home/ana/\x7f"};
    const std::map<std::string, std::string> links{{"/link/to/home", "/home/ana"},
                                                   {"/link/to/documents", "/home/ana/Documents"},
                                                   {"/link/to/root", "/"}};
    for (const Role& role : baseRoles) {
        for (const char* value : values) {
            SCOPED_TRACE(std::string(role.variable) + "=" + value);
            const HomeLayout layout = layoutOf({{role.variable, value}}, "", links);
            EXPECT_EQ(layout.*role.folder, home + role.standard);
            expectHarmless(layout);
        }
    }
}

TEST(XdgFolders, AFolderThatTheUserNamedIsTheUsersOwn) {
    const std::string userDirs =
        "XDG_DOCUMENTS_DIR=\"$HOME/studio/papers\"\nXDG_PROJECTS_DIR=\"$HOME/code\"\n";
    for (const Role& role : baseRoles) {
        for (const char* value :
             {"/home/ana/studio", "/home/ana/studio/papers", "/home/ana/code"}) {
            SCOPED_TRACE(std::string(role.variable) + "=" + value);
            const HomeLayout layout = layoutOf({{role.variable, value}}, userDirs);
            EXPECT_EQ(layout.*role.folder, home + role.standard);
            EXPECT_EQ(layout.documents, home + "/studio/papers");
            expectHarmless(layout);
        }
    }
}

TEST(XdgFolders, TheCachesShareNothingWithAnyOtherRole) {
    for (const char* value :
         {"/home/ana/.config", "/home/ana/.config/x", "/home/ana/.local", "/home/ana/.local/share",
          "/home/ana/.local/share/Velto", "/home/ana/.local/share/Velto/Trash",
          "/home/ana/.local/share/Trash", "/home/ana/.local/state", "/home/ana/.local/bin",
          "/home/ana/.var", "/home/ana/.var/app", "/home/ana/.var/app/org.acme.App",
          "/home/ana/Applications", "/home/ana/Documents/cache", "/home/ana/./.config/"}) {
        SCOPED_TRACE(value);
        const HomeLayout layout = layoutOf({{"XDG_CACHE_HOME", value}});
        EXPECT_EQ(layout.caches, home + "/.cache");
        expectHarmless(layout);
    }
}

TEST(XdgFolders, RolesThatMeetInOneFolderAreNeverCleared) {
    // The other role is where it is said to be; then there are no caches to clear.
    for (const Role& role : baseRoles) {
        if (role.folder == &HomeLayout::caches) continue;
        for (const char* value : {"/home/ana/.cache", "/home/ana/.cache/inside"}) {
            SCOPED_TRACE(std::string(role.variable) + "=" + value);
            const HomeLayout layout = layoutOf({{role.variable, value}});
            EXPECT_EQ(layout.*role.folder, value);
            EXPECT_EQ(layout.caches, "");
            expectHarmless(layout);
        }
        const HomeLayout both =
            layoutOf({{role.variable, "/home/ana/.all"}, {"XDG_CACHE_HOME", "/home/ana/.all"}});
        EXPECT_EQ(both.*role.folder, "/home/ana/.all");
        EXPECT_EQ(both.caches, home + "/.cache");
        expectHarmless(both);
    }
    expectHarmless(layoutOf({}, "XDG_DOCUMENTS_DIR=\"$HOME/.cache/papers\"\n"));
    EXPECT_EQ(layoutOf({}, "XDG_DOCUMENTS_DIR=\"$HOME/.cache/papers\"\n").caches, "");
}

TEST(XdgFolders, AStandardFolderThatLeadsToTheHomeIsNoCache) {
    for (const char* target : {"/home/ana", "/home", "/", "/home/ana/Documents"}) {
        SCOPED_TRACE(target);
        const HomeLayout layout = layoutOf({}, "", {{"/home/ana/.cache", target}});
        EXPECT_EQ(layout.caches, "");
        expectHarmless(layout);
    }
}

TEST(XdgFolders, AnHonestBaseFolderCounts) {
    const std::map<std::string, std::string> links{{"/mnt/ana", "/home/ana"}};
    const struct {
        const char *value, *expected;
    } rows[] = {{"/home/ana/caches/", "/home/ana/caches"},
                {"/home/ana/x/../caches", "/home/ana/caches"},
                {"/var/tmp/ana", "/var/tmp/ana"},
                {"/home/ana2", "/home/ana2"},
                {"/home/ana/Documents2", "/home/ana/Documents2"},
                {"/home/ana/\xff\xfe", "/home/ana/\xff\xfe"},
                {"/mnt/ana/caches", "/home/ana/caches"}};
    for (const Role& role : baseRoles) {
        for (const auto& [value, expected] : rows) {
            SCOPED_TRACE(std::string(role.variable) + "=" + value);
            EXPECT_EQ(layoutOf({{role.variable, value}}, "", links).*role.folder, expected);
        }
    }
}

TEST(XdgFolders, PathsOfTheDataDirectoriesAreStandardised) {
    const HomeLayout layout = layoutOf({{"XDG_DATA_DIRS", "/opt/./a/../share/:relative:"}});
    EXPECT_EQ(layout.desktopEntries[3].path, "/opt/share/applications");
}

// The user's folders

TEST(XdgFolders, AHostileUserFolderIsTheStandardOne) {
    for (const Role& role : userRoles) {
        for (const char* value :
             {"/", "/home", "$HOME/..", "$HOME/../..", "relative", "", "~/x", "$HOMEx",
              "$HOME/.config", "$HOME/.local", "$HOME/.local/share", "$HOME/.local/state/",
              "$HOME/.ssh", "$HOME/.ssh/keys", "$HOME/.gnupg", "/link/to/root", "$HOME/a\x01 b"}) {
            SCOPED_TRACE(std::string(role.variable) + "=" + value);
            const HomeLayout layout = layoutOf(
                {}, std::string(role.variable) + "=\"" + value + "\"\n", {{"/link/to/root", "/"}});
            EXPECT_EQ(layout.*role.folder, home + role.standard);
            expectHarmless(layout);
        }
    }
}

TEST(XdgFolders, TheHomeAsAUserFolderMeansThatThereIsNone) {
    for (const Role& role : userRoles) {
        for (const char* value : {"$HOME", "$HOME/", "$HOME/.", "$HOME/x/..", "/home/ana/",
                                  "/home/../home/ana", "/link/to/home"}) {
            SCOPED_TRACE(std::string(role.variable) + "=" + value);
            const HomeLayout layout = layoutOf(
                {}, std::string(role.variable) + "=\"" + value + "\"\n", {{"/link/to/home", home}});
            EXPECT_EQ(layout.*role.folder, "");
            expectHarmless(layout);
        }
    }
}

TEST(XdgFolders, AnHonestUserFolderCounts) {
    for (const Role& role : userRoles) {
        for (const auto& [value, expected] :
             {std::pair("$HOME/Mine/", "/home/ana/Mine"),
              std::pair("$HOME/./a/../Mine", "/home/ana/Mine"),
              std::pair("/media/disc", "/media/disc"), std::pair("$HOME/\xff", "/home/ana/\xff"),
              std::pair("$HOME/../other", "/home/other")}) {
            SCOPED_TRACE(std::string(role.variable) + "=" + value);
            const HomeLayout layout =
                layoutOf({}, std::string(role.variable) + "=\"" + value + "\"\n");
            EXPECT_EQ(layout.*role.folder, expected);
            EXPECT_THAT(layout.neverRemoved, Contains(expected));
        }
    }
}

TEST(XdgFolders, DownloadsAreNoFolderOfAnotherRole) {
    // What lies in them unused for a year is moved away.
    for (const char* value :
         {"$HOME/Documents", "$HOME/Desktop", "$HOME/Templates", "$HOME/studio"}) {
        SCOPED_TRACE(value);
        const HomeLayout layout =
            layoutOf({},
                     "XDG_TEMPLATES_DIR=\"$HOME/Templates\"\nXDG_MUSIC_DIR=\"$HOME/studio/music\"\n"
                     "XDG_DOWNLOAD_DIR=\"" +
                         std::string(value) + "\"\n");
        EXPECT_EQ(layout.downloads, home + "/Downloads");
    }
    EXPECT_EQ(layoutOf({}, "", {{"/home/ana/Downloads", "/home/ana/Documents"}}).downloads, "");
    EXPECT_EQ(layoutOf({}, "", {{"/home/ana/Downloads", "/home/ana"}}).downloads, "");
    EXPECT_EQ(layoutOf({}, "XDG_DOCUMENTS_DIR=\"$HOME/Downloads\"\n").downloads, "");
}

}  // namespace
}  // namespace velto
