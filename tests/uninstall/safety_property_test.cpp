// The safety rule over random paths, against a second statement of it that shares nothing with the
// first: it works on lists of components and never on the text of a path.

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "support/exhaustive.h"
#include "uninstall/removal_rules.h"

namespace velto {
namespace {

const HomeLayout mac = HomeLayout::macOS("/Users/ana");
const HomeLayout linuxLayout = HomeLayout::freedesktop(
    "/home/ana", [](const std::string&) { return std::nullopt; }, "");
const std::string bundle = "/Applications/Foo.app";
const std::string image = "/home/ana/.local/bin/foo";

using Components = std::vector<std::string>;

std::optional<Components> componentsOf(const std::string& path) {
    if (path.empty() || path[0] != '/') return std::nullopt;
    Components components;
    std::string current;
    for (char character : path + "/") {
        if (character != '/') {
            current += character;
            continue;
        }
        if (current == "..") {
            if (!components.empty()) components.pop_back();
        } else if (!current.empty() && current != ".") {
            components.push_back(current);
        }
        current.clear();
    }
    return components;
}

bool isWithin(const Components& path, const Components& folder) {
    return path.size() >= folder.size() && std::equal(folder.begin(), folder.end(), path.begin());
}

bool ruleOfMac(const std::string& path) {
    const auto wanted = componentsOf(path);
    if (!wanted) return false;
    const auto own = componentsOf(bundle);
    if (own && *wanted == *own) return true;
    static const std::set<Components> shared = [] {
        std::set<Components> all;
        const std::string home = "/Users/ana/";
        for (const char* name :
             {"Library", "Library/Application Support", "Library/Application Scripts",
              "Library/Caches", "Library/Containers", "Library/Cookies", "Library/Group Containers",
              "Library/HTTPStorages", "Library/LaunchAgents", "Library/Logs", "Library/Preferences",
              "Library/Logs/DiagnosticReports", "Library/Application Support/CrashReporter",
              "Library/Saved Application State", "Library/WebKit", "Applications"})
            all.insert(*componentsOf(home + name));
        for (const char* name :
             {"/Applications", "/Applications/Utilities", "/Library",
              "/Library/Application Support", "/Library/Caches", "/Library/LaunchAgents",
              "/Library/LaunchDaemons", "/Library/Logs", "/Library/Preferences"})
            all.insert(*componentsOf(name));
        return all;
    }();
    if (shared.contains(*wanted)) return false;
    for (const Components& root :
         {Components{"Users", "ana"}, Components{"Applications"}, Components{"Library"}}) {
        if (isWithin(*wanted, root) && *wanted != root) return true;
    }
    return false;
}

/// On a Linux home: what no folder of all applications, no hidden place and nothing secret is.
bool ruleOfLinux(const std::string& path) {
    const auto wanted = componentsOf(path);
    if (!wanted) return false;
    if (*wanted == *componentsOf(image)) return true;
    const auto below = [](const char* place) {
        return *componentsOf("/home/ana/" + std::string(place));
    };
    if (!isWithin(*wanted, below("")) || *wanted == below("")) return false;
    for (const char* secret : {".ssh", ".gnupg", ".local/share/Trash"}) {
        if (isWithin(*wanted, below(secret))) return false;
    }
    for (const char* shared :
         {"Pictures", "Videos", "Music", "Downloads", "Documents", "Desktop", "Applications",
          ".config/autostart", ".config/systemd", ".config/systemd/user",
          ".local/share/applications", ".local/share/icons", ".local/share/flatpak",
          ".local/share/flatpak/app"}) {
        if (*wanted == below(shared)) return false;
    }
    const bool isHidden = (*wanted)[2].starts_with('.');
    if (!isHidden) return true;
    for (const char* root :
         {".config", ".cache", ".local/share", ".local/state", ".local/bin", ".var/app"}) {
        if (isWithin(*wanted, below(root)) && *wanted != below(root)) return true;
    }
    return false;
}

/// Compares the rule with its second statement over paths made of the pieces, about half of them
/// below `home`.
template <std::size_t count>
void compare(const HomeLayout& layout, const std::string& own, bool (*rule)(const std::string&),
             const char* const (&pieces)[count]) {
    const int rounds = isExhaustive() ? 2'000'000 : 20'000;
    std::mt19937 random(20240311);
    int allowed = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string path = random() % 50 == 0 ? "" : "/";
        if (random() % 2 == 0) path += layout.home + "/";
        for (auto left = random() % 6; left > 0; --left) {
            path += pieces[random() % count];
            if (random() % 8 != 0) path += '/';
        }
        const bool expected = rule(path);
        ASSERT_EQ(isSafeToRemove(path, own, layout), expected) << path;
        allowed += expected ? 1 : 0;
    }
    EXPECT_GT(allowed, rounds / 20) << "hardly any path was allowed: the property says little";
    EXPECT_LT(allowed, rounds - rounds / 20);
}

TEST(SafetyProperty, NoPathWhateverItsTextPassesAgainstTheRule) {
    compare(mac, bundle, ruleOfMac,
            {"Users",
             "ana",
             "Library",
             "Caches",
             "Preferences",
             "..",
             ".",
             "",
             "Applications",
             "Utilities",
             "Foo.app",
             "System",
             "usr",
             "private",
             "var",
             "Application Support",
             "CrashReporter",
             "Logs",
             "WebKit",
             "LaunchDaemons",
             "x",
             "library",
             "\xFF",
             " "});
}

TEST(SafetyProperty, NoPathOfALinuxHomePassesAgainstItsRule) {
    compare(linuxLayout, image, ruleOfLinux,
            {"home",    "ana",   ".config", ".local",    "share",        ".cache",   "..",
             ".",       "",      ".ssh",    ".gnupg",    "Trash",        "systemd",  "user",
             "flatpak", "app",   ".var",    "autostart", "applications", "bin",      "foo",
             ".bashrc", "state", "Videos",  "Documents", "Applications", ".mozilla", "usr",
             "\xFF",    " "});
}

}  // namespace
}  // namespace velto
